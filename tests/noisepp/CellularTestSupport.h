#pragma once

// Helpers shared by the cellular and pattern generator tests: compile a module into a pipeline
// of its own and sample it.

#include <memory>
#include <vector>

#include "noisepp/core/Module.h"
#include "noisepp/core/Pipeline.h"
#include "noisepp/core/TextureColor.h"

namespace noisepp::cellulartest {

/// A module compiled into a plain pipeline it owns, ready to be sampled.
class Compiled {
public:
    explicit Compiled(const Module& module, std::int32_t pipelineSeed = 0) {
        mPipeline.setSeed(pipelineSeed);
        mElement = mPipeline.getElement(module.addToPipeline(&mPipeline));
    }
    TextureColor operator()(double x, double y, double z = 0.0) const {
        return mElement->getValue(x, y, z);
    }

private:
    Pipeline3D mPipeline;
    const PipelineElement3D* mElement = nullptr;
};

/// The colour of `module` at one point.
inline TextureColor sampleAt(const Module& module, double x, double y, double z = 0.0) {
    return Compiled(module)(x, y, z);
}

/// `module` sampled over an n x n grid of the square [x0, x0 + extent) x [y0, y0 + extent) at
/// height z, row by row.
inline std::vector<TextureColor> sampleGrid(const Module& module, int n, double x0, double y0,
                                            double extent, double z = 0.0,
                                            std::int32_t pipelineSeed = 0) {
    const Compiled compiled(module, pipelineSeed);
    std::vector<TextureColor> grid;
    grid.reserve(static_cast<std::size_t>(n) * n);
    for (int row = 0; row < n; ++row)
        for (int column = 0; column < n; ++column)
            grid.push_back(
                compiled(x0 + extent * (column + 0.5) / n, y0 + extent * (row + 0.5) / n, z));
    return grid;
}

/// The A-to-B blend written out per channel, as the generators document it.
inline TextureColor expectedBlend(const TextureColor& a, const TextureColor& b, float t) {
    return {(1.0f - t) * a.red + t * b.red, (1.0f - t) * a.green + t * b.green,
            (1.0f - t) * a.blue + t * b.blue, (1.0f - t) * a.opacity + t * b.opacity};
}

}  // namespace noisepp::cellulartest
