#pragma once

#include "noisepp/core/Module.h"
#include "noisepp/core/TextureColor.h"

namespace noisepp {

/// Limits every channel, opacity included, to its own range: min(upper, max(lower, c)).
/// The lower bound is applied first, so where a lower channel exceeds the upper one the
/// result is the upper one. Defaults: lower (0, 0, 0, 0), upper (1, 1, 1, 1).
class ClampModule : public Module {
public:
    ClampModule() : Module(1) {}

    void setLowerColor(const TextureColor& color) { mLowerColor = color; }
    const TextureColor& getLowerColor() const { return mLowerColor; }
    void setUpperColor(const TextureColor& color) { mUpperColor = color; }
    const TextureColor& getUpperColor() const { return mUpperColor; }

    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 6; }
    /// Eight doubles (the floats widened): lower red, green, blue, opacity, then upper.
    void write(OutStream& stream) const override;
    /// Reads the eight and narrows them back to floats.
    void read(InStream& stream) override;

private:
    TextureColor mLowerColor{0.0f, 0.0f, 0.0f, 0.0f};
    TextureColor mUpperColor{1.0f, 1.0f, 1.0f, 1.0f};
};

}  // namespace noisepp
