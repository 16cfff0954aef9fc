// Covers: the colour gradient's stop order and spans, its sampling rules in order (grey
// fallbacks, ends, spans, step / linear / smooth), the grey of a colour, and the Gradient
// module's live reference to its gradient.

#include <gtest/gtest.h>

#include "TestSupport.h"
#include "noisepp/modules/ColorGradient.h"
#include "noisepp/modules/ColorGrey.h"
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

TEST(ColorGradient, InterpolatesByMode) {
    ColorGradient gradient;
    gradient.addStop(0.0f, kRed);
    gradient.addStop(1.0f, kBlue);
    EXPECT_EQ(gradient.getMode(), ColorGradient::kLinear);
    EXPECT_EQ(gradient.sample(0.25f), (TextureColor{0.75f, 0.0f, 0.25f, 0.75f}));

    gradient.setMode(ColorGradient::kStep);
    EXPECT_EQ(gradient.sample(0.5f), kBlue) << "halfway takes the upper stop";
    EXPECT_EQ(gradient.sample(0.49999997f), kRed);

    gradient.setMode(ColorGradient::kSmooth);
    // 10f^3 - 15f^4 + 6f^5 at f = 1/4 is 0.103515625.
    const TextureColor smooth = gradient.sample(0.25f);
    EXPECT_FLOAT_EQ(smooth.blue, 0.103515625f);
    EXPECT_FLOAT_EQ(smooth.red, 1.0f - 0.103515625f);

    gradient.setMode(7);
    EXPECT_EQ(gradient.sample(0.25f), (TextureColor{0.75f, 0.0f, 0.25f, 0.75f}))
        << "unknown modes interpolate linearly";
}

TEST(ColorGradient, FindsTheSpanAmongManyStops) {
    ColorGradient gradient;
    for (int i = 0; i < 8; ++i) {
        const float v = static_cast<float>(i) / 8.0f;
        gradient.addStop(v, {v, 1.0f - v, 0.5f, 1.0f});
    }
    // 0.8125 lies halfway through the span from 0.75 to 0.875 (the last stop is below 1).
    const TextureColor c = gradient.sample(0.8125f);
    EXPECT_FLOAT_EQ(c.red, 0.8125f);
    EXPECT_FLOAT_EQ(c.green, 0.1875f);
    EXPECT_EQ(gradient.sample(0.9f), grey(0.9f));
}

TEST(ColorGrey, UsesTheFloatNearestToOneThird) {
    const TextureColor c{0.1f, 0.2f, 0.3f, 0.0f};
    EXPECT_EQ(greyOf(c), 0.200000018f);
    EXPECT_NE(greyOf(c), (0.1f + 0.2f + 0.3f) / 3.0f) << "a division rounds differently";
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
