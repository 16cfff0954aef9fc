#include "noisepp/modules/CheckerboardModule.h"

#include "noisepp/modules/CheckerboardElement3D.h"

namespace noisepp {

std::size_t CheckerboardModule::addToPipeline(Pipeline3D* pipeline) const {
    return pipeline->addElement(this, new CheckerboardElement3D(mColorA, mColorB));
}

}  // namespace noisepp
