// fibers-gallery: renders the Fibers texture at the settings shown in docs/fibers.md, one PNG
// per setting, so that the pictures in the documentation can be made again after a change.
//
//   fibers-gallery [--output DIR] [--size PIXELS] [--only NAME]

#include <CLI/CLI.hpp>

#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "noisepp/modules/FibersModule.h"
#include "noisepp/modules/TransformModule.h"
#include "noisepp/modules/WaveModule.h"
#include "tools/common/PlanePicture.h"

namespace {

using noisepp::FibersModule;
using noisepp::TextureColor;

constexpr TextureColor rgb(float r, float g, float b) {
    return {r, g, b, 1.0f};
}

/// One picture: a name (the file is fibers-<name>.png), what it shows, and the settings.
struct Picture {
    std::string name;
    std::string caption;
    /// Side of the square of texture space shown, from (0, 0).
    double extent;
    std::function<void(FibersModule&)> configure;
    /// Whether the matrix is the growth-ring texture instead of the matrix colour.
    bool ringMatrix = false;
};

/// A number as a caption shows it: 0, 0.5, 0.9.
std::string shortNumber(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

std::vector<Picture> pictures() {
    std::vector<Picture> list;
    list.push_back({"defaults", "node defaults", 4.0, [](FibersModule&) {}});
    list.push_back({"paper", "paper", 1.0, [](FibersModule& m) {
                        m.setScale(10.0);
                        m.setAspect(2.0);
                        m.setFibers(96);
                        m.setBias(0.5);
                        m.setAlignment(0.15);
                        m.setShape(0);
                        m.setSize(0.3);
                        m.setFade(1.0);
                        m.setSizeBias(0.5);
                        m.setColorMatrix(rgb(0.93f, 0.92f, 0.88f));
                        m.setColorA(rgb(0.84f, 0.83f, 0.79f));
                        m.setColorB(rgb(1.0f, 1.0f, 0.98f));
                    }});
    list.push_back({"brushed-metal", "brushed metal", 1.0, [](FibersModule& m) {
                        m.setScale(8.0);
                        m.setAspect(5.0);
                        m.setFibers(160);
                        m.setBias(0.9);
                        m.setAlignment(1.0);
                        m.setShape(2);
                        m.setSize(0.25);
                        m.setFade(1.0);
                        m.setSizeBias(0.5);
                        m.setColorMatrix(rgb(0.62f, 0.63f, 0.65f));
                        m.setColorA(rgb(0.52f, 0.53f, 0.55f));
                        m.setColorB(rgb(0.76f, 0.77f, 0.79f));
                    }});
    list.push_back({"hair", "hair", 1.0, [](FibersModule& m) {
                        m.setScale(5.0);
                        m.setAspect(5.0);
                        m.setFibers(160);
                        m.setBias(0.9);
                        m.setAlignment(0.95);
                        m.setShape(0);
                        m.setSize(0.25);
                        m.setFade(0.6);
                        m.setSizeBias(0.7);
                        m.setColorMatrix(rgb(0.09f, 0.05f, 0.03f));
                        m.setColorA(rgb(0.22f, 0.12f, 0.06f));
                        m.setColorB(rgb(0.78f, 0.56f, 0.33f));
                    }});
    list.push_back({"wood-fibre", "wood fibre over a Wave matrix (growth rings)", 1.0,
                    [](FibersModule& m) {
                        m.setScale(8.0);
                        m.setAspect(5.0);
                        m.setFibers(64);
                        m.setBias(0.6);
                        m.setAlignment(0.98);
                        m.setShape(0);
                        m.setSize(0.4);
                        m.setFade(0.9);
                        m.setSizeBias(0.4);
                        m.setColorA(rgb(0.50f, 0.32f, 0.16f));
                        m.setColorB(rgb(0.74f, 0.54f, 0.33f));
                    },
                    true});
    for (const double alignment : {0.0, 0.5, 0.9}) {
        const auto name = "alignment-" + std::to_string(static_cast<int>(alignment * 100.0));
        list.push_back(
            {name, "alignment " + shortNumber(alignment), 2.0, [alignment](FibersModule& m) {
                 m.setScale(4.0);
                 m.setAspect(3.0);
                 m.setFibers(12);
                 m.setSize(0.5);
                 m.setAlignment(alignment);
             }});
    }
    const char* shapes[] = {"smooth", "box", "cylinder"};
    for (int shape = 0; shape < 3; ++shape) {
        list.push_back(
            {std::string("shape-") + shapes[shape], shapes[shape], 1.0, [shape](FibersModule& m) {
                 m.setScale(3.0);
                 m.setAspect(2.0);
                 m.setFibers(6);
                 m.setSize(1.0);
                 m.setFade(0.3);
                 m.setShape(shape);
             }});
    }
    return list;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{"Renders the Fibers texture at the settings shown in docs/fibers.md."};
    std::string output = "docs/images";
    int size = 256;
    std::string only;
    app.add_option("-o,--output", output, "Folder for the fibers-<name>.png files")
        ->capture_default_str();
    app.add_option("-s,--size", size, "Width and height of each picture in pixels")
        ->check(CLI::Range(16, 4096))
        ->capture_default_str();
    app.add_option("--only", only, "Render only the picture of this name (e.g. paper)");
    CLI11_PARSE(app, argc, argv);

    std::filesystem::create_directories(output);
    bool found = false;
    for (const Picture& picture : pictures()) {
        if (!only.empty() && picture.name != only)
            continue;
        found = true;
        FibersModule module;
        picture.configure(module);
        // Growth rings: bands around a far-away axis, so that they run nearly along x and
        // curve gently, with irregular spacing from the wave's noise.
        noisepp::WaveModule rings;
        rings.setWaveType(1);
        rings.setFrequency(7.0);
        rings.setBias(0.7);
        rings.setNoiseScale(0.6);
        rings.setNoiseStrength(0.5);
        rings.setColorA(rgb(0.50f, 0.32f, 0.16f));
        rings.setColorB(rgb(0.36f, 0.21f, 0.10f));
        noisepp::TransformModule ringsPlaced;
        ringsPlaced.setTranslation(0.3, -20.0, 0.0);
        ringsPlaced.setSourceModule(0, &rings);
        if (picture.ringMatrix)
            module.setSourceModule(0, &ringsPlaced);
        const std::string path = output + "/fibers-" + picture.name + ".png";
        std::string error;
        if (!PlanePicture(module, {0.0, 0.0, picture.extent, 0.0}, size)
                 .Save(path, false, &error)) {
            std::fprintf(stderr, "fibers-gallery: cannot write %s: %s\n", path.c_str(),
                         error.c_str());
            return 1;
        }
        std::printf("%s (%s)\n", path.c_str(), picture.caption.c_str());
    }
    if (!found) {
        std::fprintf(stderr, "fibers-gallery: no picture is named '%s'\n", only.c_str());
        return 1;
    }
    return 0;
}
