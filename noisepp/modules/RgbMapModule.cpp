#include "noisepp/modules/RgbMapModule.h"

#include "noisepp/core/Stream.h"
#include "noisepp/modules/RgbMapElement3D.h"

namespace noisepp {

std::size_t RgbMapModule::addToPipeline(Pipeline3D* pipeline) const {
    requireSources(NOISEPP_FUNCTION);
    const std::vector<std::size_t> sources = addSourcesToPipeline(pipeline);
    return pipeline->addElement(this, new RgbMapElement3D(*pipeline, sources[0], sources[1], mMix));
}

void RgbMapModule::write(OutStream& stream) const {
    stream.writeDouble(mMix);
}

void RgbMapModule::read(InStream& stream) {
    mMix = stream.readDouble();
}

}  // namespace noisepp
