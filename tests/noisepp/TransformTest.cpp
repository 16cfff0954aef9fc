// Covers: the Transform module's lookup point for translation, scale and each rotation axis
// (signs), the order scale -> rotation -> translation and x -> y -> z, the singular-matrix
// substitute, the affine record's composition and inverse, and the missing-source check.

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
using test::messageOf;

constexpr double kQuarterTurn = std::numbers::pi / 2.0;

// Where the transformed texture at `point` reads its source, as echoed back.
std::array<double, 3> lookup(const TransformModule& transform, std::array<double, 3> point) {
    const Compiled compiled(transform);
    const TextureColor c = compiled.at(point[0], point[1], point[2]);
    return {c.red, c.green, c.blue};
}

void expectPoint(const std::array<double, 3>& actual, const std::array<double, 3>& expected) {
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(actual[i], expected[i], 1e-6) << "axis " << i;
}

class TransformTest : public ::testing::Test {
protected:
    TransformTest() { mTransform.setSourceModule(0, &mEcho); }
    EchoModule mEcho;
    TransformModule mTransform;
};

TEST_F(TransformTest, DefaultsAreTheIdentity) {
    expectPoint(lookup(mTransform, {0.25, -3.5, 7.0}), {0.25, -3.5, 7.0});
}

TEST_F(TransformTest, TranslationAndScaleMoveAndEnlargeTheTexture) {
    mTransform.setTranslation(1.0, 0.0, 0.0);
    expectPoint(lookup(mTransform, {3.0, 2.0, 1.0}), {2.0, 2.0, 1.0});
    mTransform.setTranslation(0.0, 0.0, 0.0);
    mTransform.setScale(2.0, 2.0, 2.0);
    expectPoint(lookup(mTransform, {2.0, 2.0, 2.0}), {1.0, 1.0, 1.0});
    mTransform.setScale(1.0, -4.0, 0.5);
    expectPoint(lookup(mTransform, {1.0, 1.0, 1.0}), {1.0, -0.25, 2.0});
}

TEST_F(TransformTest, EachAxisRotatesCounterClockwise) {
    // A feature of the source at the first point appears at the second.
    mTransform.setRotation(0.0, 0.0, kQuarterTurn);
    expectPoint(lookup(mTransform, {0.0, 1.0, 0.0}), {1.0, 0.0, 0.0});
    mTransform.setRotation(kQuarterTurn, 0.0, 0.0);
    expectPoint(lookup(mTransform, {0.0, 0.0, 1.0}), {0.0, 1.0, 0.0});
    mTransform.setRotation(0.0, kQuarterTurn, 0.0);
    expectPoint(lookup(mTransform, {1.0, 0.0, 0.0}), {0.0, 0.0, 1.0});
}

TEST_F(TransformTest, RotatesAboutXBeforeZ) {
    // (0, 1, 0) about x goes to (0, 0, 1), which z leaves alone. The other order would send
    // it to (-1, 0, 0) instead.
    mTransform.setRotation(kQuarterTurn, 0.0, kQuarterTurn);
    expectPoint(lookup(mTransform, {0.0, 0.0, 1.0}), {0.0, 1.0, 0.0});
}

TEST_F(TransformTest, ScalesBeforeRotatingAndTranslatesLast) {
    // Scaling x by 2 happens in the source's axes: (1, 0, 0) -> (2, 0, 0) -> (0, 2, 0).
    mTransform.setScale(2.0, 1.0, 1.0);
    mTransform.setRotation(0.0, 0.0, kQuarterTurn);
    expectPoint(lookup(mTransform, {0.0, 2.0, 0.0}), {1.0, 0.0, 0.0});
    // The translation is not rotated: (1, 0, 0) -> (0, 2, 0) -> (1, 2, 0).
    mTransform.setTranslation(1.0, 0.0, 0.0);
    expectPoint(lookup(mTransform, {1.0, 2.0, 0.0}), {1.0, 0.0, 0.0});
}

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
