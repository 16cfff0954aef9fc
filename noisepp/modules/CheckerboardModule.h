#pragma once

#include "noisepp/core/Module.h"
#include "noisepp/core/TextureColor.h"

namespace noisepp {

/// A checkerboard of colour A and colour B (type code 5). Nothing is streamed.
class CheckerboardModule : public Module {
public:
    CheckerboardModule() : Module(0) {}

    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 5; }

    void setColorA(const TextureColor& color) { mColorA = color; }
    void setColorB(const TextureColor& color) { mColorB = color; }
    const TextureColor& getColorA() const { return mColorA; }
    const TextureColor& getColorB() const { return mColorB; }

private:
    TextureColor mColorA{0.0f, 0.0f, 0.0f, 1.0f};
    TextureColor mColorB{1.0f, 1.0f, 1.0f, 1.0f};
};

}  // namespace noisepp
