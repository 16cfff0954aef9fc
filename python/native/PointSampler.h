#pragma once

#include <cstddef>
#include <memory>

#include "noisepp/core/Pipeline.h"

namespace noisepp {
class Module;
}

/// A texture compiled for sampling at arbitrary points.
///
/// The module tree is compiled once, under the engine's lock, into a pipeline of its own; the
/// pipeline's elements copy what they need, so sampling runs without the lock and stays valid
/// after the nodes evaluate again. Points go to the elements in whole runs, several threads
/// each taking a contiguous share, and every colour equals the element's one-point value at
/// the same point to the bit.
class PointSampler {
public:
    /// Compiles `module` (made by the plug-in: its compilation runs the plug-in's code).
    explicit PointSampler(const noisepp::Module& module);

    /// Colours of the `count` points xyz[3 i], xyz[3 i + 1], xyz[3 i + 2] into out[4 i ... 4 i
    /// + 3] (red, green, blue, opacity) on `threads` threads (0: one per processor).
    void SampleRuns(const double* xyz, std::size_t count, float* out, unsigned threads) const;
    /// The same colours, one getValue call per point: the reference the runs must equal.
    void SampleEach(const double* xyz, std::size_t count, float* out) const;

private:
    void SampleShare(const double* xyz, std::size_t count, float* out) const;

    std::unique_ptr<noisepp::Pipeline3D> mPipeline;
    const noisepp::PipelineElement3D* mElement = nullptr;
};
