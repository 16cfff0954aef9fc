#include "noisepp/modules/RidgedMultiModule.h"

#include "noisepp/core/Stream.h"
#include "noisepp/modules/OctaveTable.h"
#include "noisepp/modules/RidgedMultiElement3D.h"

namespace noisepp {

std::size_t RidgedMultiModule::addToPipeline(Pipeline3D* pipeline) const {
    NOISEPP_REQUIRE(mOctaveCount >= 0.0, "mOctaveCount");
    OctaveTable octaves =
        OctaveTable::ridged(mFrequency, mOctaveCount, seedIn(*pipeline), mLacunarity, mExponent);
    auto* element = new RidgedMultiElement3D(std::move(octaves), mQuality, mScale, mOffset, mGain,
                                             mColorize, makeColourRamp());
    return pipeline->addElement(this, element);
}

void RidgedMultiModule::write(OutStream& stream) const {
    stream.writeDouble(mFrequency);
    stream.writeDouble(mOctaveCount);
    stream.writeInt32(mSeed);
    stream.writeInt32(mQuality);
    stream.writeDouble(mLacunarity);
    stream.writeDouble(mExponent);
    stream.writeDouble(mOffset);
    stream.writeDouble(mGain);
    stream.writeDouble(mScale);
}

void RidgedMultiModule::read(InStream& stream) {
    // Read everything before storing anything, so that a short stream leaves the module as it
    // was.
    const double frequency = stream.readDouble();
    const double octaveCount = stream.readDouble();
    const std::int32_t seed = stream.readInt32();
    const std::int32_t quality = stream.readInt32();
    const double lacunarity = stream.readDouble();
    const double exponent = stream.readDouble();
    const double offset = stream.readDouble();
    const double gain = stream.readDouble();
    const double scale = stream.readDouble();
    mFrequency = frequency;
    mOctaveCount = octaveCount;
    mSeed = seed;
    mQuality = quality;
    mLacunarity = lacunarity;
    mExponent = exponent;
    mOffset = offset;
    mGain = gain;
    mScale = scale;
}

}  // namespace noisepp
