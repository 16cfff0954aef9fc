#include "noisepp/modules/BlobsModule.h"

#include "noisepp/core/Stream.h"
#include "noisepp/modules/BlobsElement3D.h"

namespace noisepp {

std::size_t BlobsModule::addToPipeline(Pipeline3D* pipeline) const {
    const PeriodicLattice lattice = compileLattice(mFrequency, *pipeline, "Blobs Texture");
    const BlobsElement3D::Settings settings{mColorA,
                                            mColorB,
                                            mMinRadius,
                                            mMaxRadius,
                                            mDensity,
                                            mLargeInteraction != 0,
                                            wrappingAdd(mSeed, pipeline->getSeed()),
                                            lattice};
    return pipeline->addElement(this, new BlobsElement3D(settings));
}

void BlobsModule::write(OutStream& stream) const {
    stream.writeDouble(mFrequency);
}

void BlobsModule::read(InStream& stream) {
    mFrequency = stream.readDouble();
}

}  // namespace noisepp
