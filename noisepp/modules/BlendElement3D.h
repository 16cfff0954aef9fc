#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"
#include "noisepp/modules/BlendFunctions.h"

namespace noisepp {

/// Evaluates a BlendModule.
///
/// Per point: base A, then layer B, then M = blend(A, B); the mask (when present) scales
/// M's opacity by its grey; s = opacity * that strength; the result opacity is
/// o = s + A.opacity - s * A.opacity and each colour channel
/// ((1 - s) * A.opacity * A.c + s * M.c) / o, all clamped to 0 ... 1. Where o is exactly 0
/// the result is transparent black.
class BlendElement3D : public PipelineElement3D {
public:
    /// The mask index that stands for "no mask".
    static constexpr std::size_t kNoMask = std::numeric_limits<std::size_t>::max();

    /// ParamInvalidException for a mode without a blend function (17 or more).
    BlendElement3D(const Pipeline3D& pipeline, std::size_t base, std::size_t layer,
                   std::size_t mask, double opacity, std::uint32_t mode);

    TextureColor getValue(double x, double y, double z) const override;

protected:
    void evaluateRun(const PointRun& points, TextureColor* out) const override;

private:
    /// The result for base `a` and layer `b`; `mask` is the mask colour, null without a mask.
    TextureColor compose(const TextureColor& a, const TextureColor& b,
                         const TextureColor* mask) const;

    const PipelineElement3D* mBase;
    const PipelineElement3D* mLayer;
    const PipelineElement3D* mMask;
    double mOpacity;
    BlendFunction mFunction;
};

}  // namespace noisepp
