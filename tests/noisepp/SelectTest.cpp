// Covers: Select's regions with and without falloff (inclusive hard bounds, the even mix at
// a bound, the s-curve weight), which sources each region evaluates and in what order,
// overlapping edges, the bound check in the element's constructor, and missing sources.

#include <gtest/gtest.h>

#include <string>

#include "TestSupport.h"
#include "noisepp/modules/ColorGrey.h"
#include "noisepp/modules/SelectElement3D.h"
#include "noisepp/modules/SelectModule.h"

namespace noisepp {
namespace {

using test::Compiled;
using test::FixedColorModule;
using test::messageOf;

const TextureColor kA{1.0f, 0.0f, 0.0f, 1.0f};
const TextureColor kB{0.0f, 0.0f, 1.0f, 0.5f};

// The control colour whose grey is (very nearly) `level`.
TextureColor controlFor(float level) {
    return {level, level, level, 1.0f};
}

class SelectTest : public ::testing::Test {
protected:
    SelectTest() {
        mSelect.setSourceModule(0, &mSourceA);
        mSelect.setSourceModule(1, &mSourceB);
        mSelect.setSourceModule(2, &mControl);
    }
    // The result for a control colour; mLog holds the evaluation order afterwards.
    TextureColor select(const TextureColor& control) {
        mControl.setColor(control);
        const Compiled compiled(mSelect);
        mLog.clear();
        return compiled.at(0.5, 0.5, 0.5);
    }
    // The grey the element will see for `control`, so bounds can sit exactly on it.
    static double greyAt(const TextureColor& control) { return greyOf(control); }

    std::string mLog;
    FixedColorModule mSourceA{kA, &mLog, 'A'};
    FixedColorModule mSourceB{kB, &mLog, 'B'};
    FixedColorModule mControl{controlFor(0.0f), &mLog, 'C'};
    SelectModule mSelect;
};

TEST_F(SelectTest, HardEdgesIncludeBothBounds) {
    const TextureColor atLower = controlFor(0.2f);
    const TextureColor atUpper = controlFor(0.8f);
    mSelect.setLowerBound(greyAt(atLower));
    mSelect.setUpperBound(greyAt(atUpper));
    mSelect.setEdgeFalloff(0.0);
    EXPECT_EQ(select(atLower), kB);
    EXPECT_EQ(mLog, "CB");
    EXPECT_EQ(select(atUpper), kB);
    EXPECT_EQ(select(controlFor(0.19f)), kA);
    EXPECT_EQ(mLog, "CA");
    EXPECT_EQ(select(controlFor(0.81f)), kA);
    mSelect.setEdgeFalloff(-0.5);
    EXPECT_EQ(select(controlFor(0.19f)), kA) << "a negative falloff means hard edges too";
    EXPECT_EQ(select(atLower), kB);
}

TEST_F(SelectTest, FalloffRegionsEvaluateOnlyWhatTheyNeed) {
    mSelect.setLowerBound(0.25);
    mSelect.setUpperBound(0.75);
    mSelect.setEdgeFalloff(0.1);
    EXPECT_EQ(select(controlFor(0.1f)), kA);
    EXPECT_EQ(mLog, "CA") << "below the lower edge";
    select(controlFor(0.3f));
    EXPECT_EQ(mLog, "CBA") << "lower edge: source 1 before source 0";
    EXPECT_EQ(select(controlFor(0.5f)), kB);
    EXPECT_EQ(mLog, "CB") << "between the edges";
    select(controlFor(0.7f));
    EXPECT_EQ(mLog, "CAB") << "upper edge: source 0 before source 1";
    EXPECT_EQ(select(controlFor(0.9f)), kA);
    EXPECT_EQ(mLog, "CA") << "above the upper edge";
}

TEST_F(SelectTest, EachEdgeRegionIncludesItsLowerEnd) {
    // Control grey exactly 0.25 = lower - f: the edge rule holds (both sources are read) and
    // its weight is 0, so the result is still source 0.
    const TextureColor control = controlFor(0.25f);
    ASSERT_EQ(greyAt(control), 0.25);
    mSelect.setLowerBound(0.375);
    mSelect.setUpperBound(0.875);
    mSelect.setEdgeFalloff(0.125);
    EXPECT_EQ(select(control), kA);
    EXPECT_EQ(mLog, "CBA");
    mSelect.setLowerBound(0.0);
    mSelect.setUpperBound(0.375);
    EXPECT_EQ(select(control), kB);
    EXPECT_EQ(mLog, "CAB") << "upper - f starts the upper edge";
}

TEST_F(SelectTest, ABoundWithFalloffGivesTheEvenMix) {
    const TextureColor atLower = controlFor(0.25f);
    const TextureColor atUpper = controlFor(0.75f);
    mSelect.setLowerBound(greyAt(atLower));
    mSelect.setUpperBound(greyAt(atUpper));
    mSelect.setEdgeFalloff(0.125);
    const TextureColor even{0.5f, 0.0f, 0.5f, 0.75f};
    EXPECT_COLOR_NEAR(select(atLower), even, 1e-6f);
    EXPECT_COLOR_NEAR(select(atUpper), even, 1e-6f);
}

TEST_F(SelectTest, EdgesFollowTheSCurve) {
    const TextureColor control = controlFor(0.5f);
    const double c = greyAt(control);
    mSelect.setEdgeFalloff(0.25);
    // The lower edge runs from lower - f = c - 0.125 over 2f = 0.5, so c sits a quarter of
    // the way in: t = 0.25, w = (3 - 0.5) * 0.0625 = 0.15625.
    mSelect.setLowerBound(c + 0.125);
    mSelect.setUpperBound(c + 10.0);
    const TextureColor lower = select(control);
    EXPECT_FLOAT_EQ(lower.red, 1.0f - 0.15625f);
    EXPECT_FLOAT_EQ(lower.blue, 0.15625f);
    // The same place on the upper edge weighs the other way round.
    mSelect.setLowerBound(c - 10.0);
    mSelect.setUpperBound(c + 0.125);
    const TextureColor upper = select(control);
    EXPECT_FLOAT_EQ(upper.red, 0.15625f);
    EXPECT_FLOAT_EQ(upper.blue, 1.0f - 0.15625f);
}

TEST_F(SelectTest, OverlappingEdgesFollowTheRuleOrder) {
    // Falloff 0.3 over a range of 0.2: lower edge 0.1 ... 0.7, upper edge 0.3 ... 0.9. The
    // lower edge wins wherever it holds; the upper one takes over from 0.7 on.
    mSelect.setLowerBound(0.4);
    mSelect.setUpperBound(0.6);
    mSelect.setEdgeFalloff(0.3);
    const auto weight = [](double t) { return (3.0 - 2.0 * t) * t * t; };

    const TextureColor middle = select(controlFor(0.5f));
    EXPECT_EQ(mLog, "CBA");
    EXPECT_NEAR(middle.blue, weight((greyAt(controlFor(0.5f)) - 0.1) / 0.6), 1e-6);

    const TextureColor high = select(controlFor(0.8f));
    EXPECT_EQ(mLog, "CAB");
    EXPECT_NEAR(high.red, weight((greyAt(controlFor(0.8f)) - 0.3) / 0.6), 1e-6);

    EXPECT_EQ(select(controlFor(0.95f)), kA);
    EXPECT_EQ(mLog, "CA");
}

TEST(SelectElement, RefusesBoundsNotInAscendingOrder) {
    Pipeline3D pipeline;
    FixedColorModule source({0, 0, 0, 1});
    const std::size_t id = source.addToPipeline(&pipeline);
    for (const double upper : {0.5, 0.4}) {
        const std::string message =
            messageOf([&] { SelectElement3D(pipeline, id, id, id, 0.5, upper, 0.1); });
        EXPECT_EQ(message.rfind("invalid parameter for '(mLowerBound, mUpperBound)' in '", 0), 0u)
            << message;
        EXPECT_NE(message.find("SelectElement3D"), std::string::npos) << message;
        EXPECT_NE(message.find("': assertion 'mLowerBound < mUpperBound' failed"),
                  std::string::npos)
            << message;
    }
}

TEST(SelectModule, EqualBoundsFailAtCompilation) {
    FixedColorModule source({0, 0, 0, 1});
    SelectModule select;
    for (std::size_t i = 0; i < 3; ++i)
        select.setSourceModule(i, &source);
    Pipeline3D pipeline;
    select.setLowerBound(0.3);
    select.setUpperBound(0.3);
    EXPECT_THROW(select.addToPipeline(&pipeline), ParamInvalidException);
    select.setUpperBound(0.31);
    EXPECT_NO_THROW(select.addToPipeline(&pipeline));
}

}  // namespace
}  // namespace noisepp
