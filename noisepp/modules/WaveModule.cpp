#include "noisepp/modules/WaveModule.h"

#include "noisepp/core/Stream.h"
#include "noisepp/modules/WaveElement3D.h"

namespace noisepp {

std::size_t WaveModule::addToPipeline(Pipeline3D* pipeline) const {
    const WaveElement3D::Settings settings{
        mFrequency,     mRange,
        mBias,          mType,
        mShape,         mColorA,
        mColorB,        mNoiseScale,
        mNoiseStrength, wrappingAdd(mNoiseSeed, pipeline->getSeed())};
    return pipeline->addElement(this, new WaveElement3D(settings));
}

void WaveModule::write(OutStream& stream) const {
    stream.writeDouble(mFrequency);
}

void WaveModule::read(InStream& stream) {
    mFrequency = stream.readDouble();
}

}  // namespace noisepp
