// Covers: the singular-matrix substitute and elements keeping the parameters of their
// compilation. Lookup points for translation, rotation and scale (and so the composition and
// inverse of the affine record) are recorded with every module's colours in LineGraphTest.

#include <gtest/gtest.h>

#include "TestSupport.h"
#include "noisepp/modules/TransformModule.h"

namespace noisepp {
namespace {

using test::Compiled;
using test::EchoModule;

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

}  // namespace
}  // namespace noisepp
