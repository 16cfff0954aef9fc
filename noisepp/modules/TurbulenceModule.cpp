#include "noisepp/modules/TurbulenceModule.h"

#include "noisepp/core/Stream.h"
#include "noisepp/modules/TurbulenceElement3D.h"

namespace noisepp {

TurbulenceModule::TurbulenceModule() : Module(1) {
    setRoughness(3.0);
    setSeed(0);
}

void TurbulenceModule::setFrequency(double frequency) {
    for (PerlinModule& generator : mGenerators)
        generator.setFrequency(frequency);
}

void TurbulenceModule::setRoughness(double roughness) {
    for (PerlinModule& generator : mGenerators)
        generator.setOctaveCount(roughness);
}

void TurbulenceModule::setSeed(std::int32_t seed) {
    for (std::int32_t axis = 0; axis < 3; ++axis) {
        mGenerators[static_cast<std::size_t>(axis)].setSeed(wrappingAdd(seed, axis));
    }
}

void TurbulenceModule::setQuality(std::int32_t quality) {
    for (PerlinModule& generator : mGenerators)
        generator.setQuality(quality);
}

std::size_t TurbulenceModule::addToPipeline(Pipeline3D* pipeline) const {
    requireSources(NOISEPP_FUNCTION);
    const std::size_t source = getSourceModule(0)->addToPipeline(pipeline);
    const std::size_t x = mGenerators[0].addToPipeline(pipeline);
    const std::size_t y = mGenerators[1].addToPipeline(pipeline);
    const std::size_t z = mGenerators[2].addToPipeline(pipeline);
    return pipeline->addElement(this, new TurbulenceElement3D(*pipeline, source, x, y, z, mPower));
}

void TurbulenceModule::write(OutStream& stream) const {
    stream.writeDouble(mPower);
    stream.writeDouble(getRoughness());
    stream.writeInt32(getSeed());
    stream.writeDouble(getFrequency());
    stream.writeInt32(getQuality());
}

void TurbulenceModule::read(InStream& stream) {
    const double power = stream.readDouble();
    const double roughness = stream.readDouble();
    const std::int32_t seed = stream.readInt32();
    const double frequency = stream.readDouble();
    const std::int32_t quality = stream.readInt32();
    mPower = power;
    setRoughness(roughness);
    setSeed(seed);
    setFrequency(frequency);
    setQuality(quality);
}

}  // namespace noisepp
