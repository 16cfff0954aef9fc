#pragma once

#include "noisepp/modules/PerlinModuleBase.h"

namespace noisepp {

/// Fractal sum of coherent noise octaves (type code 0); see PerlinModuleBase for the
/// parameters and PerlinElement3D for the evaluation.
class PerlinModule : public PerlinModuleBase {
public:
    /// Builds a fresh element on every call. A negative octave count throws
    /// ParamInvalidException.
    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 0; }
};

}  // namespace noisepp
