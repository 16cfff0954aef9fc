#pragma once

#include "noisepp/core/TextureColor.h"

namespace noisepp {

/// The same colour at every point; `Element` is the element interface it implements
/// (PipelineElement3D).
template <class Element>
class ConstantElement : public Element {
public:
    explicit ConstantElement(const TextureColor& color) : mColor(color) {}

    TextureColor getValue(double, double, double) const override { return mColor; }

private:
    TextureColor mColor;
};

}  // namespace noisepp
