// Covers: the channel-wise combiners (maximum, minimum, clamped addition, multiply, power)
// including opacity, their source order, Join's greys and fixed opacity, the type codes of
// every module of this family, and the missing-source reports of the combiners.

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <typeinfo>

#include "TestSupport.h"
#include "noisepp/modules/AdditionModule.h"
#include "noisepp/modules/BlendModule.h"
#include "noisepp/modules/ClampModule.h"
#include "noisepp/modules/CurveModule.h"
#include "noisepp/modules/ExponentModule.h"
#include "noisepp/modules/GradientModule.h"
#include "noisepp/modules/ImageModule.h"
#include "noisepp/modules/InvertModule.h"
#include "noisepp/modules/JoinModule.h"
#include "noisepp/modules/MaximumModule.h"
#include "noisepp/modules/MinimumModule.h"
#include "noisepp/modules/MultiplyModule.h"
#include "noisepp/modules/PowerModule.h"
#include "noisepp/modules/RgbMapModule.h"
#include "noisepp/modules/ScaleBiasModule.h"
#include "noisepp/modules/SelectModule.h"
#include "noisepp/modules/TerraceModule.h"
#include "noisepp/modules/TransformModule.h"

namespace noisepp {
namespace {

using test::Compiled;
using test::FixedColorModule;
using test::messageOf;

// Combines two fixed colours through `module` (source 0 = a, source 1 = b).
TextureColor combine(Module& module, const TextureColor& a, const TextureColor& b) {
    FixedColorModule first(a);
    FixedColorModule second(b);
    module.setSourceModule(0, &first);
    module.setSourceModule(1, &second);
    const TextureColor result = Compiled(module).at(0.5, 0.5, 0.5);
    module.setSourceModule(0, nullptr);
    module.setSourceModule(1, nullptr);
    return result;
}

const TextureColor kA{0.2f, 0.9f, -0.5f, 0.4f};
const TextureColor kB{0.6f, 0.3f, -0.25f, 0.8f};

TEST(DualSource, MaximumAndMinimumIncludeOpacity) {
    MaximumModule maximum;
    MinimumModule minimum;
    EXPECT_EQ(combine(maximum, kA, kB), (TextureColor{0.6f, 0.9f, -0.25f, 0.8f}));
    EXPECT_EQ(combine(minimum, kA, kB), (TextureColor{0.2f, 0.3f, -0.5f, 0.4f}));
}

TEST(DualSource, AdditionClampsEveryChannel) {
    AdditionModule addition;
    const TextureColor sum = combine(addition, {0.7f, 0.7f, 0.7f, 0.7f}, {0.6f, 0.1f, -0.9f, 0.5f});
    EXPECT_EQ(sum.red, 1.0f);
    EXPECT_FLOAT_EQ(sum.green, 0.8f);
    EXPECT_EQ(sum.blue, 0.0f);
    EXPECT_EQ(sum.opacity, 1.0f) << "opacity is added and clamped too";
}

TEST(DualSource, MultiplyDoesNotClamp) {
    MultiplyModule multiply;
    EXPECT_EQ(combine(multiply, {2.0f, -1.0f, 0.5f, 0.5f}, {3.0f, 4.0f, 0.5f, 0.25f}),
              (TextureColor{6.0f, -4.0f, 0.25f, 0.125f}));
}

TEST(DualSource, PowerRaisesSourceZeroToSourceOne) {
    PowerModule power;
    const TextureColor result = combine(power, {0.0f, 2.0f, 9.0f, -8.0f}, {0.0f, 3.0f, 0.5f, 0.5f});
    EXPECT_EQ(result.red, 1.0f) << "0 to the power 0 is 1";
    EXPECT_EQ(result.green, 8.0f) << "source 0 is the base";
    EXPECT_EQ(result.blue, 3.0f);
    EXPECT_TRUE(std::isnan(result.opacity));
}

TEST(DualSource, EvaluatesSourceZeroFirst) {
    std::string log;
    FixedColorModule first({0, 0, 0, 0}, &log, 'a');
    FixedColorModule second({0, 0, 0, 0}, &log, 'b');
    MultiplyModule multiply;
    multiply.setSourceModule(0, &first);
    multiply.setSourceModule(1, &second);
    Compiled(multiply).at(0, 0, 0);
    EXPECT_EQ(log, "ab");
}

TEST(Join, PacksTheGreyOfEachSourceIntoOneChannel) {
    std::string log;
    FixedColorModule red({0.4f, 0.4f, 0.4f, 0.0f}, &log, 'r');
    FixedColorModule green({0.0f, 0.3f, 0.9f, 0.2f}, &log, 'g');
    FixedColorModule blue({1.0f, 1.0f, 1.0f, 0.5f}, &log, 'b');
    JoinModule join;
    join.setSourceModule(0, &red);
    join.setSourceModule(1, &green);
    join.setSourceModule(2, &blue);
    const TextureColor joined = Compiled(join).at(0, 0, 0);
    EXPECT_FLOAT_EQ(joined.red, 0.4f);
    EXPECT_FLOAT_EQ(joined.green, 0.4f);
    EXPECT_FLOAT_EQ(joined.blue, 1.0f);
    EXPECT_EQ(joined.opacity, 1.0f);
    EXPECT_EQ(log, "rgb");

    // The three numbers are carried but do not change the result.
    join.setRed(0.9);
    join.setGreen(-3.0);
    join.setBlue(0.0);
    EXPECT_EQ(Compiled(join).at(0, 0, 0), joined);
    EXPECT_EQ(JoinModule().getRed(), 0.0);
    EXPECT_EQ(JoinModule().getGreen(), 1.0);
    EXPECT_EQ(JoinModule().getBlue(), 1.0);
}

}  // namespace
}  // namespace noisepp
