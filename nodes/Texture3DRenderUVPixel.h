#pragma once

#include <vector>

#include "host/HostTypes.h"
#include "host/RenderUVPixel.h"
#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"
#include "noisepp/core/PipelineJob.h"

class Image;

/// The per-pixel shader of the Render 3D Texture node: maps the surface point under a pixel
/// into texture space and evaluates the texture there.
///
/// Texture space is reached by scaling (division by the scale), rotating about x, then y,
/// then z, each by the negated angle, and finally subtracting the translation. Each of the
/// nine parameters is a range: its first value applies where no image drives it; a driving
/// image of the output's size blends from the first value (intensity 0) to the second
/// (intensity 1) per pixel, its first three channels steering x, y and z (an image of fewer
/// than three channels steers all three axes from its first channel).
///
/// One object serves one render thread; the pipeline, element and images are borrowed and
/// only read.
class Texture3DRenderUVPixel : public RenderUVPixel {
public:
    /// The nine parameter ranges, each (value at intensity 0, value at intensity 1), indexed
    /// by axis x, y, z. Rotations are in radians.
    struct Ranges {
        Point translate[3] = {{0.0, 0.0}, {0.0, 0.0}, {0.0, 0.0}};
        Point rotate[3] = {{0.0, 0.0}, {0.0, 0.0}, {0.0, 0.0}};
        Point scale[3] = {{1.0, 1.0}, {1.0, 1.0}, {1.0, 1.0}};
    };

    /// The images may be null; present ones must be float images of the output's size.
    Texture3DRenderUVPixel(const noisepp::Pipeline3D* pipeline,
                           const noisepp::PipelineElement3D* element, const Image* translate,
                           const Image* rotate, const Image* scale, const Ranges& ranges);

    /// Sizes the scratch area to one cleared record per pipeline element.
    void Prepare() override;
    void ShadePixel(int x, int y, const SceneMesh& mesh, const double* matrix, int triangle,
                    const float* weights, float* result) override;

private:
    /// How one driving image is read: its pixels, channels per pixel and the channel of each
    /// axis. An absent image has no pixels and all zeros.
    struct Driver {
        const float* pixels = nullptr;
        int channels = 0;
        int axisChannel[3] = {0, 0, 0};
    };

    static Driver MakeDriver(const Image* image);
    /// The three axis values of `range` at pixel (x, y), steered by `driver` when present.
    void Steer(const Driver& driver, const Point* range, int x, int y, double* out) const;

    const noisepp::Pipeline3D* mPipeline;
    const noisepp::PipelineElement3D* mElement;
    std::vector<noisepp::Cache> mScratch;
    Ranges mRanges;
    int mImageWidth = 0;
    Driver mTranslate;
    Driver mRotate;
    Driver mScale;
};
