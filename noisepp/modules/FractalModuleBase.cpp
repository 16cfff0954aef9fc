#include "noisepp/modules/FractalModuleBase.h"

#include <cstddef>

#include "noisepp/core/Stream.h"

namespace noisepp {

void FractalModuleBase::write(OutStream& stream) const {
    stream.writeDouble(mFrequency);
    stream.writeDouble(mOctaveCount);
    stream.writeInt32(mSeed);
    stream.writeInt32(mQuality);
    stream.writeDouble(mLacunarity);
    for (const double value : getOwnParameters())
        stream.writeDouble(value);
    stream.writeDouble(mScale);
}

void FractalModuleBase::read(InStream& stream) {
    const double frequency = stream.readDouble();
    const double octaveCount = stream.readDouble();
    const std::int32_t seed = stream.readInt32();
    const std::int32_t quality = stream.readInt32();
    const double lacunarity = stream.readDouble();
    std::vector<double> own(getOwnParameters().size());
    for (double& value : own)
        value = stream.readDouble();
    const double scale = stream.readDouble();
    mFrequency = frequency;
    mOctaveCount = octaveCount;
    mSeed = seed;
    mQuality = quality;
    mLacunarity = lacunarity;
    setOwnParameters(own);
    mScale = scale;
}

}  // namespace noisepp
