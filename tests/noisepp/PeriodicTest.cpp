// Covers: module trees compiled with a period (every generator and a few mixed graphs) repeat
// it within 1e-6, continue across the wrap as smoothly as between interior neighbours, keep
// their run forms equal to the one-point colours on every instruction set and report their
// snapped frequencies; trees that cannot repeat are refused naming the node and why.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "TestSupport.h"

namespace noisepp {
namespace {

using test::PointSet;

constexpr double kPeriodX = 1.5;
constexpr double kPeriodY = 1.0;
constexpr double kQuarterTurn = static_cast<double>(1.5707963267948966f);

/// Owns the modules of the trees under test.
struct Tree {
    std::vector<std::unique_ptr<Module>> modules;
    template <class M>
    M& add(const std::vector<Module*>& sources = {}) {
        modules.push_back(std::make_unique<M>());
        for (std::size_t i = 0; i < sources.size(); ++i)
            modules.back()->setSourceModule(i, sources[i]);
        return static_cast<M&>(*modules.back());
    }
};

// A tiny repeating picture: a summed-area table of 2 x 2 pixels.
constexpr std::array<double, 16> kPicture = {0.1, 0.2, 0.3, 1.0, 0.5, 0.2, 0.4, 2.0,
                                             0.9, 0.6, 0.3, 2.0, 1.0, 1.0, 1.0, 4.0};

/// Every generator and a few mixed graphs, as roots of trees that `t` owns.
std::vector<std::pair<const char*, Module*>> repeatingTrees(Tree& t) {
    auto& perlin = t.add<PerlinModule>();
    perlin.setFrequency(3.3), perlin.setLacunarity(2.3), perlin.setOctaveCount(4.5);
    auto& ridged = t.add<RidgedMultiModule>();
    ridged.setFrequency(1.7), ridged.setQuality(2), ridged.setOctaveCount(5.0);
    auto& chips = t.add<VoronoiModule>();
    chips.setFrequency(4.2), chips.setShape(2), chips.setBias(1.0);
    auto& edges = t.add<VoronoiModule>();
    edges.setFrequency(3.0), edges.setShape(3);
    auto& fibers = t.add<FibersModule>({&t.add<PerlinModule>()});
    fibers.setScale(4.3);
    auto& wave = t.add<WaveModule>();
    wave.setFrequency(2.6), wave.setNoiseScale(0.3), wave.setNoiseStrength(0.8);
    auto& image = t.add<ImageModule>();
    image.setImage(2, 2, kPicture.data());
    image.setFlags(ImageModule::kRepeatX | ImageModule::kRepeatY);
    auto& turned = t.add<TransformModule>({&t.add<VoronoiModule>()});
    turned.setScale(0.7, 2.0, 1.0), turned.setTranslation(0.3, -0.2, 0.0);
    turned.setRotation(0.0, 0.0, kQuarterTurn);
    auto& warp = t.add<TurbulenceModule>({&t.add<CheckerboardModule>()});
    warp.setFrequency(2.5), warp.setPower(0.3);
    auto& billow = t.add<BillowModule>();
    billow.setQuality(4), billow.setColorize(false);
    auto& blobs = t.add<BlobsModule>();
    blobs.setFrequency(5.5), blobs.setLargeInteraction(true);
    return {{"Perlin, lacunarity 2.3", &perlin},
            {"Ridged Multi, quintic", &ridged},
            {"Voronoi chips", &chips},
            {"Voronoi edges", &edges},
            {"Fibers over Perlin", &fibers},
            {"disturbed planar Wave", &wave},
            {"Checkerboard", &t.add<CheckerboardModule>()},
            {"tiled Image", &image},
            {"Transform: scale, translation, quarter turn", &turned},
            {"Turbulence over Checkerboard plus value-noise Billow",
             &t.add<AdditionModule>({&warp, &billow})},
            {"Select of large Blobs and Perlin by Wave",
             &t.add<SelectModule>({&blobs, &t.add<PerlinModule>(), &t.add<WaveModule>()})}};
}

double distance(const TextureColor& a, const TextureColor& b) {
    return std::max({std::fabs(a.red - b.red), std::fabs(a.green - b.green),
                     std::fabs(a.blue - b.blue), std::fabs(a.opacity - b.opacity)});
}

TEST(PeriodicTest, TreesRepeatSmoothlyWithRunsEqualToPoints) {
    Tree tree;
    for (const auto& [name, root] : repeatingTrees(tree)) {
        SCOPED_TRACE(name);
        Pipeline3D pipeline;
        pipeline.setPeriodicity({{kPeriodX, kPeriodY, 0.0}});
        const PipelineElement3D& element = *pipeline.getElement(root->addToPipeline(&pipeline));
        EXPECT_FALSE(pipeline.getNotes().empty());

        // Pixel centres over one period, as a render samples them. Neighbours across the wrap
        // (last column to first, last row to first) must differ no more than inside, on
        // average: a single seam pair may exceed every interior one by chance.
        constexpr int kWidth = 192, kHeight = 128;
        std::vector<TextureColor> grid;
        PointSet points;
        double repeat = 0.0;
        for (int j = 0; j < kHeight; ++j) {
            for (int i = 0; i < kWidth; ++i) {
                const double x = -0.4 + (i + 0.5) * kPeriodX / kWidth;
                const double y = 0.3 + (j + 0.5) * kPeriodY / kHeight;
                grid.push_back(element.getValue(x, y, 0.25));
                if ((i + j * kWidth) % 17 != 0)
                    continue;
                points.add(x, y, 0.25);
                repeat = std::max({repeat,
                                   distance(grid.back(), element.getValue(x + kPeriodX, y, 0.25)),
                                   distance(grid.back(), element.getValue(x, y - kPeriodY, 0.25))});
            }
        }
        double sum[2] = {0.0, 0.0};  // inside, across the wrap
        int count[2] = {0, 0};
        for (int j = 0; j < kHeight; ++j) {
            for (int i = 0; i < kWidth; ++i) {
                for (const auto& [ni, nj] :
                     {std::pair{(i + 1) % kWidth, j}, {i, (j + 1) % kHeight}}) {
                    const bool wraps = ni < i || nj < j;
                    sum[wraps] += distance(grid[j * kWidth + i], grid[nj * kWidth + ni]);
                    ++count[wraps];
                }
            }
        }
        EXPECT_LE(repeat, 1e-6);
        EXPECT_LE(sum[1] / count[1], 2.0 * sum[0] / count[0] + 1e-6);
        test::forEachTarget([&] {
            test::expectRunsMatchPoints(element, -1.9, 0.7, 0.25, kPeriodX / kWidth, 150, points);
        });
    }
}

TEST(PeriodicTest, TreesThatCannotRepeatAreRefusedNamingTheNodeAndWhy) {
    Tree t;
    auto& turned = t.add<TransformModule>({&t.add<PerlinModule>()});
    turned.setRotation(0.0, 0.0, 0.5235987755982988);
    auto& rings = t.add<WaveModule>();
    rings.setWaveType(1);
    auto& picture = t.add<ImageModule>();
    picture.setFlags(ImageModule::kRepeatX);
    auto& fine = t.add<PerlinModule>();
    fine.setFrequency(1e12);
    for (const auto& [root, message] : std::vector<std::pair<Module*, std::string>>{
             {&turned,
              "'Texture Transform' cannot repeat: its rotation (0, 0, 30 degrees) turns the "
              "period off the axes; only scales, translations and rotations by multiples of 90 "
              "degrees repeat"},
             {&t.add<InvertModule>({&rings}),
              "'Wave Texture' cannot repeat: cylindrical waves circle one centre; use planar "
              "waves"},
             {&picture,
              "'Image Texture' cannot repeat: the picture does not repeat along y; turn tile_y "
              "on"},
             {&fine,
              "'Perlin Texture' cannot repeat: frequency 1e+12 puts more than 2^30 cells in a "
              "period of 1.5; lower the frequency or the texture range"}}) {
        Pipeline3D pipeline;
        pipeline.setPeriodicity({{kPeriodX, kPeriodY, 0.0}});
        EXPECT_EQ(test::messageOf([&, root = root] { root->addToPipeline(&pipeline); }), message);
    }
}

}  // namespace
}  // namespace noisepp
