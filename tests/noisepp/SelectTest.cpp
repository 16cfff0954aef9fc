// Covers: Select's inclusive hard bounds, which sources each region evaluates and in what
// order, the lower end of each edge region, the bound check in the element's constructor and
// equal bounds. Edge weights are recorded with every module's colours in LineGraphTest.

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <tuple>

#include "TestSupport.h"
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
    std::string mLog;
    FixedColorModule mSourceA{kA, &mLog, 'A'};
    FixedColorModule mSourceB{kB, &mLog, 'B'};
    FixedColorModule mControl{controlFor(0.0f), &mLog, 'C'};
    SelectModule mSelect;
};

/// Hard edges (falloff 0 or negative) include both bounds; in the falloff regions only the
/// sources needed are read, the lower edge source 1 first, the upper edge source 0 first, and
/// each edge region includes its lower end (lower - f and upper - f) with weight 0 there.
TEST_F(SelectTest, RegionsGiveTheirSourcesInTheirOrder) {
    const std::optional<TextureColor> mixed;
    // lower bound, upper bound, falloff, control grey, result, evaluation order
    const std::tuple<double, double, double, float, std::optional<TextureColor>, const char*>
        rows[] = {{0.25, 0.75, 0.0, 0.25f, kB, "CB"},   {0.25, 0.75, 0.0, 0.75f, kB, "CB"},
                  {0.25, 0.75, 0.0, 0.24f, kA, "CA"},   {0.25, 0.75, 0.0, 0.76f, kA, "CA"},
                  {0.25, 0.75, -0.5, 0.24f, kA, "CA"},  {0.25, 0.75, -0.5, 0.25f, kB, "CB"},
                  {0.25, 0.75, 0.1, 0.1f, kA, "CA"},    {0.25, 0.75, 0.1, 0.3f, mixed, "CBA"},
                  {0.25, 0.75, 0.1, 0.5f, kB, "CB"},    {0.25, 0.75, 0.1, 0.7f, mixed, "CAB"},
                  {0.25, 0.75, 0.1, 0.9f, kA, "CA"},    {0.375, 0.875, 0.125, 0.25f, kA, "CBA"},
                  {0.0, 0.375, 0.125, 0.25f, kB, "CAB"}};
    for (const auto& [lower, upper, falloff, grey, expected, order] : rows) {
        SCOPED_TRACE(::testing::Message() << "bounds " << lower << " ... " << upper << ", falloff "
                                          << falloff << ", grey " << grey);
        mSelect.setLowerBound(lower);
        mSelect.setUpperBound(upper);
        mSelect.setEdgeFalloff(falloff);
        const TextureColor result = select(controlFor(grey));
        EXPECT_EQ(result, expected.value_or(result));
        EXPECT_EQ(mLog, order);
    }
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
