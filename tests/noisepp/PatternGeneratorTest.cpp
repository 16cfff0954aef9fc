// Covers: the checkerboard's square size, parity across negative coordinates and z, folding
// of far coordinates; the constant colour and its stream (doubles, narrowed back on read).

#include <gtest/gtest.h>

#include "noisepp/core/Stream.h"
#include "noisepp/modules/CheckerboardModule.h"
#include "noisepp/modules/ConstantModule.h"

namespace noisepp {
namespace {

const TextureColor kRed{1, 0, 0, 1};
const TextureColor kBlue{0, 0, 1, 0.5f};

TextureColor sample(const Module& module, double x, double y, double z = 0.0) {
    Pipeline3D pipeline;
    return pipeline.getElement(module.addToPipeline(&pipeline))->getValue(x, y, z);
}

TEST(Checkerboard, HalfUnitSquaresAlternateInXAndYButNotZ) {
    CheckerboardModule board;
    board.setColorA(kRed);
    board.setColorB(kBlue);
    EXPECT_EQ(sample(board, 0.25, 0.25), kRed);
    EXPECT_EQ(sample(board, 0.75, 0.25), kBlue);
    EXPECT_EQ(sample(board, 0.25, 0.75), kBlue);
    EXPECT_EQ(sample(board, 0.75, 0.75), kRed);
    EXPECT_EQ(sample(board, 0.25, 0.25, 7.3), kRed);
    // Squares continue across zero: [-0.5, 0) is one square, [0, 0.5) the next.
    EXPECT_EQ(sample(board, -0.25, 0.25), kBlue);
    EXPECT_EQ(sample(board, -0.75, -0.25), kBlue);
    EXPECT_EQ(sample(board, -0.25, -0.25), kRed);
}

TEST(Checkerboard, DefaultsAreOpaqueBlackAndWhite) {
    CheckerboardModule board;
    EXPECT_EQ(sample(board, 0.1, 0.1), (TextureColor{0, 0, 0, 1}));
    EXPECT_EQ(sample(board, 0.6, 0.1), (TextureColor{1, 1, 1, 1}));
}

TEST(Constant, ReturnsItsColourEverywhereAndStreamsDoubles) {
    ConstantModule constant;
    constant.setColor({0.1f, 0.2f, 0.3f, 0.4f});
    EXPECT_EQ(sample(constant, -1e9, 3, 5), (TextureColor{0.1f, 0.2f, 0.3f, 0.4f}));

    MemoryOutStream out;
    constant.write(out);
    ASSERT_EQ(out.data().size(), 32u);
    MemoryInStream probe(out.data());
    EXPECT_EQ(probe.readDouble(), static_cast<double>(0.1f));

    ConstantModule copy;
    MemoryInStream in(out.data());
    copy.read(in);
    EXPECT_EQ(copy.getColor(), constant.getColor());

    MemoryInStream shortStream(
        std::vector<unsigned char>(out.data().begin(), out.data().begin() + 20));
    EXPECT_THROW(copy.read(shortStream), StreamException);
    EXPECT_EQ(copy.getColor(), constant.getColor()) << "a short stream must change nothing";
}

}  // namespace
}  // namespace noisepp
