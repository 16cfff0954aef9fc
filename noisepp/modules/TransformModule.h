#pragma once

#include <array>

#include "noisepp/core/Module.h"
#include "noisepp/modules/AffineTransform.h"

namespace noisepp {

/// Moves, rotates and scales its source: scale first, then rotation (about x, then y, then
/// z), then translation. A positive translation moves the texture towards positive
/// coordinates and a scale above 1 enlarges it. The colour of the source is not changed.
///
/// Defaults: translation 0, rotation 0, scale 1 (the identity).
class TransformModule : public Module {
public:
    TransformModule() : Module(1) {}

    void setTranslation(double x, double y, double z) { mTranslation = {x, y, z}; }
    /// Rotation angles about x, y and z in radians.
    void setRotation(double x, double y, double z) { mRotation = {x, y, z}; }
    void setScale(double x, double y, double z) { mScale = {x, y, z}; }
    const std::array<double, 3>& getTranslation() const { return mTranslation; }
    const std::array<double, 3>& getRotation() const { return mRotation; }
    const std::array<double, 3>& getScale() const { return mScale; }

    /// Compiles the source, then the element with the inverse of the transform. A singular
    /// transform (a zero scale) does not fail. NoModuleException without a source. For a
    /// periodic pipeline the source is compiled for the period it sees through the transform;
    /// NotPeriodicException when a rotation turns that period off the axes.
    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 20; }
    /// Nine doubles: translation x, y, z, rotation x, y, z, scale x, y, z.
    void write(OutStream& stream) const override;
    void read(InStream& stream) override;

private:
    /// The transform from source to texture coordinates.
    AffineTransform forward() const;

    std::array<double, 3> mTranslation = {0.0, 0.0, 0.0};
    std::array<double, 3> mRotation = {0.0, 0.0, 0.0};
    std::array<double, 3> mScale = {1.0, 1.0, 1.0};
};

}  // namespace noisepp
