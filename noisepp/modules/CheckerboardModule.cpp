#include "noisepp/modules/CheckerboardModule.h"

#include "noisepp/modules/CheckerboardElement3D.h"

namespace noisepp {

std::size_t CheckerboardModule::addToPipeline(Pipeline3D* pipeline) const {
    // A pair of squares is one unit: a repeating board fits whole pairs in its period.
    const PeriodicLattice pairs = compileLattice(1.0, *pipeline, "Checkerboard Texture");
    return pipeline->addElement(
        this, new CheckerboardElement3D(mColorA, mColorB, pairs.frequency(0), pairs.frequency(1)));
}

}  // namespace noisepp
