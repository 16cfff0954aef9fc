#pragma once

#include "noisepp/modules/PerlinModuleBase.h"

namespace noisepp {

/// Fractal sum of folded noise octaves, 2 |v| - 1, which gives billowy, cloud-like shapes
/// (type code 1); see PerlinModuleBase for the parameters and BillowElement3D for the
/// evaluation.
class BillowModule : public PerlinModuleBase {
public:
    /// Builds a fresh element on every call. A negative octave count throws
    /// ParamInvalidException.
    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 1; }
};

}  // namespace noisepp
