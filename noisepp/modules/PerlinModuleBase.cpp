#include "noisepp/modules/PerlinModuleBase.h"

#include "noisepp/core/Stream.h"

namespace noisepp {

void PerlinModuleBase::write(OutStream& stream) const {
    stream.writeDouble(mFrequency);
    stream.writeDouble(mOctaveCount);
    stream.writeInt32(mSeed);
    stream.writeInt32(mQuality);
    stream.writeDouble(mLacunarity);
    stream.writeDouble(mPersistence);
    stream.writeDouble(mScale);
}

void PerlinModuleBase::read(InStream& stream) {
    // Read everything before storing anything, so that a short stream leaves the module as it
    // was.
    const double frequency = stream.readDouble();
    const double octaveCount = stream.readDouble();
    const std::int32_t seed = stream.readInt32();
    const std::int32_t quality = stream.readInt32();
    const double lacunarity = stream.readDouble();
    const double persistence = stream.readDouble();
    const double scale = stream.readDouble();
    mFrequency = frequency;
    mOctaveCount = octaveCount;
    mSeed = seed;
    mQuality = quality;
    mLacunarity = lacunarity;
    mPersistence = persistence;
    mScale = scale;
}

OctaveTable PerlinModuleBase::makeOctaveTable(const Pipeline3D& pipeline) const {
    return OctaveTable::fractalSum(mFrequency, mOctaveCount, seedIn(pipeline), mLacunarity,
                                   mPersistence);
}

}  // namespace noisepp
