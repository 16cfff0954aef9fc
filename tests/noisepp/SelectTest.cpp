// Covers: Select's inclusive hard bounds, which sources each region evaluates and in what
// order, the lower end of each edge region, the bound check in the element's constructor and
// equal bounds. Edge weights are recorded with every module's colours in LineGraphTest.

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

TEST_F(SelectTest, BoundsNotInAscendingOrderAreRefused) {
    Pipeline3D pipeline;
    const std::size_t id = mSourceA.addToPipeline(&pipeline);
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
    mSelect.setLowerBound(0.3);
    mSelect.setUpperBound(0.3);
    EXPECT_THROW(Compiled{mSelect}, ParamInvalidException) << "equal bounds fail at compilation";
    mSelect.setUpperBound(0.31);
    EXPECT_NO_THROW(Compiled{mSelect});
}

}  // namespace
}  // namespace noisepp
