// Covers: Fibers determinism per seed, seeds, the matrix source (sampled between fibres, by
// pipeline index, bad index refused), shapes, what each layout parameter does (fibre count,
// density, size, aspect, alignment, length and width bias, fade, scale) and the type code.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "TestSupport.h"
#include "noisepp/modules/CheckerboardModule.h"
#include "noisepp/modules/FibersElement3D.h"
#include "noisepp/modules/FibersModule.h"

namespace noisepp {
namespace {

using test::Compiled;
using test::sampleGrid;

// A matrix colour no blend of the fibre colours can produce.
const TextureColor kMatrix{1.0f, 0.0f, 0.0f, 1.0f};
const TextureColor kA{0.0f, 0.2f, 0.2f, 1.0f};
const TextureColor kB{0.0f, 0.8f, 0.9f, 1.0f};

void distinctColours(FibersModule& m) {
    m.setColorMatrix(kMatrix);
    m.setColorA(kA);
    m.setColorB(kB);
}

std::vector<TextureColor> render(const FibersModule& m, int n = 64, double extent = 3.0,
                                 double z = 0.37) {
    return sampleGrid(m, n, -1.3, -0.6, extent, z);
}

/// Which samples show a fibre at all (a fibre drawn over the red matrix loses some red).
std::vector<bool> covered(const std::vector<TextureColor>& image) {
    std::vector<bool> mask;
    for (const TextureColor& c : image)
        mask.push_back(c.red < 1.0f);
    return mask;
}

double coveredShare(const std::vector<TextureColor>& image) {
    const auto mask = covered(image);
    return static_cast<double>(std::count(mask.begin(), mask.end(), true)) / mask.size();
}

/// True when every sample covered in `inner` is covered in `outer`.
bool coverageWithin(const std::vector<TextureColor>& inner,
                    const std::vector<TextureColor>& outer) {
    const auto a = covered(inner), b = covered(outer);
    for (std::size_t i = 0; i < a.size(); ++i)
        if (a[i] && !b[i])
            return false;
    return true;
}

TEST(Fibers, TheSameSeedGivesTheSameFibresAndAnotherSeedOthers) {
    FibersModule m;
    distinctColours(m);
    m.setSeed(12);
    const auto first = render(m);
    EXPECT_EQ(render(m), first);
    m.setSeed(13);
    EXPECT_NE(render(m), first);
    // The pipeline's seed adds to the module's.
    m.setSeed(10);
    EXPECT_EQ(sampleGrid(m, 64, -1.3, -0.6, 3.0, 0.37, 2), first);
}

TEST(Fibers, DefaultsCoverPartOfTheMatrixWithFibresBetweenColoursAAndB) {
    FibersModule m;
    distinctColours(m);
    const auto image = render(m, 96, 4.0);
    const double share = coveredShare(image);
    EXPECT_GT(share, 0.1);
    EXPECT_LT(share, 0.9);
    EXPECT_TRUE(std::any_of(image.begin(), image.end(), [](const TextureColor& c) {
        return c.red == 0.0f && c.green > 0.2f && c.green < 0.8f;
    })) << "some fibre shows a colour strictly between A and B";
}

TEST(Fibers, DensityZeroShowsTheMatrixColourEverywhere) {
    FibersModule m;
    distinctColours(m);
    m.setDensity(0.0);
    for (const TextureColor& c : render(m, 32))
        EXPECT_EQ(c, kMatrix);
    // So do no fibres at all, or fibres of no size.
    m.setDensity(1.0);
    m.setFibers(0);
    for (const TextureColor& c : render(m, 32))
        EXPECT_EQ(c, kMatrix);
    m.setFibers(4);
    m.setSize(0.0);
    for (const TextureColor& c : render(m, 32))
        EXPECT_EQ(c, kMatrix);
}

TEST(Fibers, TheMatrixSourceShowsBetweenTheFibresAtTheUnscaledPoint) {
    CheckerboardModule board;
    board.setColorA({1, 0, 0, 1});
    board.setColorB({1, 0, 1, 1});
    FibersModule m;
    distinctColours(m);
    m.setScale(3.0);
    m.setSourceModule(0, &board);
    const Compiled fibres(m);
    const Compiled checker(board);
    int matrixSamples = 0, fibreSamples = 0;
    for (double y = -1.0; y < 1.0; y += 0.05)
        for (double x = -1.0; x < 1.0; x += 0.05) {
            const TextureColor c = fibres(x, y, 0.2);
            if (c == checker(x, y, 0.2))
                ++matrixSamples;
            else if (c.red < 1.0f)
                ++fibreSamples;
        }
    EXPECT_GT(matrixSamples, 100);
    EXPECT_GT(fibreSamples, 100);

    m.setDensity(0.0);
    const Compiled bare(m);
    for (double x = -1.0; x < 1.0; x += 0.07)
        EXPECT_EQ(bare(x, 0.3, 0.2), checker(x, 0.3, 0.2));
}

TEST(Fibers, TheMatrixIsFoundByPipelineIndexAndABadIndexIsRefused) {
    Pipeline3D pipeline;
    CheckerboardModule board;
    const std::size_t boardId = board.addToPipeline(&pipeline);
    FibersElement3D::Settings settings{1.0, 0, 0.5, kMatrix, kA, kB, {}};
    settings.layout.density = 0.0;
    const FibersElement3D withBoard(pipeline, boardId, settings);
    EXPECT_EQ(withBoard.getValue(0.6, 0.1, 0.0), (TextureColor{1, 1, 1, 1}));
    const FibersElement3D withoutMatrix(pipeline, FibersElement3D::kNoSource, settings);
    EXPECT_EQ(withoutMatrix.getValue(0.6, 0.1, 0.0), kMatrix);
    try {
        FibersElement3D bad(pipeline, boardId + 1, settings);
        FAIL() << "an index past the pipeline's elements must throw";
    } catch (const OutOfRangeException& e) {
        EXPECT_NE(std::string(e.what()).find("'i'"), std::string::npos) << e.what();
    }
}

TEST(Fibers, ShapesDifferAndACylinderFitsInsideTheBoxOfTheSameFibre) {
    FibersModule m;
    distinctColours(m);
    m.setFade(0.0);
    m.setShape(0);
    const auto smooth = render(m);
    m.setShape(1);
    const auto box = render(m);
    m.setShape(2);
    const auto cylinder = render(m);
    EXPECT_NE(smooth, box);
    EXPECT_NE(box, cylinder);
    EXPECT_NE(smooth, cylinder);
    EXPECT_TRUE(coverageWithin(cylinder, box));
    EXPECT_LT(coveredShare(cylinder), coveredShare(box));
    // Unknown shapes are smooth.
    m.setShape(7);
    EXPECT_EQ(render(m), smooth);
}

TEST(Fibers, MoreFibresOrAHigherDensityOnlyAddFibres) {
    FibersModule m;
    distinctColours(m);
    m.setFibers(3);
    const auto three = render(m);
    m.setFibers(9);
    const auto nine = render(m);
    EXPECT_TRUE(coverageWithin(three, nine));
    EXPECT_GT(coveredShare(nine), coveredShare(three));

    m.setDensity(0.3);
    const auto sparse = render(m);
    m.setDensity(0.8);
    const auto dense = render(m);
    EXPECT_TRUE(coverageWithin(sparse, dense));
    EXPECT_TRUE(coverageWithin(dense, nine));
    EXPECT_GT(coveredShare(dense), coveredShare(sparse));
}

TEST(Fibers, SizeWidensTheFibresAndWidthBiasFavoursThinOrWideOnes) {
    FibersModule m;
    distinctColours(m);
    m.setShape(2);
    m.setSize(0.3);
    const double thin = coveredShare(render(m));
    m.setSize(0.9);
    const double wide = coveredShare(render(m));
    EXPECT_GT(wide, thin);

    m.setSizeBias(0.1);
    const double mostlyThin = coveredShare(render(m));
    m.setSizeBias(1.0);
    const double allWide = coveredShare(render(m));
    EXPECT_LT(mostlyThin, wide);
    EXPECT_GT(allWide, wide);
}

TEST(Fibers, LengthBiasRunsFromShortFibresToFullCellLength) {
    auto lengths = [](double bias) {
        FibreLayout::Parameters p;
        p.aspect = 3.0;
        p.bias = bias;
        const FibreLayout layout(p);
        std::vector<double> all;
        for (std::uint32_t i = 0; i < layout.fibreCount(); ++i)
            all.push_back(layout.length(i));
        return all;
    };
    for (double length : lengths(1.0))
        EXPECT_NEAR(length, 3.0, 1e-4) << "bias 1: every fibre as long as its cell";
    const auto even = lengths(0.5);
    const auto shortOnes = lengths(0.05);
    double evenMean = 0.0, shortMean = 0.0;
    for (std::size_t i = 0; i < even.size(); ++i) {
        EXPECT_LE(shortOnes[i], even[i] + 1e-4) << "a lower bias shortens the same fibre";
        evenMean += even[i] / even.size();
        shortMean += shortOnes[i] / even.size();
    }
    EXPECT_NEAR(evenMean, 1.5, 0.15);
    EXPECT_LT(shortMean, 0.4 * evenMean);
    EXPECT_GT(*std::min_element(shortOnes.begin(), shortOnes.end()), 0.0) << "none vanishes";
}

TEST(Fibers, FullAlignmentLaysEveryFibreAlongX) {
    FibreLayout::Parameters p;
    p.alignment = 1.0;
    const FibreLayout aligned(p);
    for (std::uint32_t i = 0; i < aligned.fibreCount(); ++i) {
        EXPECT_EQ(aligned.fibre(i).directionY, 0.0);
        EXPECT_EQ(aligned.fibre(i).bend, 0.0);
    }

    // Along aligned fibres the colour changes far less often than across them (hard-edged
    // boxes, so that a fibre is one colour from end to end).
    FibersModule m;
    distinctColours(m);
    m.setShape(1);
    m.setFade(0.0);
    m.setAspect(4.0);
    m.setFibers(12);
    m.setAlignment(1.0);
    const int n = 96;
    const auto image = render(m, n, 4.0);
    int alongX = 0, alongY = 0;
    for (int row = 1; row < n; ++row)
        for (int column = 1; column < n; ++column) {
            const TextureColor& c = image[row * n + column];
            alongX += !(c == image[row * n + column - 1]);
            alongY += !(c == image[(row - 1) * n + column]);
        }
    EXPECT_LT(alongX * 3, alongY);
    // Random directions mix both ways.
    m.setAlignment(0.0);
    const auto mixed = render(m, n, 4.0);
    alongX = alongY = 0;
    for (int row = 1; row < n; ++row)
        for (int column = 1; column < n; ++column) {
            const TextureColor& c = mixed[row * n + column];
            alongX += !(c == mixed[row * n + column - 1]);
            alongY += !(c == mixed[(row - 1) * n + column]);
        }
    EXPECT_GT(alongX * 2, alongY);
}

TEST(Fibers, LayoutLimitsItsParametersAndAspectLengthensTheCells) {
    FibreLayout::Parameters p;
    p.aspect = 100.0;
    p.fibers = 1000;
    p.density = 7.0;
    const FibreLayout limited(p);
    EXPECT_EQ(limited.cellLength(), FibreLayout::kMaxAspect);
    EXPECT_EQ(limited.fibreCount(),
              static_cast<std::size_t>(FibreLayout::kMaxFibers) * FibreLayout::kPatternCount);
    p.aspect = 0.2;
    p.fibers = -3;
    const FibreLayout floor(p);
    EXPECT_EQ(floor.cellLength(), 1.0);
    EXPECT_EQ(floor.fibreCount(), 0u);
    p.aspect = 2.5;
    p.fibers = 4;
    p.density = 0.5;
    const FibreLayout half(p);
    EXPECT_EQ(half.cellLength(), 2.5);
    EXPECT_GT(half.fibreCount(), 4u * 256u * 4u / 10u);
    EXPECT_LT(half.fibreCount(), 4u * 256u * 6u / 10u);
}

TEST(Fibers, FadeSoftensTheEdgesOnly) {
    FibersModule m;
    distinctColours(m);
    m.setShape(2);
    m.setFade(0.0);
    const auto hard = render(m);
    m.setFade(1.0);
    const auto soft = render(m);
    // A soft edge fades inside the hard one; it never widens a fibre.
    EXPECT_TRUE(coverageWithin(soft, hard));
    auto partial = [](const std::vector<TextureColor>& image) {
        return std::count_if(image.begin(), image.end(),
                             [](const TextureColor& c) { return c.red > 0.0f && c.red < 1.0f; });
    };
    EXPECT_GT(partial(soft), partial(hard) + 100);
}

TEST(Fibers, ScaleShrinksThePatternAndZCutsThroughLayers) {
    FibersModule m;
    distinctColours(m);
    m.setScale(2.0);
    const Compiled twice(m);
    m.setScale(1.0);
    const Compiled once(m);
    for (double x = -1.0; x < 1.0; x += 0.037)
        EXPECT_EQ(twice(x, 0.25, 0.125), once(2.0 * x, 0.5, 0.25));
    EXPECT_NE(render(m, 48, 3.0, 0.0), render(m, 48, 3.0, 0.9));
}

}  // namespace
}  // namespace noisepp
