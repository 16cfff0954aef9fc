#pragma once

#include "noisepp/core/TextureColor.h"

namespace noisepp {

/// Returns one stored colour for every point.
template <class Base>
class ConstantElement : public Base {
public:
    explicit ConstantElement(const TextureColor& color) : mColor(color) {}
    TextureColor getValue(double, double, double) const override { return mColor; }

private:
    const TextureColor mColor;
};

}  // namespace noisepp
