#include "noisepp/modules/TransformElement3D.h"

namespace noisepp {

TransformElement3D::TransformElement3D(const Pipeline3D& pipeline, std::size_t source,
                                       const AffineTransform& inverse)
    : mSource(pipeline.getElement(source)),
      mMatrix(inverse.matrix),
      mTranslation(inverse.translation) {}

TextureColor TransformElement3D::getValue(double x, double y, double z) const {
    const auto& m = mMatrix;
    const auto& t = mTranslation;
    return mSource->getValue(m[0] * x + m[3] * y + m[6] * z + t[0],
                             m[1] * x + m[4] * y + m[7] * z + t[1],
                             m[2] * x + m[5] * y + m[8] * z + t[2]);
}

void TransformElement3D::evaluateRun(const PointRun& points, TextureColor* out) const {
    const auto& m = mMatrix;
    const auto& t = mTranslation;
    double x[kRunLength], y[kRunLength], z[kRunLength];
    for (std::size_t i = 0; i < points.count; ++i) {
        const double px = points.x[i];
        const double py = points.yAt(i);
        const double pz = points.zAt(i);
        x[i] = m[0] * px + m[3] * py + m[6] * pz + t[0];
        y[i] = m[1] * px + m[4] * py + m[7] * pz + t[1];
        z[i] = m[2] * px + m[5] * py + m[8] * pz + t[2];
    }
    mSource->getValues(x, y, z, points.count, out);
}

}  // namespace noisepp
