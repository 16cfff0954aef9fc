#include "noisepp/modules/JoinElement3D.h"

#include "noisepp/modules/ColorGrey.h"

namespace noisepp {

JoinElement3D::JoinElement3D(const Pipeline3D& pipeline, std::size_t source0, std::size_t source1,
                             std::size_t source2, double red, double green, double blue)
    : mSource0(pipeline.getElement(source0)),
      mSource1(pipeline.getElement(source1)),
      mSource2(pipeline.getElement(source2)),
      mRed(red),
      mGreen(green),
      mBlue(blue) {}

TextureColor JoinElement3D::getValue(double x, double y, double z) const {
    const float red = greyOf(mSource0->getValue(x, y, z));
    const float green = greyOf(mSource1->getValue(x, y, z));
    const float blue = greyOf(mSource2->getValue(x, y, z));
    return {red, green, blue, 1.0f};
}

void JoinElement3D::evaluateRun(const PointRun& points, TextureColor* out) const {
    TextureColor c[kRunLength];
    mSource0->getRunValues(points, out);
    for (std::size_t i = 0; i < points.count; ++i)
        out[i].red = greyOf(out[i]);
    mSource1->getRunValues(points, c);
    for (std::size_t i = 0; i < points.count; ++i)
        out[i].green = greyOf(c[i]);
    mSource2->getRunValues(points, c);
    for (std::size_t i = 0; i < points.count; ++i)
        out[i] = {out[i].red, out[i].green, greyOf(c[i]), 1.0f};
}

}  // namespace noisepp
