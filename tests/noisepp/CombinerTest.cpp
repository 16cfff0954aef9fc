// Covers: the source order of the channel-wise combiners and Join's greys and fixed opacity.

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <typeinfo>

#include "TestSupport.h"
#include "noisepp/modules/JoinModule.h"
#include "noisepp/modules/MultiplyModule.h"

namespace noisepp {
namespace {

using test::Compiled;
using test::FixedColorModule;
using test::messageOf;

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
