#include "noisepp/modules/JoinModule.h"

#include "noisepp/core/Stream.h"
#include "noisepp/modules/JoinElement3D.h"

namespace noisepp {

std::size_t JoinModule::addToPipeline(Pipeline3D* pipeline) const {
    requireSources(NOISEPP_FUNCTION);
    const std::vector<std::size_t> sources = addSourcesToPipeline(pipeline);
    return pipeline->addElement(this, new JoinElement3D(*pipeline, sources[0], sources[1],
                                                        sources[2], mRed, mGreen, mBlue));
}

void JoinModule::write(OutStream& stream) const {
    stream.writeDouble(mRed);
    stream.writeDouble(mGreen);
    stream.writeDouble(mBlue);
}

void JoinModule::read(InStream& stream) {
    const double red = stream.readDouble();
    const double green = stream.readDouble();
    const double blue = stream.readDouble();
    mRed = red;
    mGreen = green;
    mBlue = blue;
}

}  // namespace noisepp
