#include "noisepp/modules/RidgedMultiModule.h"

#include "noisepp/math/OctaveTable.h"
#include "noisepp/modules/RidgedMultiElement3D.h"

namespace noisepp {

std::size_t RidgedMultiModule::addToPipeline(Pipeline3D* pipeline) const {
    NOISEPP_REQUIRE(mOctaveCount >= 0.0, "mOctaveCount");
    OctaveTable octaves =
        OctaveTable::ridged(mFrequency, mOctaveCount, seedIn(*pipeline), mLacunarity, mExponent);
    octaves.makePeriodic(pipeline->getPeriodicity(), "Ridged Multi Texture", *pipeline);
    auto* element = new RidgedMultiElement3D(std::move(octaves), mQuality, mScale, mOffset, mGain,
                                             mColorize, makeColourRamp());
    return pipeline->addElement(this, element);
}

}  // namespace noisepp
