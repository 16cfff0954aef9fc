#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

#include "host/SceneLoader.h"

class Image;
class RenderUVPixelFactory;

/// Bakes a per-pixel shader into the UV layout of meshes of the document's scene.
///
/// The scene is chosen by a mesh reference into `Engine::Get()->GetSceneModels()`: a model
/// index (-1: no mesh at all), a sub-mesh index (-1: every sub-mesh of the model; sub-meshes
/// are numbered as in SceneModel::subMeshes) and a flag (0: the first UV set; non-zero: the
/// second UV set, for models that keep a separate bake layout there). docs/uv-renderer.md
/// describes coverage, sampling, padding and threads in full.
class RenderUvScene {
public:
    /// Loads the referenced meshes for a sizeX x sizeY image. Throws std::out_of_range for a
    /// model or sub-mesh index outside the scene (the message names the file and the allowed
    /// range), std::runtime_error naming the file when a model cannot be read or a chosen
    /// sub-mesh lacks the UV set the flag asks for, std::invalid_argument for a negative size.
    RenderUvScene(int sizeX, int sizeY, int model, int submesh, int flag);
    ~RenderUvScene();
    RenderUvScene(const RenderUvScene&) = delete;
    RenderUvScene& operator=(const RenderUvScene&) = delete;

    int GetSizeX() const { return mSizeX; }
    int GetSizeY() const { return mSizeY; }
    /// False for model -1: the scene has nothing to draw.
    bool HasMesh() const { return !mSubMeshes.empty(); }
    /// Triangles of the chosen sub-meshes, as drawn (a mesh placed twice counts twice).
    std::size_t GetTriangleCount() const;

    /// Worker threads for Render. Plug-ins pass the count their engine resolves from the host's
    /// RenderOptions (one rule for every render, with its environment setting and its cap);
    /// 0 (the default) means one per hardware thread. Render always starts its workers, even
    /// one, and logs how many rows are done every ten seconds until they finish. The image
    /// does not depend on this number.
    void SetThreadCount(int count) { mThreadCount = count; }
    /// Told `done` of `total` rows as Render's rows finish, on the thread that called Render,
    /// about ten times a second; empty (the default) for none.
    void SetProgress(std::function<void(int done, int total)> progress) {
        mProgress = std::move(progress);
    }
    /// Asked on the thread that called Render, every few tens of milliseconds while it runs;
    /// once true, the workers stop after their current rows and Render throws Stopped. Empty
    /// (the default): a render always runs to its end.
    void SetStopRequest(std::function<bool()> stopRequested) {
        mStopRequested = std::move(stopRequested);
    }

    /// Thrown by a render that SetStopRequest's function stopped; the image is incomplete.
    class Stopped : public std::runtime_error {
    public:
        Stopped() : std::runtime_error("UV scene render: stopped before it finished") {}
    };

    /// Renders into `image` (colour mode 0, the scene's size): clears it to (0, 0, 0, 0), shades
    /// every pixel whose samples are covered by a triangle with the average of its covered
    /// samples (`samples` x `samples` per pixel; 0 and 1 mean the pixel centre), then pads
    /// `prefilter` pixels outwards. Without a mesh the image is filled with opaque black and
    /// the result is false; otherwise true. Throws std::invalid_argument for a missing image
    /// or factory, a byte image, a size mismatch or more than 256 samples; an exception thrown
    /// by a pixel shader is passed on after every worker has stopped.
    bool Render(Image* image, RenderUVPixelFactory* factory, int samples, int prefilter);

private:
    int ResolveThreadCount(int rows) const;

    int mSizeX;
    int mSizeY;
    bool mSecondUvSet;
    int mThreadCount = 0;
    std::function<void(int, int)> mProgress;
    std::function<bool()> mStopRequested;
    std::shared_ptr<const SceneModel> mModel;
    std::vector<const SceneModel::SubMesh*> mSubMeshes;
};
