#include "noisepp/modules/PerlinModuleBase.h"

namespace noisepp {

OctaveTable PerlinModuleBase::makeOctaveTable(const Pipeline3D& pipeline) const {
    return OctaveTable::fractalSum(mFrequency, mOctaveCount, seedIn(pipeline), mLacunarity,
                                   mPersistence);
}

}  // namespace noisepp
