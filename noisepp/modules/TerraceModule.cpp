#include "noisepp/modules/TerraceModule.h"

#include <string>
#include <utility>

#include "noisepp/core/Exception.h"
#include "noisepp/core/Stream.h"
#include "noisepp/modules/TerraceElement3D.h"

namespace noisepp {

std::size_t TerraceModule::addToPipeline(Pipeline3D* pipeline) const {
    requireSources(NOISEPP_FUNCTION);
    const auto count = static_cast<std::int32_t>(mTerracePoints.size());
    NOISEPP_REQUIRE(count >= 2, "count");
    const std::size_t source = getSourceModule(0)->addToPipeline(pipeline);
    return pipeline->addElement(this, new TerraceElement3D(*pipeline, source, mTerracePoints.data(),
                                                           count, mInvertTerraces));
}

void TerraceModule::write(OutStream& stream) const {
    stream.writeInt32(static_cast<std::int32_t>(mTerracePoints.size()));
    for (const double point : mTerracePoints)
        stream.writeDouble(point);
    stream.writeInt32(mInvertTerraces ? 1 : 0);
}

void TerraceModule::read(InStream& stream) {
    const std::int32_t count = stream.readInt32();
    if (count < 0) {
        throw StreamException("terrace point count " + std::to_string(count) + " is negative");
    }
    std::vector<double> points;
    for (std::int32_t i = 0; i < count; ++i)
        points.push_back(stream.readDouble());
    const bool invert = stream.readInt32() != 0;
    mTerracePoints = std::move(points);
    mInvertTerraces = invert;
}

}  // namespace noisepp
