#include "noisepp/modules/ExponentModule.h"

#include "noisepp/core/Stream.h"
#include "noisepp/modules/ExponentElement3D.h"

namespace noisepp {

std::size_t ExponentModule::addToPipeline(Pipeline3D* pipeline) const {
    requireSources(NOISEPP_FUNCTION);
    const std::size_t source = getSourceModule(0)->addToPipeline(pipeline);
    return pipeline->addElement(this, new ExponentElement3D(*pipeline, source, mExponent));
}

void ExponentModule::write(OutStream& stream) const {
    stream.writeDouble(mExponent);
}

void ExponentModule::read(InStream& stream) {
    mExponent = stream.readDouble();
}

}  // namespace noisepp
