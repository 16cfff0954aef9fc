#include "tools/icon-maker/EngineIcons.h"

#include <memory>
#include <numbers>

#include "noisepp/modules/BillowModule.h"
#include "noisepp/modules/BlobsModule.h"
#include "noisepp/modules/CheckerboardModule.h"
#include "noisepp/modules/FibersModule.h"
#include "noisepp/modules/PerlinModule.h"
#include "noisepp/modules/RidgedMultiModule.h"
#include "noisepp/modules/TransformModule.h"
#include "noisepp/modules/TurbulenceModule.h"
#include "noisepp/modules/VoronoiModule.h"
#include "noisepp/modules/WaveModule.h"
#include "tools/icon-maker/EngineSwatch.h"

namespace {

using noisepp::TextureColor;

TextureColor rgb(int red, int green, int blue) {
    return EngineSwatch::color(red, green, blue);
}

QImage perlin(int size) {
    noisepp::PerlinModule module;
    module.setFrequency(1.2);
    module.setOctaveCount(6);
    module.setSeed(3);
    module.setColorA(rgb(18, 36, 92));
    module.setColorB(rgb(250, 214, 130));
    return EngineSwatch(0.0, 0.0, 2.5).render(module, size);
}

QImage billow(int size) {
    noisepp::BillowModule module;
    module.setFrequency(1.0);
    module.setOctaveCount(5);
    module.setSeed(7);
    module.setColorA(rgb(44, 92, 170));
    module.setColorB(rgb(244, 248, 255));
    return EngineSwatch(0.0, 0.0, 2.5).render(module, size);
}

QImage ridgedMulti(int size) {
    noisepp::RidgedMultiModule module;
    module.setFrequency(1.0);
    module.setOctaveCount(6);
    module.setSeed(2);
    module.setColorA(rgb(24, 10, 4));
    module.setColorB(rgb(255, 180, 70));
    return EngineSwatch(0.0, 0.0, 2.5).render(module, size);
}

QImage voronoi(int size) {
    noisepp::VoronoiModule module;
    module.setFrequency(1.0);
    module.setSeed(5);
    module.setColorA(rgb(14, 60, 40));
    module.setColorB(rgb(176, 240, 170));
    return EngineSwatch(0.0, 0.0, 3.0).render(module, size);
}

QImage fibers(int size) {
    noisepp::FibersModule module;
    module.setScale(1.0);
    module.setAspect(3.0);
    module.setFibers(24);
    module.setAlignment(0.85);
    module.setSize(0.8);
    module.setSeed(4);
    module.setColorMatrix(rgb(96, 56, 24));
    module.setColorA(rgb(150, 96, 44));
    module.setColorB(rgb(246, 206, 140));
    return EngineSwatch(0.0, 0.0, 3.0).render(module, size);
}

QImage blobs(int size) {
    noisepp::BlobsModule module;
    module.setFrequency(1.0);
    module.setMinRadius(0.2);
    module.setMaxRadius(0.7);
    module.setDensity(255.0);
    module.setSeed(9);
    module.setColorA(rgb(22, 18, 64));
    module.setColorB(rgb(255, 120, 170));
    return EngineSwatch(0.0, 0.0, 3.0).render(module, size);
}

QImage wave(int size) {
    noisepp::WaveModule module;
    module.setWaveType(2);
    module.setFrequency(1.6);
    module.setNoiseScale(1.5);
    module.setNoiseStrength(0.15);
    module.setColorA(rgb(8, 48, 92));
    module.setColorB(rgb(130, 224, 255));
    // Centred on the origin so that the rings are concentric in the icon.
    return EngineSwatch(-2.0, -2.0, 4.0).render(module, size);
}

QImage checkerboard(int size) {
    noisepp::CheckerboardModule module;
    module.setColorA(rgb(44, 44, 48));
    module.setColorB(rgb(232, 232, 226));
    return EngineSwatch(0.0, 0.0, 4.0).render(module, size);
}

QImage transform(int size) {
    noisepp::CheckerboardModule board;
    board.setColorA(rgb(30, 84, 110));
    board.setColorB(rgb(210, 236, 240));
    noisepp::TransformModule module;
    module.setSourceModule(0, &board);
    module.setRotation(0.0, 0.0, std::numbers::pi / 6.0);
    module.setScale(1.3, 1.3, 1.0);
    return EngineSwatch(-2.0, -2.0, 4.0).render(module, size);
}

QImage turbulence(int size) {
    noisepp::WaveModule stripes;
    stripes.setFrequency(1.5);
    stripes.setColorA(rgb(20, 70, 90));
    stripes.setColorB(rgb(200, 240, 236));
    noisepp::TurbulenceModule module;
    module.setSourceModule(0, &stripes);
    module.setFrequency(0.8);
    module.setPower(0.9);
    module.setSeed(1);
    return EngineSwatch(0.0, 0.0, 3.0).render(module, size);
}

using Renderer = QImage (*)(int);

Renderer rendererFor(const std::string& stem) {
    if (stem == "TexturePerlin")
        return perlin;
    if (stem == "TextureBillow")
        return billow;
    if (stem == "TextureRidgedMulti")
        return ridgedMulti;
    if (stem == "TextureVoronoi")
        return voronoi;
    if (stem == "TextureFibers")
        return fibers;
    if (stem == "TextureBlobs")
        return blobs;
    if (stem == "TextureWave")
        return wave;
    if (stem == "TextureCheckerboard")
        return checkerboard;
    if (stem == "TextureTransform")
        return transform;
    if (stem == "TextureTurbulence")
        return turbulence;
    return nullptr;
}

}  // namespace

bool EngineIcons::has(const std::string& stem) {
    return rendererFor(stem) != nullptr;
}

QImage EngineIcons::render(const std::string& stem, int size) {
    const Renderer renderer = rendererFor(stem);
    return renderer != nullptr ? renderer(size) : QImage();
}
