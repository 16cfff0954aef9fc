#include "noisepp/modules/FibersModule.h"

#include <memory>

#include "noisepp/modules/FibersElement3D.h"

namespace noisepp {

std::size_t FibersModule::addToPipeline(Pipeline3D* pipeline) const {
    const Module* matrix = getSourceModule(0);
    const std::size_t source =
        matrix != nullptr ? matrix->addToPipeline(pipeline) : FibersElement3D::kNoSource;

    FibreLayout::Parameters layout;
    layout.aspect = mAspect;
    layout.fibers = mFibers;
    layout.bias = mBias;
    layout.alignment = mAlignment;
    layout.density = mDensity;
    layout.size = mSize;
    layout.sizeBias = mSizeBias;
    layout.seed = static_cast<std::uint32_t>(wrappingAdd(mSeed, pipeline->getSeed()));
    const FibersElement3D::Settings settings{mScale,  mShape,  mFade,  mColorMatrix,
                                             mColorA, mColorB, layout, pipeline->getPeriodicity()};
    auto element = std::make_unique<FibersElement3D>(*pipeline, source, settings);
    if (settings.periodicity.isPeriodic())
        pipeline->addNote("Fibers Texture: scale " + element->describePeriod(mScale));
    return pipeline->addElement(this, element.release());
}

}  // namespace noisepp
