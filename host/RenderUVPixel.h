#pragma once

#include "host/SceneMesh.h"

/// A per-pixel shader called by `RenderUvScene::Render`.
///
/// One object is used by one thread only: the renderer asks the factory for a fresh object on
/// every worker thread, calls Prepare once and then ShadePixel for each covered sample of the
/// rows that thread renders. Objects are owned by the factory that made them.
class RenderUVPixel {
public:
    /// Called once, on the thread that will shade with this object, before any ShadePixel.
    virtual void Prepare() = 0;

    /// Computes the colour of one covered sample of output pixel (x, y).
    ///
    /// `mesh` is the sub-mesh's geometry, `matrix` its object-to-world transform (twelve
    /// doubles, column after column: x axis, y axis, z axis, translation), `triangle` an index
    /// into `mesh.triangles`, `weights` the sample's three barycentric weights in the order of
    /// that triangle's vertex indices (non-negative, summing to 1 up to rounding). `result`
    /// receives red, green, blue and opacity; it holds (0, 0, 0, 0) on entry.
    virtual void ShadePixel(int x, int y, const SceneMesh& mesh, const double* matrix, int triangle,
                            const float* weights, float* result) = 0;

    // Declared after the two operations above so that they keep the first two table slots.
    virtual ~RenderUVPixel() = default;
};

/// Makes the pixel shaders of one render. `RenderUvScene::Render` calls CreateRenderUVPixel
/// once per worker thread, possibly from several threads at the same time, so an
/// implementation must guard whatever it records about the objects it hands out.
class RenderUVPixelFactory {
public:
    /// Destroys the factory and every pixel object it still owns.
    virtual ~RenderUVPixelFactory() = default;

    /// A new pixel object, owned by the factory (the renderer never deletes it). Must not
    /// return null.
    virtual RenderUVPixel* CreateRenderUVPixel() = 0;
};
