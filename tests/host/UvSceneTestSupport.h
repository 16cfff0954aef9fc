#pragma once

// Helpers for the UV scene renderer tests: held images, a scene set-up on
// the process-wide engine, and a pixel factory whose shader paints the surface point.

#include <atomic>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "host/Engine.h"
#include "host/Image.h"
#include "host/RenderUVPixel.h"
#include "tests/support/TempFolder.h"

namespace uvtest {

using testsupport::TempFolder;

/// A float image (count 1) that releases itself.
class HeldImage {
public:
    HeldImage(int sizeX, int sizeY, unsigned mode = Image::kFloatRgbo)
        : mImage(new Image(sizeX, sizeY, mode)) {
        mImage->AddRef();
    }
    ~HeldImage() { mImage->Release(); }
    HeldImage(const HeldImage&) = delete;
    HeldImage& operator=(const HeldImage&) = delete;

    Image* get() const { return mImage; }
    const float* At(int x, int y) const {
        return mImage->GetConstArray() + (static_cast<std::size_t>(y) * mImage->GetSizeX() + x) * 4;
    }

private:
    Image* mImage;
};

/// Makes `paths` the scene's models for one test and empties the list afterwards.
class SceneModels {
public:
    explicit SceneModels(std::vector<std::string> paths) {
        Engine::Get()->SetSceneModels(std::move(paths));
    }
    ~SceneModels() { Engine::Get()->SetSceneModels({}); }
    SceneModels(const SceneModels&) = delete;
    SceneModels& operator=(const SceneModels&) = delete;
};

/// The point of the surface under a sample: the triangle's corners placed in the world by the
/// matrix, blended with the weights.
inline void SurfacePoint(const SceneMesh& mesh, const double* m, int triangle, const float* weights,
                         double* point) {
    point[0] = point[1] = point[2] = 0.0;
    for (int k = 0; k < 3; ++k) {
        const SceneMesh::Vertex& v = mesh.vertices[mesh.triangles[triangle][k]];
        for (int axis = 0; axis < 3; ++axis) {
            const double world =
                v.x * m[axis] + v.y * m[3 + axis] + v.z * m[6 + axis] + m[9 + axis];
            point[axis] += weights[k] * world;
        }
    }
}

/// Counts what the renderer asks of it. Each pixel object paints (x, y, z, 1) of the surface
/// point and notes every shade call per output pixel.
class SurfacePointFactory : public RenderUVPixelFactory {
public:
    SurfacePointFactory(int sizeX, int sizeY)
        : mSizeX(sizeX), mCalls(static_cast<std::size_t>(sizeX) * sizeY) {}

    RenderUVPixel* CreateRenderUVPixel() override {
        std::lock_guard<std::mutex> lock(mMutex);
        mPixels.push_back(std::make_unique<Pixel>(*this));
        return mPixels.back().get();
    }

    int CallsAt(int x, int y) const { return mCalls[static_cast<std::size_t>(y) * mSizeX + x]; }
    int PixelObjects() const { return static_cast<int>(mPixels.size()); }
    /// True when every object was prepared once before shading, and shaded only on the thread
    /// that created it.
    bool UsedAsContracted() const {
        for (const auto& pixel : mPixels) {
            if (pixel->prepares != 1 || pixel->misuse) {
                return false;
            }
        }
        return true;
    }
    /// When set, every shade call throws this message.
    std::string failure;
    /// When set, the shader paints (triangle index, 0, 0, 1) instead of the surface point.
    bool paintTriangle = false;

private:
    struct Pixel : RenderUVPixel {
        explicit Pixel(SurfacePointFactory& owner)
            : factory(owner), thread(std::this_thread::get_id()) {}
        void Prepare() override {
            ++prepares;
            misuse = misuse || std::this_thread::get_id() != thread;
        }
        void ShadePixel(int x, int y, const SceneMesh& mesh, const double* matrix, int triangle,
                        const float* weights, float* result) override {
            misuse = misuse || prepares != 1 || std::this_thread::get_id() != thread ||
                     result[0] != 0.0f || result[3] != 0.0f;
            if (!factory.failure.empty()) {
                throw std::runtime_error(factory.failure);
            }
            ++factory.mCalls[static_cast<std::size_t>(y) * factory.mSizeX + x];
            double point[3] = {static_cast<double>(triangle), 0.0, 0.0};
            if (!factory.paintTriangle) {
                SurfacePoint(mesh, matrix, triangle, weights, point);
            }
            result[0] = static_cast<float>(point[0]);
            result[1] = static_cast<float>(point[1]);
            result[2] = static_cast<float>(point[2]);
            result[3] = 1.0f;
        }
        SurfacePointFactory& factory;
        std::thread::id thread;
        int prepares = 0;
        bool misuse = false;
    };

    int mSizeX;
    std::vector<std::atomic<int>> mCalls;
    std::mutex mMutex;
    std::vector<std::unique_ptr<Pixel>> mPixels;
};

}  // namespace uvtest
