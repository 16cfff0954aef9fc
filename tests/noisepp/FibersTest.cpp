// Covers: the Fibers matrix source (sampled between fibres at the unscaled point, found by
// pipeline index, a bad index refused). The layout parameters' effect is recorded with every
// module's colours in LineGraphTest.

#include <gtest/gtest.h>

#include <string>

#include "TestSupport.h"
#include "noisepp/modules/CheckerboardModule.h"
#include "noisepp/modules/FibersElement3D.h"
#include "noisepp/modules/FibersModule.h"

namespace noisepp {
namespace {

using test::Compiled;

// A matrix colour no blend of the fibre colours can produce.
const TextureColor kMatrix{1.0f, 0.0f, 0.0f, 1.0f};
const TextureColor kA{0.0f, 0.2f, 0.2f, 1.0f};
const TextureColor kB{0.0f, 0.8f, 0.9f, 1.0f};

void distinctColours(FibersModule& m) {
    m.setColorMatrix(kMatrix);
    m.setColorA(kA);
    m.setColorB(kB);
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
            const TextureColor c = fibres.at(x, y, 0.2);
            if (c == checker.at(x, y, 0.2))
                ++matrixSamples;
            else if (c.red < 1.0f)
                ++fibreSamples;
        }
    EXPECT_GT(matrixSamples, 100);
    EXPECT_GT(fibreSamples, 100);

    m.setDensity(0.0);
    const Compiled bare(m);
    for (double x = -1.0; x < 1.0; x += 0.07)
        EXPECT_EQ(bare.at(x, 0.3, 0.2), checker.at(x, 0.3, 0.2));
}

TEST(Fibers, TheMatrixIsFoundByPipelineIndexAndABadIndexIsRefused) {
    Pipeline3D pipeline;
    CheckerboardModule board;
    const std::size_t boardId = board.addToPipeline(&pipeline);
    FibersElement3D::Settings settings{1.0, 0, 0.5, kMatrix, kA, kB, {}, {}};
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

}  // namespace
}  // namespace noisepp
