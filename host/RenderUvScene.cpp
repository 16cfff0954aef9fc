#include "host/RenderUvScene.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>

#include "host/EdgePadding.h"
#include "host/Engine.h"
#include "host/Image.h"
#include "host/Log.h"
#include "host/RenderUVPixel.h"
#include "host/UvRasterizer.h"

namespace {

// 256 x 256 points per pixel is far beyond any use and keeps the sample grid of the largest
// image well inside the range where edge functions stay exact.
constexpr int kMaxSamples = 256;

// A bake of 8000 x 8000 pixels at 16 x 16 samples runs for many minutes: it tells how far it
// got this often, so that a log kept off a terminal shows it is alive.
constexpr std::chrono::seconds kLogInterval{10};
constexpr std::chrono::milliseconds kProgressInterval{100};
// A window waiting for the engine is kept waiting at most about this long.
constexpr std::chrono::milliseconds kStopPollInterval{20};

int hardwareThreadCount() {
    return static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
}

std::string quoted(const std::string& text) {
    return "'" + text + "'";
}

std::string describeSubMesh(const SceneModel::SubMesh& subMesh, int index) {
    std::string name = subMesh.nodeName.empty() ? subMesh.mesh->name : subMesh.nodeName;
    return "sub-mesh " + std::to_string(index) + (name.empty() ? "" : " (" + quoted(name) + ")");
}

// Shades the rows handed out by `nextRow` with one pixel object; one call per worker thread.
class RowShader {
public:
    RowShader(const UvRasterizer& rasterizer, const std::vector<const SceneModel::SubMesh*>& meshes,
              Image& image, std::vector<std::uint8_t>& covered)
        : mRasterizer(rasterizer), mMeshes(meshes), mImage(image), mCovered(covered) {}

    void Run(RenderUVPixelFactory& factory, std::atomic<int>& nextRow, std::atomic<int>& rowsDone,
             const std::atomic<bool>& stop) const {
        RenderUVPixel* pixel = factory.CreateRenderUVPixel();
        if (pixel == nullptr) {
            throw std::runtime_error("UV scene render: the pixel factory returned no object");
        }
        pixel->Prepare();
        const int sizeX = mImage.GetSizeX();
        const int samples = mRasterizer.GetSamples();
        std::vector<UvRasterizer::Hit> hits;
        std::vector<double> sums(static_cast<std::size_t>(sizeX) * 4);
        std::vector<int> counts(static_cast<std::size_t>(sizeX));
        for (int row = nextRow++; row < mImage.GetSizeY() && !stop; row = nextRow++) {
            std::fill(sums.begin(), sums.end(), 0.0);
            std::fill(counts.begin(), counts.end(), 0);
            // Sample rows bottom to top, columns left to right: one fixed order per pixel, so
            // the sums do not depend on which thread renders the row.
            for (int subRow = 0; subRow < samples; ++subRow) {
                mRasterizer.CoverSampleRow(row, subRow, hits);
                for (int x = 0; x < sizeX; ++x) {
                    for (int k = 0; k < samples; ++k) {
                        const UvRasterizer::Hit& hit =
                            hits[static_cast<std::size_t>(x) * samples + k];
                        if (hit.source < 0) {
                            continue;
                        }
                        const SceneModel::SubMesh& subMesh = *mMeshes[hit.source];
                        float result[4] = {0.0f, 0.0f, 0.0f, 0.0f};
                        pixel->ShadePixel(x, row, *subMesh.mesh, subMesh.matrix.data(),
                                          hit.triangle, hit.weights, result);
                        for (int c = 0; c < 4; ++c) {
                            sums[static_cast<std::size_t>(x) * 4 + c] += result[c];
                        }
                        ++counts[static_cast<std::size_t>(x)];
                    }
                }
            }
            const std::size_t rowStart = static_cast<std::size_t>(row) * sizeX;
            float* out = mImage.GetArray() + rowStart * 4;
            for (int x = 0; x < sizeX; ++x) {
                const int count = counts[static_cast<std::size_t>(x)];
                if (count == 0) {
                    continue;
                }
                for (int c = 0; c < 4; ++c) {
                    out[x * 4 + c] =
                        static_cast<float>(sums[static_cast<std::size_t>(x) * 4 + c] / count);
                }
                mCovered[rowStart + x] = 1;
            }
            ++rowsDone;
        }
    }

private:
    const UvRasterizer& mRasterizer;
    const std::vector<const SceneModel::SubMesh*>& mMeshes;
    Image& mImage;
    std::vector<std::uint8_t>& mCovered;
};

}  // namespace

RenderUvScene::RenderUvScene(int sizeX, int sizeY, int model, int submesh, int flag)
    : mSizeX(sizeX), mSizeY(sizeY), mSecondUvSet(flag != 0) {
    if (sizeX < 0 || sizeY < 0) {
        throw std::invalid_argument("UV scene: the image size " + std::to_string(sizeX) + " x " +
                                    std::to_string(sizeY) + " is negative");
    }
    if (model == -1) {
        return;
    }
    std::vector<std::string> models;
    {
        Engine* engine = Engine::Get();
        std::lock_guard<EngineMutex> lock(engine->GetMutex());
        models = engine->GetSceneModels();
    }
    if (model < -1 || model >= static_cast<int>(models.size())) {
        throw std::out_of_range(
            "mesh reference: model " + std::to_string(model) + " is out of range: " +
            (models.empty()
                 ? std::string("the scene has no models (use -1 for no mesh)")
                 : "the scene has " + std::to_string(models.size()) + " model(s), 0 to " +
                       std::to_string(models.size() - 1) + " (or -1 for no mesh)"));
    }
    const std::string& path = models[static_cast<std::size_t>(model)];
    mModel = SceneLoader::Load(path);
    const int count = static_cast<int>(mModel->subMeshes.size());
    if (submesh < -1 || submesh >= count) {
        throw std::out_of_range("mesh reference: sub-mesh " + std::to_string(submesh) +
                                " of model " + std::to_string(model) + " " + quoted(path) +
                                " is out of range: the model has " + std::to_string(count) +
                                " sub-mesh(es), 0 to " + std::to_string(count - 1) +
                                " (or -1 for all)");
    }
    const int first = submesh == -1 ? 0 : submesh;
    const int last = submesh == -1 ? count - 1 : submesh;
    for (int i = first; i <= last; ++i) {
        const SceneModel::SubMesh& subMesh = mModel->subMeshes[static_cast<std::size_t>(i)];
        const auto& uvs = mSecondUvSet ? subMesh.mesh->secondUvs : subMesh.mesh->uvs;
        if (uvs.empty()) {
            throw std::runtime_error(
                "model " + quoted(path) + ": " + describeSubMesh(subMesh, i) +
                (mSecondUvSet ? " has no second UV set (the mesh reference's flag asks for it)"
                              : " has no UV coordinates"));
        }
        mSubMeshes.push_back(&subMesh);
    }
}

RenderUvScene::~RenderUvScene() = default;

std::size_t RenderUvScene::GetTriangleCount() const {
    std::size_t count = 0;
    for (const SceneModel::SubMesh* subMesh : mSubMeshes) {
        count += subMesh->mesh->triangles.size();
    }
    return count;
}

int RenderUvScene::ResolveThreadCount(int rows) const {
    const int wanted = mThreadCount > 0 ? mThreadCount : hardwareThreadCount();
    return std::max(1, std::min(wanted, rows));
}

bool RenderUvScene::Render(Image* image, RenderUVPixelFactory* factory, int samples,
                           int prefilter) {
    if (image == nullptr || factory == nullptr) {
        throw std::invalid_argument("UV scene render: no image or no pixel factory given");
    }
    if (image->GetColorMode() != Image::kFloatRgbo) {
        throw std::invalid_argument("UV scene render: the image must hold float pixels (mode 0)");
    }
    if (image->GetSizeX() != mSizeX || image->GetSizeY() != mSizeY) {
        throw std::invalid_argument(
            "UV scene render: the image is " + std::to_string(image->GetSizeX()) + " x " +
            std::to_string(image->GetSizeY()) + " but the scene was made for " +
            std::to_string(mSizeX) + " x " + std::to_string(mSizeY));
    }
    if (samples > kMaxSamples) {
        throw std::invalid_argument("UV scene render: samples must be between 0 and " +
                                    std::to_string(kMaxSamples) + " (got " +
                                    std::to_string(samples) + ")");
    }
    if (!HasMesh()) {
        const float black[4] = {0.0f, 0.0f, 0.0f, 1.0f};
        image->Fill(black);
        return false;
    }
    const float clear[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    image->Fill(clear);
    if (mSizeX == 0 || mSizeY == 0) {
        return true;
    }

    std::vector<UvRasterizer::Source> sources;
    for (const SceneModel::SubMesh* subMesh : mSubMeshes) {
        sources.push_back(
            {subMesh->mesh.get(), mSecondUvSet ? &subMesh->mesh->secondUvs : &subMesh->mesh->uvs});
    }
    const UvRasterizer rasterizer(mSizeX, mSizeY, samples, sources);
    std::vector<std::uint8_t> covered(static_cast<std::size_t>(mSizeX) * mSizeY, 0);
    const RowShader shader(rasterizer, mSubMeshes, *image, covered);

    std::atomic<int> nextRow{0};
    std::atomic<int> rowsDone{0};
    std::atomic<bool> stop{false};
    bool stopped = false;
    std::exception_ptr failure;
    std::mutex stateMutex;
    std::condition_variable finished;
    const int threads = ResolveThreadCount(mSizeY);
    int running = threads;
    const auto work = [&] {
        try {
            shader.Run(*factory, nextRow, rowsDone, stop);
        } catch (...) {
            std::lock_guard<std::mutex> lock(stateMutex);
            if (!failure) {
                failure = std::current_exception();
            }
            stop = true;
        }
        std::lock_guard<std::mutex> lock(stateMutex);
        --running;
        finished.notify_one();
    };
    // Even one worker runs on a thread of its own: the engine sizes the stacks of the threads
    // it starts for the deepest graphs, which the caller's stack need not be.
    std::vector<std::thread> workers;
    workers.reserve(static_cast<std::size_t>(threads));
    try {
        for (int i = 0; i < threads; ++i) {
            workers.emplace_back(work);
        }
    } catch (const std::system_error& e) {
        {
            std::lock_guard<std::mutex> lock(stateMutex);
            stop = true;
            running -= threads - static_cast<int>(workers.size());
        }
        for (std::thread& worker : workers) {
            worker.join();
        }
        throw std::runtime_error("UV scene render: cannot start worker thread " +
                                 std::to_string(workers.size() + 1) + " of " +
                                 std::to_string(threads) + ": " + e.what());
    }
    {
        std::unique_lock<std::mutex> lock(stateMutex);
        const auto start = std::chrono::steady_clock::now();
        auto nextLog = start + kLogInterval;
        const auto wake = mStopRequested ? kStopPollInterval
                          : mProgress    ? kProgressInterval
                                         : kLogInterval;
        auto nextProgress = start;
        while (!finished.wait_for(lock, wake, [&] { return running == 0; })) {
            if (!stopped && mStopRequested && mStopRequested()) {
                stopped = true;
                stop = true;
            }
            const int done = rowsDone;
            if (const auto now = std::chrono::steady_clock::now();
                mProgress && now >= nextProgress) {
                nextProgress = now + kProgressInterval;
                mProgress(done, mSizeY);
            }
            if (const auto now = std::chrono::steady_clock::now(); now >= nextLog) {
                nextLog = now + kLogInterval;
                Log::Info(
                    "UV scene render: %d of %d rows (%d %%) in %lld s", done, mSizeY,
                    static_cast<int>(100LL * done / mSizeY),
                    static_cast<long long>(
                        std::chrono::duration_cast<std::chrono::seconds>(now - start).count()));
            }
        }
    }
    if (mProgress && !failure && !stopped)
        mProgress(mSizeY, mSizeY);
    for (std::thread& worker : workers) {
        worker.join();
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
    if (stopped) {
        throw Stopped();
    }
    EdgePadding::Apply(image->GetArray(), mSizeX, mSizeY, covered, prefilter);
    Log::Trace("RenderUvScene::Render - %d x %d, %zu triangles, %d samples, %d threads", mSizeX,
               mSizeY, rasterizer.GetTriangleCount(), rasterizer.GetSamples(), threads);
    return true;
}
