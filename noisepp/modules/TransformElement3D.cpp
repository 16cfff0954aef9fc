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

}  // namespace noisepp
