#include "noisepp/modules/GradientElement3D.h"

#include "noisepp/modules/ColorGrey.h"

namespace noisepp {

GradientElement3D::GradientElement3D(const Pipeline3D& pipeline, std::size_t source,
                                     const ColorGradient& gradient)
    : mSource(pipeline.getElement(source)), mGradient(gradient) {}

TextureColor GradientElement3D::getValue(double x, double y, double z) const {
    return mGradient.sample(greyOf(mSource->getValue(x, y, z)));
}

}  // namespace noisepp
