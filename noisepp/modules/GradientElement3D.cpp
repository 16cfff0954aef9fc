#include "noisepp/modules/GradientElement3D.h"

#include "noisepp/modules/ColorGrey.h"

namespace noisepp {

GradientElement3D::GradientElement3D(const Pipeline3D& pipeline, std::size_t source,
                                     const ColorGradient& gradient)
    : mSource(pipeline.getElement(source)), mGradient(gradient) {}

TextureColor GradientElement3D::getValue(double x, double y, double z) const {
    return mGradient.sample(greyOf(mSource->getValue(x, y, z)));
}

void GradientElement3D::evaluateRun(const PointRun& points, TextureColor* out) const {
    mSource->getRunValues(points, out);
    for (std::size_t i = 0; i < points.count; ++i)
        out[i] = mGradient.sample(greyOf(out[i]));
}

}  // namespace noisepp
