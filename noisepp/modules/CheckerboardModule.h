#pragma once

#include "noisepp/core/Module.h"
#include "noisepp/core/TextureColor.h"

namespace noisepp {

/// Squares of 0.5 units in the xy plane alternating between colour A and colour B (type code
/// 5); the square touching the origin from above right is colour A, z is ignored. There is no
/// frequency: scale the pattern with a transform.
///
/// Defaults: colour A opaque black, colour B opaque white. Nothing is streamed.
class CheckerboardModule : public Module {
public:
    CheckerboardModule() : Module(0) {}

    void setColorA(const TextureColor& color) { mColorA = color; }
    const TextureColor& getColorA() const { return mColorA; }
    void setColorB(const TextureColor& color) { mColorB = color; }
    const TextureColor& getColorB() const { return mColorB; }

    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 5; }

private:
    TextureColor mColorA{0.0f, 0.0f, 0.0f, 1.0f};
    TextureColor mColorB{1.0f, 1.0f, 1.0f, 1.0f};
};

}  // namespace noisepp
