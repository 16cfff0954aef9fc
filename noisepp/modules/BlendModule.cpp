#include "noisepp/modules/BlendModule.h"

#include "noisepp/core/Exception.h"
#include "noisepp/core/Stream.h"
#include "noisepp/modules/BlendElement3D.h"
#include "noisepp/modules/BlendFunctions.h"

namespace noisepp {

void BlendModule::setMode(std::uint32_t mode) {
    NOISEPP_REQUIRE(mode < kBlendFunctionCount, "mode");
    mMode = mode;
}

std::size_t BlendModule::addToPipeline(Pipeline3D* pipeline) const {
    if (getSourceModule(0) == nullptr || getSourceModule(1) == nullptr) {
        throw NoModuleException(NOISEPP_FUNCTION);
    }
    const std::size_t base = getSourceModule(0)->addToPipeline(pipeline);
    const std::size_t layer = getSourceModule(1)->addToPipeline(pipeline);
    const Module* maskModule = getSourceModule(2);
    const std::size_t mask =
        maskModule != nullptr ? maskModule->addToPipeline(pipeline) : BlendElement3D::kNoMask;
    return pipeline->addElement(this,
                                new BlendElement3D(*pipeline, base, layer, mask, mOpacity, mMode));
}

void BlendModule::write(OutStream& stream) const {
    stream.writeDouble(mOpacity);
    stream.writeInt32(static_cast<std::int32_t>(mMode));
}

void BlendModule::read(InStream& stream) {
    const double opacity = stream.readDouble();
    setMode(static_cast<std::uint32_t>(stream.readInt32()));
    mOpacity = opacity;
}

}  // namespace noisepp
