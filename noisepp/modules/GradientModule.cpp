#include "noisepp/modules/GradientModule.h"

#include <string>
#include <utility>

#include "noisepp/core/Exception.h"
#include "noisepp/core/Stream.h"
#include "noisepp/modules/GradientElement3D.h"

namespace noisepp {

std::size_t GradientModule::addToPipeline(Pipeline3D* pipeline) const {
    requireSources(NOISEPP_FUNCTION);
    const std::size_t source = getSourceModule(0)->addToPipeline(pipeline);
    return pipeline->addElement(this, new GradientElement3D(*pipeline, source, mGradient));
}

void GradientModule::write(OutStream& stream) const {
    stream.writeInt32(mGradient.getMode());
    stream.writeInt32(static_cast<std::int32_t>(mGradient.getStopCount()));
    for (const ColorGradient::Stop& stop : mGradient.getStops()) {
        stream.writeDouble(stop.position);
        stream.writeDouble(stop.color.red);
        stream.writeDouble(stop.color.green);
        stream.writeDouble(stop.color.blue);
        stream.writeDouble(stop.color.opacity);
    }
}

void GradientModule::read(InStream& stream) {
    ColorGradient gradient;
    gradient.setMode(stream.readInt32());
    const std::int32_t count = stream.readInt32();
    if (count < 0) {
        throw StreamException("gradient stop count " + std::to_string(count) + " is negative");
    }
    for (std::int32_t i = 0; i < count; ++i) {
        double values[5];
        for (double& value : values)
            value = stream.readDouble();
        gradient.addStop(static_cast<float>(values[0]),
                         {static_cast<float>(values[1]), static_cast<float>(values[2]),
                          static_cast<float>(values[3]), static_cast<float>(values[4])});
    }
    mGradient = std::move(gradient);
}

}  // namespace noisepp
