#include "noisepp/modules/ClampModule.h"

#include "noisepp/core/Stream.h"
#include "noisepp/modules/ClampElement3D.h"

namespace noisepp {
namespace {

void writeColor(OutStream& stream, const TextureColor& color) {
    stream.writeDouble(color.red);
    stream.writeDouble(color.green);
    stream.writeDouble(color.blue);
    stream.writeDouble(color.opacity);
}

TextureColor readColor(InStream& stream) {
    TextureColor color;
    color.red = static_cast<float>(stream.readDouble());
    color.green = static_cast<float>(stream.readDouble());
    color.blue = static_cast<float>(stream.readDouble());
    color.opacity = static_cast<float>(stream.readDouble());
    return color;
}

}  // namespace

std::size_t ClampModule::addToPipeline(Pipeline3D* pipeline) const {
    requireSources(NOISEPP_FUNCTION);
    const std::size_t source = getSourceModule(0)->addToPipeline(pipeline);
    return pipeline->addElement(this,
                                new ClampElement3D(*pipeline, source, mLowerColor, mUpperColor));
}

void ClampModule::write(OutStream& stream) const {
    writeColor(stream, mLowerColor);
    writeColor(stream, mUpperColor);
}

void ClampModule::read(InStream& stream) {
    const TextureColor lower = readColor(stream);
    mUpperColor = readColor(stream);
    mLowerColor = lower;
}

}  // namespace noisepp
