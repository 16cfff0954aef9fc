#include "noisepp/modules/ConstantModule.h"

#include "noisepp/core/Stream.h"
#include "noisepp/modules/ConstantElement.h"

namespace noisepp {

std::size_t ConstantModule::addToPipeline(Pipeline3D* pipeline) const {
    return pipeline->addElement(this, new ConstantElement<PipelineElement3D>(mColor));
}

void ConstantModule::write(OutStream& stream) const {
    stream.writeDouble(mColor.red);
    stream.writeDouble(mColor.green);
    stream.writeDouble(mColor.blue);
    stream.writeDouble(mColor.opacity);
}

void ConstantModule::read(InStream& stream) {
    const double red = stream.readDouble();
    const double green = stream.readDouble();
    const double blue = stream.readDouble();
    const double opacity = stream.readDouble();
    mColor = {static_cast<float>(red), static_cast<float>(green), static_cast<float>(blue),
              static_cast<float>(opacity)};
}

}  // namespace noisepp
