#pragma once

#include "noisepp/core/Module.h"
#include "noisepp/core/TextureColor.h"

namespace noisepp {

/// A texture of one colour everywhere (type code 7). The stream holds the four channels, each
/// widened to a double.
class ConstantModule : public Module {
public:
    ConstantModule() : Module(0) {}

    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 7; }
    void write(OutStream& stream) const override;
    void read(InStream& stream) override;

    void setColor(const TextureColor& color) { mColor = color; }
    const TextureColor& getColor() const { return mColor; }

private:
    TextureColor mColor{0.0f, 0.0f, 0.0f, 1.0f};
};

}  // namespace noisepp
