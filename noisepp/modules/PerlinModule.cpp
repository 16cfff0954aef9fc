#include "noisepp/modules/PerlinModule.h"

#include "noisepp/modules/FractalSumElement3D.h"

namespace noisepp {

std::size_t PerlinModule::addToPipeline(Pipeline3D* pipeline) const {
    NOISEPP_REQUIRE(mOctaveCount >= 0.0, "mOctaveCount");
    auto* element = new PerlinElement3D(makeOctaveTable(*pipeline, "Perlin Texture"), mQuality,
                                        mScale, mColorize, makeColourRamp());
    return pipeline->addElement(this, element);
}

}  // namespace noisepp
