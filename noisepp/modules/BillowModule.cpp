#include "noisepp/modules/BillowModule.h"

#include "noisepp/modules/FractalSumElement3D.h"

namespace noisepp {

std::size_t BillowModule::addToPipeline(Pipeline3D* pipeline) const {
    NOISEPP_REQUIRE(mOctaveCount >= 0.0, "mOctaveCount");
    auto* element = new BillowElement3D(makeOctaveTable(*pipeline, "Billow Texture"), mQuality,
                                        mScale, mColorize, makeColourRamp());
    return pipeline->addElement(this, element);
}

}  // namespace noisepp
