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

/// Owns the modules of one tree; make() returns its root.
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

struct PeriodicRow {
    const char* name;
    std::function<Module&(Tree&)> make;
};

const std::vector<PeriodicRow>& periodicRows() {
    static const std::vector<PeriodicRow> rows = {
        {"Perlin, lacunarity 2.3",
         [](Tree& t) -> Module& {
             auto& m = t.add<PerlinModule>();
             m.setFrequency(3.3), m.setLacunarity(2.3), m.setOctaveCount(4.5);
             return m;
         }},
        {"Billow, value noise",
         [](Tree& t) -> Module& {
             auto& m = t.add<BillowModule>();
             m.setFrequency(2.0), m.setQuality(4), m.setColorize(false);
             return m;
         }},
        {"Ridged Multi, quintic",
         [](Tree& t) -> Module& {
             auto& m = t.add<RidgedMultiModule>();
             m.setFrequency(1.7), m.setQuality(2), m.setOctaveCount(5.0);
             return m;
         }},
        {"Voronoi cells",
         [](Tree& t) -> Module& {
             auto& m = t.add<VoronoiModule>();
             m.setFrequency(4.2), m.setShape(2), m.setBias(1.0);
             return m;
         }},
        {"Voronoi edges",
         [](Tree& t) -> Module& {
             auto& m = t.add<VoronoiModule>();
             m.setFrequency(3.0), m.setShape(3);
             return m;
         }},
        {"Blobs",
         [](Tree& t) -> Module& {
             auto& m = t.add<BlobsModule>();
             m.setFrequency(5.5), m.setLargeInteraction(true), m.setDensity(0.8);
             return m;
         }},
        {"Fibers over Perlin",
         [](Tree& t) -> Module& {
             auto& m = t.add<FibersModule>({&t.add<PerlinModule>()});
             m.setScale(4.3);
             return m;
         }},
        {"disturbed planar Wave",
         [](Tree& t) -> Module& {
             auto& m = t.add<WaveModule>();
             m.setFrequency(2.6), m.setNoiseScale(0.3), m.setNoiseStrength(0.8);
             return m;
         }},
        {"Checkerboard", [](Tree& t) -> Module& { return t.add<CheckerboardModule>(); }},
        {"tiled Image",
         [](Tree& t) -> Module& {
             auto& m = t.add<ImageModule>();
             m.setImage(2, 2, kPicture.data());
             m.setFlags(ImageModule::kRepeatX | ImageModule::kRepeatY);
             return m;
         }},
        {"Transform: scale, translation, quarter turn",
         [](Tree& t) -> Module& {
             auto& m = t.add<TransformModule>({&t.add<VoronoiModule>()});
             m.setScale(0.7, 2.0, 1.0), m.setTranslation(0.3, -0.2, 0.0);
             m.setRotation(0.0, 0.0, kQuarterTurn);
             return m;
         }},
        {"Turbulence over Checkerboard plus Ridged",
         [](Tree& t) -> Module& {
             auto& warp = t.add<TurbulenceModule>({&t.add<CheckerboardModule>()});
             warp.setFrequency(2.5), warp.setPower(0.3);
             return t.add<AdditionModule>({&warp, &t.add<RidgedMultiModule>()});
         }},
        {"Select of Blobs and Perlin by Wave",
         [](Tree& t) -> Module& {
             return t.add<SelectModule>(
                 {&t.add<BlobsModule>(), &t.add<PerlinModule>(), &t.add<WaveModule>()});
         }},
    };
    return rows;
}

double colourDistance(const TextureColor& a, const TextureColor& b) {
    return std::max({std::fabs(a.red - b.red), std::fabs(a.green - b.green),
                     std::fabs(a.blue - b.blue), std::fabs(a.opacity - b.opacity)});
}

TEST(PeriodicTest, TreesRepeatSmoothlyWithRunsEqualToPoints) {
    for (const PeriodicRow& row : periodicRows()) {
        SCOPED_TRACE(row.name);
        Tree tree;
        const Module& root = row.make(tree);
        Pipeline3D pipeline;
        pipeline.setPeriodicity({{kPeriodX, kPeriodY, 0.0}});
        const PipelineElement3D& element = *pipeline.getElement(root.addToPipeline(&pipeline));
        EXPECT_FALSE(pipeline.getNotes().empty());

        // A grid of pixel centres over one period, as a render samples it. Across the wrap,
        // neighbours must differ no more than inside: on average (a single seam pair may
        // exceed every interior one by chance), with room for the average's own spread.
        constexpr int kWidth = 192, kHeight = 128;
        const auto point = [](int i, int j) {
            return std::array<double, 2>{-0.4 + (i + 0.5) * kPeriodX / kWidth,
                                         0.3 + (j + 0.5) * kPeriodY / kHeight};
        };
        std::vector<TextureColor> grid;
        PointSet points;
        double repeat = 0.0;
        for (int j = 0; j < kHeight; ++j) {
            for (int i = 0; i < kWidth; ++i) {
                const auto [x, y] = point(i, j);
                grid.push_back(element.getValue(x, y, 0.25));
                if ((i + j * kWidth) % 17 == 0)
                    points.add(x, y, 0.25);
                repeat = std::max(
                    {repeat, colourDistance(grid.back(), element.getValue(x + kPeriodX, y, 0.25)),
                     colourDistance(grid.back(), element.getValue(x, y - kPeriodY, 0.25))});
            }
        }
        const auto at = [&](int i, int j) { return grid[j * kWidth + i]; };
        double interior = 0.0, seam = 0.0;
        for (int j = 0; j < kHeight; ++j) {
            for (int i = 0; i < kWidth; ++i) {
                const bool lastColumn = i + 1 == kWidth, lastRow = j + 1 == kHeight;
                const double across = colourDistance(at(i, j), at(lastColumn ? 0 : i + 1, j));
                const double down = colourDistance(at(i, j), at(i, lastRow ? 0 : j + 1));
                interior += (lastColumn ? 0.0 : across) + (lastRow ? 0.0 : down);
                seam += (lastColumn ? across : 0.0) + (lastRow ? down : 0.0);
            }
        }
        interior /= 2.0 * kWidth * kHeight - kWidth - kHeight;
        seam /= kWidth + kHeight;
        EXPECT_LE(repeat, 1e-6);
        EXPECT_LE(seam, 2.0 * interior + 1e-6);
        test::forEachTarget([&] {
            test::expectRunsMatchPoints(element, -1.9, 0.7, 0.25, kPeriodX / kWidth, 150, points);
        });
    }
}

TEST(PeriodicTest, TreesThatCannotRepeatAreRefusedNamingTheNodeAndWhy) {
    struct Refusal {
        std::function<Module&(Tree&)> make;
        std::string message;
    };
    const std::vector<Refusal> refusals = {
        {[](Tree& t) -> Module& {
             auto& m = t.add<TransformModule>({&t.add<PerlinModule>()});
             m.setRotation(0.0, 0.0, 0.5235987755982988);
             return m;
         },
         "'Texture Transform' cannot repeat: its rotation (0, 0, 30 degrees) turns the period "
         "off the axes; only scales, translations and rotations by multiples of 90 degrees "
         "repeat"},
        {[](Tree& t) -> Module& {
             auto& m = t.add<WaveModule>();
             m.setWaveType(1);
             return t.add<InvertModule>({&m});
         },
         "'Wave Texture' cannot repeat: cylindrical waves circle one centre; use planar waves"},
        {[](Tree& t) -> Module& {
             auto& m = t.add<ImageModule>();
             m.setFlags(ImageModule::kRepeatX);
             return m;
         },
         "'Image Texture' cannot repeat: the picture does not repeat along y; turn tile_y on"},
        {[](Tree& t) -> Module& {
             auto& m = t.add<PerlinModule>();
             m.setFrequency(1e12);
             return m;
         },
         "'Perlin Texture' cannot repeat: frequency 1e+12 puts more than 2^30 cells in a period "
         "of 1.5; lower the frequency or the texture range"},
    };
    for (const Refusal& refusal : refusals) {
        Tree tree;
        const Module& root = refusal.make(tree);
        Pipeline3D pipeline;
        pipeline.setPeriodicity({{kPeriodX, kPeriodY, 0.0}});
        EXPECT_EQ(test::messageOf([&] { root.addToPipeline(&pipeline); }), refusal.message);
    }
}

}  // namespace
}  // namespace noisepp
