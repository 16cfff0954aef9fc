#include "noisepp/modules/VoronoiModule.h"

#include "noisepp/core/Stream.h"
#include "noisepp/math/ColourRamp.h"
#include "noisepp/modules/VoronoiElement3D.h"

namespace noisepp {

std::size_t VoronoiModule::addToPipeline(Pipeline3D* pipeline) const {
    const PeriodicLattice lattice = compileLattice(mFrequency, *pipeline, "Voronoi Texture");
    const VoronoiElement3D::Settings settings{
        wrappingAdd(mSeed, pipeline->getSeed()),
        mBias,
        mShape,
        mDisplacement,
        ColourRamp::create(mColorA, mColorB, mRangeLow, mRangeHigh),
        lattice};
    return pipeline->addElement(this, new VoronoiElement3D(settings));
}

void VoronoiModule::write(OutStream& stream) const {
    stream.writeDouble(mFrequency);
    stream.writeInt32(mSeed);
    stream.writeDouble(mDisplacement);
    stream.writeInt32(mShape);
}

void VoronoiModule::read(InStream& stream) {
    const double frequency = stream.readDouble();
    const std::int32_t seed = stream.readInt32();
    const double displacement = stream.readDouble();
    const std::int32_t shape = stream.readInt32();
    mFrequency = frequency;
    mSeed = seed;
    mDisplacement = displacement;
    mShape = shape;
}

}  // namespace noisepp
