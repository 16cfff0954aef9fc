#include "noisepp/modules/SelectModule.h"

#include "noisepp/core/Stream.h"
#include "noisepp/modules/SelectElement3D.h"

namespace noisepp {

std::size_t SelectModule::addToPipeline(Pipeline3D* pipeline) const {
    requireSources(NOISEPP_FUNCTION);
    const std::vector<std::size_t> sources = addSourcesToPipeline(pipeline);
    return pipeline->addElement(
        this, new SelectElement3D(*pipeline, sources[0], sources[1], sources[2], mLowerBound,
                                  mUpperBound, mEdgeFalloff));
}

void SelectModule::write(OutStream& stream) const {
    stream.writeDouble(mLowerBound);
    stream.writeDouble(mUpperBound);
    stream.writeDouble(mEdgeFalloff);
}

void SelectModule::read(InStream& stream) {
    const double lower = stream.readDouble();
    const double upper = stream.readDouble();
    const double falloff = stream.readDouble();
    mLowerBound = lower;
    mUpperBound = upper;
    mEdgeFalloff = falloff;
}

}  // namespace noisepp
