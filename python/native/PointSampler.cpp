#include "python/native/PointSampler.h"

#include <algorithm>
#include <thread>
#include <type_traits>
#include <vector>

#include "noisepp/core/Module.h"
#include "noisepp/core/TextureColor.h"
#include "noisepp/utils/ProcessorCount.h"

namespace {

// The colours are written straight into the caller's float array.
static_assert(sizeof(noisepp::TextureColor) == 4 * sizeof(float) &&
              std::is_standard_layout_v<noisepp::TextureColor>);

// Points per thread below which starting another thread costs more than it saves.
constexpr std::size_t kPointsPerThread = 16384;

}  // namespace

PointSampler::PointSampler(const noisepp::Module& module)
    : mPipeline(std::make_unique<noisepp::Pipeline3D>()) {
    mElement = mPipeline->getElement(module.addToPipeline(mPipeline.get()));
}

void PointSampler::SampleShare(const double* xyz, std::size_t count, float* out) const {
    // The interleaved points are split into coordinate arrays one run at a time, so the
    // elements see whole runs without a copy of all the points.
    constexpr std::size_t kRun = noisepp::PipelineElement3D::kRunLength;
    double x[kRun];
    double y[kRun];
    double z[kRun];
    auto* colors = reinterpret_cast<noisepp::TextureColor*>(out);
    for (std::size_t first = 0; first < count; first += kRun) {
        const std::size_t length = std::min(kRun, count - first);
        for (std::size_t i = 0; i < length; ++i) {
            const double* point = xyz + 3 * (first + i);
            x[i] = point[0];
            y[i] = point[1];
            z[i] = point[2];
        }
        mElement->getRunValues(noisepp::PointRun::points(x, y, z, length), colors + first);
    }
}

void PointSampler::SampleRuns(const double* xyz, std::size_t count, float* out,
                              unsigned threads) const {
    const std::size_t wanted = threads != 0 ? threads : noisepp::utils::getProcessorCount();
    const std::size_t workers =
        std::clamp<std::size_t>(count / kPointsPerThread, 1, std::max<std::size_t>(wanted, 1));
    const std::size_t share = (count + workers - 1) / workers;
    std::vector<std::jthread> pool;
    for (std::size_t w = 1; w < workers; ++w) {
        const std::size_t first = std::min(count, w * share);
        const std::size_t length = std::min(share, count - first);
        pool.emplace_back([this, xyz, out, first, length] {
            SampleShare(xyz + 3 * first, length, out + 4 * first);
        });
    }
    SampleShare(xyz, std::min(share, count), out);
}

void PointSampler::SampleEach(const double* xyz, std::size_t count, float* out) const {
    for (std::size_t i = 0; i < count; ++i) {
        const noisepp::TextureColor c =
            mElement->getValue(xyz[3 * i], xyz[3 * i + 1], xyz[3 * i + 2]);
        out[4 * i] = c.red;
        out[4 * i + 1] = c.green;
        out[4 * i + 2] = c.blue;
        out[4 * i + 3] = c.opacity;
    }
}
