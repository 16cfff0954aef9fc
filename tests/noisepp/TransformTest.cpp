// Covers: the singular-matrix substitute, elements keeping the parameters of their compilation,
// the affine record's composition and inverse. Lookup points for translation, rotation and
// scale are recorded with every module's colours in LineGraphTest.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>

#include "TestSupport.h"
#include "noisepp/modules/AffineTransform.h"
#include "noisepp/modules/TransformModule.h"

namespace noisepp {
namespace {

using test::Compiled;
using test::EchoModule;

constexpr double kQuarterTurn = std::numbers::pi / 2.0;

class TransformTest : public ::testing::Test {
protected:
    TransformTest() { mTransform.setSourceModule(0, &mEcho); }
    EchoModule mEcho;
    TransformModule mTransform;
};

TEST_F(TransformTest, ZeroScaleCompilesWithTheSubstituteReciprocal) {
    mTransform.setScale(0.0, 1.0, 1.0);
    const Compiled compiled(mTransform);
    // The cofactor of the remaining unit diagonal is 1, times 10000000 instead of 1 / 0.
    EXPECT_EQ(compiled.at(0.5, 3.0, 4.0), (TextureColor{5000000.0f, 0.0f, 0.0f, 1.0f}));
    mTransform.setTranslation(2.0, 0.0, 0.0);
    EXPECT_EQ(Compiled(mTransform).at(0.5, 3.0, 4.0),
              (TextureColor{-15000000.0f, 0.0f, 0.0f, 1.0f}));
}

TEST_F(TransformTest, CompiledElementKeepsTheParametersOfItsTime) {
    mTransform.setTranslation(1.0, 2.0, 3.0);
    const Compiled compiled(mTransform);
    mTransform.setTranslation(0.0, 0.0, 0.0);
    EXPECT_EQ(compiled.at(1.0, 2.0, 3.0), (TextureColor{0.0f, 0.0f, 0.0f, 1.0f}));
}

TEST(AffineTransform, ComposesFirstThenNext) {
    const AffineTransform scale = AffineTransform::fromComponents({0, 0, 0}, {0, 0, 0}, {2, 3, 4});
    const AffineTransform shift = AffineTransform::fromComponents({1, 1, 1}, {0, 0, 0}, {1, 1, 1});
    // Shift first, then scale: the translation is scaled too.
    const AffineTransform both = shift.then(scale);
    EXPECT_EQ(both.translation, (std::array<double, 3>{2.0, 3.0, 4.0}));
    EXPECT_EQ(both.matrix, scale.matrix);
    EXPECT_EQ(scale.then(shift).translation, (std::array<double, 3>{1.0, 1.0, 1.0}));
}

TEST(AffineTransform, InverseUndoesAGeneralTransform) {
    const AffineTransform rotation =
        AffineTransform::fromComponents({0, 0, 0}, {0.3, -1.1, 2.0}, {1, 1, 1});
    const AffineTransform scale =
        AffineTransform::fromComponents({0, 0, 0}, {0, 0, 0}, {0.5, -2.0, 3.0});
    const AffineTransform shift =
        AffineTransform::fromComponents({4.0, -5.0, 6.0}, {0, 0, 0}, {1, 1, 1});
    const AffineTransform forward = scale.then(rotation).then(shift);
    const AffineTransform identity = forward.then(forward.inverse());
    for (std::size_t i = 0; i < 9; ++i) {
        EXPECT_NEAR(identity.matrix[i], i % 4 == 0 ? 1.0 : 0.0, 1e-12) << "entry " << i;
    }
    for (const double t : identity.translation)
        EXPECT_NEAR(t, 0.0, 1e-12);
}

TEST(AffineTransform, FromComponentsScalesOnlyTheDiagonal) {
    const AffineTransform both =
        AffineTransform::fromComponents({0, 0, 0}, {0.0, 0.0, kQuarterTurn}, {2.0, 3.0, 4.0});
    // Column-major: entry 1 is row 1 of column 0 (sin), entry 3 row 0 of column 1 (-sin).
    EXPECT_NEAR(both.matrix[1], 1.0, 1e-15);
    EXPECT_NEAR(both.matrix[3], -1.0, 1e-15);
    EXPECT_NEAR(both.matrix[0], 0.0, 1e-15);
    EXPECT_EQ(both.matrix[8], 4.0);
}

}  // namespace
}  // namespace noisepp
