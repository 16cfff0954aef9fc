#pragma once

#include <cstdint>

#include "noisepp/core/Module.h"
#include "noisepp/core/TextureColor.h"

namespace noisepp {

/// Cells around jittered feature points, one point per lattice cell (type code 21).
///
/// Shapes: 0 flat (each cell one random shade), 1 cells (shade plus the distance to the
/// nearest point), 2 chips (shade plus the gap between the nearest and second-nearest
/// distances), 3 and above edges (distance to the nearest cell border, colour A on the
/// border). Negative shapes count as flat.
///
/// Defaults: frequency 1, seed 0, bias 1, shape flat, displacement 1, range 0..1, colour A
/// opaque black, colour B opaque white. Every value is accepted; an empty range gives NaN
/// colours for the shapes that use it.
///
/// The stream holds frequency (double), seed (int32), displacement (double) and shape (int32);
/// bias, range and colours are not streamed.
class VoronoiModule : public Module {
public:
    VoronoiModule() : Module(0) {}

    /// Cells per unit.
    void setFrequency(double frequency) { mFrequency = frequency; }
    double getFrequency() const { return mFrequency; }
    /// Moves the feature points; the pipeline's seed is added to it when compiled.
    void setSeed(std::int32_t seed) { mSeed = seed; }
    std::int32_t getSeed() const { return mSeed; }
    /// How far a feature point may stray from its lattice corner, in cells: 0 makes every cell
    /// a cube.
    void setBias(double bias) { mBias = bias; }
    double getBias() const { return mBias; }
    void setShape(std::int32_t shape) { mShape = shape; }
    std::int32_t getShape() const { return mShape; }
    /// Weight of the random shade of each cell (not used by the edges shape).
    void setDisplacement(double displacement) { mDisplacement = displacement; }
    double getDisplacement() const { return mDisplacement; }
    /// The part of the value range 0..1 that spans colour A to colour B (not used by edges).
    void setRangeLow(double rangeLow) { mRangeLow = rangeLow; }
    double getRangeLow() const { return mRangeLow; }
    void setRangeHigh(double rangeHigh) { mRangeHigh = rangeHigh; }
    double getRangeHigh() const { return mRangeHigh; }
    void setColorA(const TextureColor& color) { mColorA = color; }
    const TextureColor& getColorA() const { return mColorA; }
    void setColorB(const TextureColor& color) { mColorB = color; }
    const TextureColor& getColorB() const { return mColorB; }

    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 21; }
    void write(OutStream& stream) const override;
    /// All or nothing: a short stream throws StreamException and leaves the module unchanged.
    void read(InStream& stream) override;

private:
    double mFrequency = 1.0;
    std::int32_t mSeed = 0;
    double mBias = 1.0;
    std::int32_t mShape = 0;
    double mDisplacement = 1.0;
    double mRangeLow = 0.0;
    double mRangeHigh = 1.0;
    TextureColor mColorA{0.0f, 0.0f, 0.0f, 1.0f};
    TextureColor mColorB{1.0f, 1.0f, 1.0f, 1.0f};
};

}  // namespace noisepp
