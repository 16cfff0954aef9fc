#include "noisepp/modules/TransformModule.h"

#include "noisepp/core/Stream.h"
#include "noisepp/modules/AffineTransform.h"
#include "noisepp/modules/TransformElement3D.h"

namespace noisepp {

std::size_t TransformModule::addToPipeline(Pipeline3D* pipeline) const {
    requireSources(NOISEPP_FUNCTION);
    const std::size_t source = getSourceModule(0)->addToPipeline(pipeline);

    // Rotation and scale are built apart so that each is pure; together in one record the
    // scale would only reach the diagonal of the rotated matrix.
    const std::array<double, 3> none = {0.0, 0.0, 0.0};
    const std::array<double, 3> unit = {1.0, 1.0, 1.0};
    const AffineTransform rotation = AffineTransform::fromComponents(none, mRotation, unit);
    const AffineTransform scale = AffineTransform::fromComponents(none, none, mScale);
    const AffineTransform translation = AffineTransform::fromComponents(mTranslation, none, unit);
    const AffineTransform forward = scale.then(rotation).then(translation);

    return pipeline->addElement(this, new TransformElement3D(*pipeline, source, forward.inverse()));
}

void TransformModule::write(OutStream& stream) const {
    for (const double value : mTranslation)
        stream.writeDouble(value);
    for (const double value : mRotation)
        stream.writeDouble(value);
    for (const double value : mScale)
        stream.writeDouble(value);
}

void TransformModule::read(InStream& stream) {
    // All nine are read before any is stored, so a short stream leaves the module as it was.
    std::array<double, 9> values{};
    for (double& value : values)
        value = stream.readDouble();
    mTranslation = {values[0], values[1], values[2]};
    mRotation = {values[3], values[4], values[5]};
    mScale = {values[6], values[7], values[8]};
}

}  // namespace noisepp
