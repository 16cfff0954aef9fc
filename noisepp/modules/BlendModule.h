#pragma once

#include <cstdint>

#include "noisepp/core/Module.h"

namespace noisepp {

/// Composites a layer (source 1) over a base (source 0) with one of the blend functions of
/// BlendFunctions.h, an opacity and an optional mask (source 2) whose grey scales the
/// layer's strength. The result is clamped to 0 ... 1.
///
/// Defaults: opacity 1, mode 0 ("normal").
class BlendModule : public Module {
public:
    BlendModule() : Module(3) {}

    void setOpacity(double opacity) { mOpacity = opacity; }
    double getOpacity() const { return mOpacity; }
    /// Index of the blend function, 0 to 16 (16 is the unnamed layer-grey function);
    /// ParamInvalidException above.
    void setMode(std::uint32_t mode);
    std::uint32_t getMode() const { return mMode; }

    /// Requires sources 0 and 1 (NoModuleException otherwise); the mask is optional. Compiles
    /// source 0, source 1 and, when set, source 2.
    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 4; }
    /// Opacity (double), mode (int32).
    void write(OutStream& stream) const override;
    /// A mode above 16 throws ParamInvalidException and leaves the module unchanged.
    void read(InStream& stream) override;

private:
    double mOpacity = 1.0;
    std::uint32_t mMode = 0;
};

}  // namespace noisepp
