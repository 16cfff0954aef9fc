#include "noisepp/modules/WaveModule.h"

#include "noisepp/core/Stream.h"
#include "noisepp/modules/WaveElement3D.h"

namespace noisepp {

std::size_t WaveModule::addToPipeline(Pipeline3D* pipeline) const {
    WaveElement3D::Settings settings{mFrequency,     mRange,
                                     mBias,          mType,
                                     mShape,         mColorA,
                                     mColorB,        mNoiseScale,
                                     mNoiseStrength, wrappingAdd(mNoiseSeed, pipeline->getSeed())};
    if (pipeline->getPeriodicity().isPeriodic())
        makePeriodic(settings, *pipeline);
    return pipeline->addElement(this, new WaveElement3D(settings));
}

void WaveModule::makePeriodic(WaveElement3D::Settings& settings, Pipeline3D& pipeline) const {
    constexpr const char* kNode = "Wave Texture";
    const auto& period = pipeline.getPeriodicity().period;
    if (mType == 2)
        throw NotPeriodicException(kNode, "spherical waves circle one centre; use planar waves");
    if (mType == 1 && (period[0] > 0.0 || period[1] > 0.0))
        throw NotPeriodicException(kNode, "cylindrical waves circle one centre; use planar waves");
    if (mType == 1 || !(period[0] > 0.0))
        return;  // Constant along every axis that repeats.
    // Planar bands run along x: a whole number of bands per period, and a whole number of
    // disturbance cells over those bands.
    const PeriodicLattice bands(mFrequency, Periodicity{{period[0], 0.0, 0.0}}, kNode);
    settings.frequency = bands.frequency(0);
    std::string note = std::string(kNode) + ": frequency " + bands.describe(mFrequency);
    if (mNoiseScale != 0.0) {
        const double bandCount = bands.cells(0);
        const PeriodicLattice cells(1.0 / mNoiseScale, Periodicity{{bandCount, 0.0, 0.0}}, kNode);
        settings.noiseScale = 1.0 / cells.frequency(0);
        settings.noiseCells = cells.cells(0);
        note += ", noise scale " + std::to_string(mNoiseScale) + " -> " +
                std::to_string(settings.noiseScale);
    }
    pipeline.addNote(note);
}

void WaveModule::write(OutStream& stream) const {
    stream.writeDouble(mFrequency);
}

void WaveModule::read(InStream& stream) {
    mFrequency = stream.readDouble();
}

}  // namespace noisepp
