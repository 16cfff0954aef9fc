#include "noisepp/modules/PerlinModuleBase.h"

namespace noisepp {

OctaveTable PerlinModuleBase::makeOctaveTable(Pipeline3D& pipeline, const char* node) const {
    OctaveTable octaves = OctaveTable::fractalSum(mFrequency, mOctaveCount, seedIn(pipeline),
                                                  mLacunarity, mPersistence);
    octaves.makePeriodic(pipeline.getPeriodicity(), node, pipeline);
    return octaves;
}

}  // namespace noisepp
