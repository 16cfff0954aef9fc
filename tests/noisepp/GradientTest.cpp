// Covers: the colour gradient's stop order and spans, its grey fallbacks and inclusive ends,
// and the Gradient module's live reference to its gradient. Interpolation by mode is recorded
// with every module's colours in LineGraphTest.

#include <gtest/gtest.h>

#include "TestSupport.h"
#include "noisepp/modules/ColorGradient.h"
#include "noisepp/modules/GradientModule.h"

namespace noisepp {
namespace {

using test::Compiled;
using test::FixedColorModule;
using test::messageOf;

const TextureColor kRed{1.0f, 0.0f, 0.0f, 1.0f};
const TextureColor kBlue{0.0f, 0.0f, 1.0f, 0.0f};
const TextureColor kGreen{0.0f, 1.0f, 0.0f, 0.5f};

TextureColor grey(float t) {
    return {t, t, t, t};
}

TEST(ColorGradient, KeepsStopsOrderedWithTheirSpans) {
    ColorGradient gradient;
    gradient.addStop(0.8f, kBlue);
    gradient.addStop(0.2f, kRed);
    gradient.addStop(0.5f, kGreen);
    gradient.addStop(0.5f, kRed);
    const auto& stops = gradient.getStops();
    ASSERT_EQ(stops.size(), 4u);
    EXPECT_EQ(stops[0].position, 0.2f);
    EXPECT_EQ(stops[1].color, kGreen) << "equal positions keep the order they were added in";
    EXPECT_EQ(stops[2].color, kRed);
    EXPECT_EQ(stops[3].position, 0.8f);
    EXPECT_EQ(stops[0].reciprocalSpan, 1.0f / (0.5f - 0.2f));
    EXPECT_EQ(stops[2].reciprocalSpan, 1.0f / (0.8f - 0.5f));
    EXPECT_EQ(stops[3].reciprocalSpan, 0.0f) << "the last stop has no span";
    GradientModule read;  // spans are prepared again when stops come from a stream
    GradientModule written;
    written.setGradient(gradient);
    MemoryInStream in(test::bytesOf(written));
    read.read(in);
    EXPECT_EQ(read.getGradient().getStops()[0].reciprocalSpan, stops[0].reciprocalSpan);
}

TEST(ColorGradient, FewerThanTwoStopsPassTheValueThrough) {
    ColorGradient gradient;
    EXPECT_EQ(gradient.sample(0.3f), grey(0.3f));
    gradient.addStop(0.0f, kRed);
    EXPECT_EQ(gradient.sample(0.3f), grey(0.3f));
    EXPECT_EQ(gradient.sample(-1.0f), grey(-1.0f)) << "checked before the ends";
}

TEST(ColorGradient, EndsAndGapsOutsideTheStops) {
    ColorGradient gradient;
    gradient.addStop(0.2f, kRed);
    gradient.addStop(0.8f, kBlue);
    EXPECT_EQ(gradient.sample(0.0f), kRed) << "0 and below take the first stop";
    EXPECT_EQ(gradient.sample(-4.0f), kRed);
    EXPECT_EQ(gradient.sample(1.0f), kBlue) << "1 and above take the last stop";
    EXPECT_EQ(gradient.sample(0.1f), grey(0.1f)) << "before the first stop: grey";
    EXPECT_EQ(gradient.sample(0.9f), grey(0.9f)) << "after the last stop: grey";
    EXPECT_EQ(gradient.sample(0.8f), grey(0.8f)) << "each span excludes its upper end";
    EXPECT_EQ(gradient.sample(0.2f), kRed) << "each span includes its lower end";
}

TEST(GradientModule, MapsTheSourceGreyThroughItsLiveGradient) {
    FixedColorModule source({0.1f, 0.2f, 0.3f, 0.0f});
    GradientModule module;
    module.setSourceModule(0, &source);
    const Compiled compiled(module);
    EXPECT_EQ(compiled.at(0, 0), grey(0.200000018f));

    // The element refers to the module's gradient: a change is seen without recompiling.
    module.getGradient().addStop(0.0f, kRed);
    module.getGradient().addStop(1.0f, kBlue);
    module.getGradient().setMode(ColorGradient::kStep);
    EXPECT_EQ(compiled.at(0, 0), kRed);

    ColorGradient replacement;
    replacement.addStop(0.0f, kGreen);
    replacement.addStop(0.1f, kGreen);
    replacement.addStop(1.0f, kBlue);
    replacement.setMode(ColorGradient::kStep);
    module.setGradient(replacement);
    EXPECT_EQ(compiled.at(0, 0), kGreen);
}

}  // namespace
}  // namespace noisepp
