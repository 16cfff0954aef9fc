#include "noisepp/modules/ScaleBiasModule.h"

#include "noisepp/core/Stream.h"
#include "noisepp/modules/ScaleBiasElement3D.h"

namespace noisepp {

std::size_t ScaleBiasModule::addToPipeline(Pipeline3D* pipeline) const {
    requireSources(NOISEPP_FUNCTION);
    const std::size_t source = getSourceModule(0)->addToPipeline(pipeline);
    return pipeline->addElement(this, new ScaleBiasElement3D(*pipeline, source, mScale, mBias));
}

void ScaleBiasModule::write(OutStream& stream) const {
    stream.writeDouble(mScale);
    stream.writeDouble(mBias);
}

void ScaleBiasModule::read(InStream& stream) {
    const double scale = stream.readDouble();
    const double bias = stream.readDouble();
    mScale = static_cast<float>(scale);
    mBias = static_cast<float>(bias);
}

}  // namespace noisepp
