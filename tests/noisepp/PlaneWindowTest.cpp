// A window of a plane render is the same region of the whole render, bit for bit, whatever its
// shape, in plain and seamless mode: tiles rendered apart assemble into the one-piece image.

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "noisepp/core/Exception.h"
#include "noisepp/core/Pipeline.h"
#include "noisepp/modules/PerlinModule.h"
#include "noisepp/modules/VoronoiModule.h"
#include "noisepp/utils/PlaneBuilder.h"

namespace noisepp::utils {
namespace {

/// The sample point itself, x and y each split into two floats that restore the double, so a
/// window whose points differ from the whole image's by one bit shows it.
class PointElement : public PipelineElement3D {
public:
    TextureColor getValue(double x, double y, double) const override {
        const auto xHigh = static_cast<float>(x);
        const auto yHigh = static_cast<float>(y);
        return {xHigh, static_cast<float>(x - xHigh), yHigh, static_cast<float>(y - yHigh)};
    }
};

class PointModule : public Module {
public:
    PointModule() : Module(0) {}
    std::size_t addToPipeline(Pipeline3D* pipeline) const override {
        return pipeline->addElement(this, new PointElement);
    }
    int getType() const override { return 7; }
};

constexpr int kWidth = 53;
constexpr int kHeight = 31;

struct Window {
    int x0, y0, x1, y1;
};

std::vector<TextureColor> render(const Module& module, bool seamless, const Window* window) {
    const int width = window ? window->x1 - window->x0 : kWidth;
    const int height = window ? window->y1 - window->y0 : kHeight;
    std::vector<TextureColor> pixels(static_cast<std::size_t>(width) * height);
    PlaneBuilder builder;
    builder.setModule(&module);
    builder.setDestination(pixels.data());
    builder.setSize(kWidth, kHeight);
    // Bounds whose steps are not exact in binary, so a window that computed its start by
    // multiplication instead of the image's repeated additions would land elsewhere.
    builder.setBounds(-1.3, 0.7, 2.9, 3.1);
    builder.setZValue(0.25);
    builder.setSeamless(seamless);
    if (window)
        builder.setWindow(window->x0, window->y0, window->x1, window->y1);
    builder.build();
    return pixels;
}

class PlaneWindowTest : public ::testing::TestWithParam<bool> {};

TEST_P(PlaneWindowTest, EveryWindowEqualsTheSameRegionOfTheWholeImage) {
    PerlinModule perlin;
    perlin.setFrequency(3.7);
    perlin.setOctaveCount(4);
    VoronoiModule voronoi;
    voronoi.setFrequency(5.3);
    voronoi.setDisplacement(1.0);
    PointModule points;
    for (const Module* module : std::vector<const Module*>{&points, &perlin, &voronoi}) {
        const std::vector<TextureColor> whole = render(*module, GetParam(), nullptr);
        for (const Window window :
             {Window{0, 0, 1, 1}, Window{kWidth - 1, kHeight - 1, kWidth, kHeight},
              Window{0, 17, kWidth, 18}, Window{3, 2, 40, 19}, Window{26, 15, kWidth, kHeight},
              Window{0, 0, kWidth, kHeight}}) {
            const std::vector<TextureColor> part = render(*module, GetParam(), &window);
            const int width = window.x1 - window.x0;
            for (int y = window.y0; y < window.y1; ++y)
                ASSERT_EQ(0, std::memcmp(&part[static_cast<std::size_t>(y - window.y0) * width],
                                         &whole[static_cast<std::size_t>(y) * kWidth + window.x0],
                                         sizeof(TextureColor) * width))
                    << "window " << window.x0 << "," << window.y0 << " - " << window.x1 << ","
                    << window.y1 << " line " << y;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(PlainAndSeamless, PlaneWindowTest, ::testing::Bool());

TEST(PlaneWindowTest, WindowsOutsideTheImageOrEmptyAreRefused) {
    PerlinModule perlin;
    for (const Window window :
         {Window{0, 0, 0, 1}, Window{-1, 0, 4, 4}, Window{0, 0, kWidth + 1, 4}, Window{0, 5, 4, 5},
          Window{0, 0, 4, kHeight + 1}})
        EXPECT_THROW(render(perlin, false, &window), ParamInvalidException);
}

}  // namespace
}  // namespace noisepp::utils
