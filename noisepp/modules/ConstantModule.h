#pragma once

#include "noisepp/core/Module.h"
#include "noisepp/core/TextureColor.h"

namespace noisepp {

/// One colour everywhere (type code 7).
///
/// Default: opaque black. The stream holds red, green, blue and opacity, each widened to a
/// double; reading narrows them back to float.
class ConstantModule : public Module {
public:
    ConstantModule() : Module(0) {}

    void setColor(const TextureColor& color) { mColor = color; }
    const TextureColor& getColor() const { return mColor; }

    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 7; }
    void write(OutStream& stream) const override;
    /// All or nothing: a short stream throws StreamException and leaves the colour unchanged.
    void read(InStream& stream) override;

private:
    TextureColor mColor{0.0f, 0.0f, 0.0f, 1.0f};
};

}  // namespace noisepp
