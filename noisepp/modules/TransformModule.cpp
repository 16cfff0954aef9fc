#include "noisepp/modules/TransformModule.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include "noisepp/core/Stream.h"
#include "noisepp/modules/AffineTransform.h"
#include "noisepp/modules/TransformElement3D.h"

namespace noisepp {

namespace {

/// The period the source of a transform sees: a texture period along axis i moves the source
/// point by column i of the inverse matrix times that period, which is a period of the source
/// only when the column lies along one axis (a scale, a quarter turn). The residues a quarter
/// turn leaves off that axis (angles reach here in single precision, so about 4e-8) are set
/// to zero in `inverse`, or the source would drift by them once per period. Throws
/// NotPeriodicException for any other rotation.
Periodicity sourcePeriodicity(AffineTransform& inverse, const Periodicity& periodicity,
                              const std::array<double, 3>& rotation) {
    Periodicity source;
    for (std::size_t column = 0; column < 3; ++column) {
        const double period = periodicity.period[column];
        if (!(period > 0.0))
            continue;
        double* m = &inverse.matrix[column * 3];
        const double largest = std::max({std::fabs(m[0]), std::fabs(m[1]), std::fabs(m[2])});
        std::size_t along = 3;
        for (std::size_t row = 0; row < 3; ++row) {
            if (std::fabs(m[row]) <= largest * 1e-6) {
                m[row] = 0.0;
                continue;
            }
            along = along == 3 ? row : 4;
        }
        if (along > 2 || source.period[along] > 0.0) {
            constexpr double kDegrees = 57.29577951308232;
            std::ostringstream reason;
            reason << "its rotation (" << rotation[0] * kDegrees << ", " << rotation[1] * kDegrees
                   << ", " << rotation[2] * kDegrees
                   << " degrees) turns the period off the axes; only scales, translations and "
                      "rotations by multiples of 90 degrees repeat";
            throw NotPeriodicException("Texture Transform", reason.str());
        }
        source.period[along] = std::fabs(m[along]) * period;
    }
    return source;
}

}  // namespace

std::size_t TransformModule::addToPipeline(Pipeline3D* pipeline) const {
    requireSources(NOISEPP_FUNCTION);
    AffineTransform inverse = forward().inverse();
    std::size_t source = 0;
    if (pipeline->getPeriodicity().isPeriodic()) {
        const PeriodScope scope(*pipeline,
                                sourcePeriodicity(inverse, pipeline->getPeriodicity(), mRotation));
        source = getSourceModule(0)->addToPipeline(pipeline);
    } else {
        source = getSourceModule(0)->addToPipeline(pipeline);
    }
    return pipeline->addElement(this, new TransformElement3D(*pipeline, source, inverse));
}

AffineTransform TransformModule::forward() const {
    // Rotation and scale are built apart so that each is pure; together in one record the
    // scale would only reach the diagonal of the rotated matrix.
    const std::array<double, 3> none = {0.0, 0.0, 0.0};
    const std::array<double, 3> unit = {1.0, 1.0, 1.0};
    const AffineTransform rotation = AffineTransform::fromComponents(none, mRotation, unit);
    const AffineTransform scale = AffineTransform::fromComponents(none, none, mScale);
    const AffineTransform translation = AffineTransform::fromComponents(mTranslation, none, unit);
    return scale.then(rotation).then(translation);
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
