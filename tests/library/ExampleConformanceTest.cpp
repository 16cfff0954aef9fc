// Every example document that ends in a plane render: the node's image equals, bit for bit,
// the engine's own plane builder run over the module tree arriving at the node, with the
// bounds, z and seamless flag its attributes give; and that plane, evaluated in whole lines on
// every instruction set the machine offers, equals the same points evaluated one at a time;
// and the texture command writes that image as a PNG of the nearest 8-bit levels.

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/Attribute.h"
#include "host/Document.h"
#include "host/Engine.h"
#include "host/Image.h"
#include "host/Node.h"
#include "host/NodeValue.h"
#include "host/PluginLoader.h"
#include "host/TextureHandle.h"
#include "hwy/targets.h"
#include "noisepp/core/Pipeline.h"
#include "noisepp/core/TextureColor.h"
#include "noisepp/utils/PlaneBuilder.h"
#include "tests/library/PluginLibrary.h"
#include "tests/library/TextureCommand.h"

namespace {

namespace fs = std::filesystem;

std::vector<std::string> ExampleDocuments() {
    std::vector<std::string> paths;
    for (const auto& entry : fs::directory_iterator(fs::path(TEXTURE_SOURCE_DIR) / "examples"))
        if (entry.path().string().ends_with(".texture.json"))
            paths.push_back(entry.path().string());
    std::sort(paths.begin(), paths.end());
    return paths;
}

const NodeValue& Value(const Node* node, const std::string& name) {
    const Attribute* attribute = node->FindAttribute(name);
    EXPECT_NE(attribute, nullptr) << name;
    static const NodeValue kNone;
    return attribute != nullptr ? attribute->GetValue() : kNone;
}

int RoundHalfDown(double v) {
    const double lower = std::floor(v);
    return static_cast<int>(v - lower > 0.5 ? std::ceil(v) : lower);
}

/// The plane the node should have produced, built straight with the engine.
std::vector<noisepp::TextureColor> ExpectedPlane(const Node* render, const noisepp::Module& module,
                                                 int width, int height) {
    const auto startX = static_cast<float>(Value(render, "start_x").GetNumber());
    const auto startY = static_cast<float>(Value(render, "start_y").GetNumber());
    const auto startZ = static_cast<float>(Value(render, "start_z").GetNumber());
    const Point range = Value(render, "range").GetPoint();
    const float rangeX = std::max(0.001f, static_cast<float>(range.x));
    const float rangeY = std::max(0.001f, static_cast<float>(range.y));

    std::vector<noisepp::TextureColor> colors(static_cast<std::size_t>(width) * height);
    noisepp::utils::PlaneBuilder builder;
    builder.setModule(&module);
    builder.setDestination(colors.data());
    builder.setSize(width, height);
    builder.setBounds(startX, startY, startX + rangeX, startY + rangeY);
    builder.setZValue(startZ);
    builder.setSeamless(Value(render, "seamless").GetBool());
    builder.build();
    return colors;
}

/// The same plane sampled one point at a time through getValue, at the points the plane
/// builder's line jobs visit (x and y advance by adding their steps). Seamless planes blend
/// four samples and are left to the plane builder tests.
std::vector<noisepp::TextureColor> PointByPointPlane(const Node* render,
                                                     const noisepp::Module& module, int width,
                                                     int height) {
    const auto startX = static_cast<float>(Value(render, "start_x").GetNumber());
    const auto startY = static_cast<float>(Value(render, "start_y").GetNumber());
    const auto startZ = static_cast<float>(Value(render, "start_z").GetNumber());
    const Point range = Value(render, "range").GetPoint();
    const double lowerX = startX;
    const double lowerY = startY;
    const double upperX = startX + std::max(0.001f, static_cast<float>(range.x));
    const double upperY = startY + std::max(0.001f, static_cast<float>(range.y));

    noisepp::Pipeline3D pipeline;
    const noisepp::PipelineElement3D* element =
        pipeline.getElement(module.addToPipeline(&pipeline));
    const double xStep = (upperX - lowerX) / width;
    const double yStep = (upperY - lowerY) / height;
    std::vector<noisepp::TextureColor> colors;
    colors.reserve(static_cast<std::size_t>(width) * height);
    double y = lowerY + yStep * 0.5;
    for (int row = 0; row < height; ++row, y = y + yStep) {
        double x = lowerX + xStep * 0.5;
        for (int column = 0; column < width; ++column, x = x + xStep)
            colors.push_back(element->getValue(x, y, startZ));
    }
    return colors;
}

/// Counts colours that differ in any bit and reports the first few.
int CountMismatches(const std::vector<noisepp::TextureColor>& actual,
                    const std::vector<noisepp::TextureColor>& expected, int width) {
    int mismatches = 0;
    for (std::size_t i = 0; i < expected.size(); ++i)
        if (std::memcmp(&actual[i], &expected[i], sizeof(noisepp::TextureColor)) != 0 &&
            ++mismatches <= 3)
            ADD_FAILURE() << "pixel (" << i % width << ", " << i / width << ")";
    return mismatches;
}

/// The 8-bit level a PNG stores for a channel value: clamped to 0...1 (NaN as 0), nearest.
long EightBitLevel(float value) {
    const float clamped = value > 0.0f ? std::min(value, 1.0f) : 0.0f;
    return std::lround(clamped * 255.0f);
}

struct ImageRelease {
    void operator()(Image* image) const { image->Release(); }
};

class ExampleConformanceTest : public ::testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        std::string error;
        ASSERT_TRUE(mCatalogue.Load(PluginLibrary::Path(), &error)) << error;
    }
    void TearDown() override { mEngine.Clear(); }

    /// Loads the example and evaluates its display node; null when that node renders onto a
    /// mesh rather than a plane.
    Node* EvaluatePlaneRender() {
        Document document;
        std::string error;
        EXPECT_TRUE(document.Load(GetParam(), mEngine, mCatalogue, &error)) << error;
        Node* render = mEngine.FindNode(document.GetDisplay());
        EXPECT_NE(render, nullptr) << "no display node";
        if (render == nullptr || render->GetTypeName() != "Render 2D Texture")
            return nullptr;
        EXPECT_TRUE(mEngine.EvaluateNode(render)) << render->GetStateMessage();
        return render;
    }

    PluginLoader mCatalogue;
    Engine mEngine;
};

TEST_P(ExampleConformanceTest, PlaneRenderEqualsThePlaneBuilderOverTheIncomingTree) {
    Node* render = EvaluatePlaneRender();
    if (render == nullptr)
        GTEST_SKIP() << "the display node renders onto a mesh";
    const Image* image = mEngine.GetOutputValue(render, 0).GetImage();
    ASSERT_NE(image, nullptr);
    const Frame frame = Value(render, "frame").GetFrame();
    const int width = RoundHalfDown(frame.sizeX);
    const int height = RoundHalfDown(frame.sizeY);
    ASSERT_EQ(image->GetSizeX(), width);
    ASSERT_EQ(image->GetSizeY(), height);
    EXPECT_EQ(image->GetPinX(), RoundHalfDown(frame.positionX));

    const Engine::Link* link = mEngine.FindLinkTo(render, render->GetInplugIdFromRegularInputId(0));
    ASSERT_NE(link, nullptr) << "the render node has no texture";
    const TextureHandle* texture = mEngine.GetOutputValue(link->from, link->outplug).GetTexture();
    ASSERT_NE(texture, nullptr);
    ASSERT_NE(texture->module, nullptr);

    const auto expected = ExpectedPlane(render, *texture->module, width, height);
    const float* pixels = image->GetConstArray();
    const int channels = image->GetNumChannels();
    int mismatches = 0;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const float* pixel = pixels + i * channels;
        if (std::memcmp(pixel, &expected[i], sizeof(noisepp::TextureColor)) != 0 &&
            ++mismatches <= 3)
            ADD_FAILURE() << "pixel (" << i % width << ", " << i / width << "): image (" << pixel[0]
                          << ", " << pixel[1] << ", " << pixel[2] << ", " << pixel[3]
                          << "), builder (" << expected[i].red << ", " << expected[i].green << ", "
                          << expected[i].blue << ", " << expected[i].opacity << ")";
    }
    EXPECT_EQ(mismatches, 0);

    // Whole lines, on every instruction set this machine offers, against single points.
    if (Value(render, "seamless").GetBool())
        return;
    const auto points = PointByPointPlane(render, *texture->module, width, height);
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        SCOPED_TRACE(std::string("instruction set ") + hwy::TargetName(target));
        EXPECT_EQ(
            CountMismatches(ExpectedPlane(render, *texture->module, width, height), points, width),
            0);
    }
    hwy::SetSupportedTargetsForTest(0);
}

TEST_P(ExampleConformanceTest, CommandWritesThePlaneAsPngOfTheNearestEightBitLevels) {
    Node* render = EvaluatePlaneRender();
    if (render == nullptr)
        GTEST_SKIP() << "the display node renders onto a mesh";
    const Image* image = mEngine.GetOutputValue(render, 0).GetImage();
    ASSERT_NE(image, nullptr);

    const fs::path out =
        fs::temp_directory_path() / ("texture-conformance-" + std::to_string(::getpid()) + "-" +
                                     fs::path(GetParam()).stem().stem().string() + ".png");
    std::string output;
    ASSERT_EQ(
        RunTextureCommand(
            "render " + ShellQuoted(GetParam()) + " -q -o " + ShellQuoted(out.string()), &output),
        0)
        << output;
    std::string error;
    const std::unique_ptr<Image, ImageRelease> written(Image::ReadFile(out.string(), &error));
    std::error_code ignored;
    fs::remove(out, ignored);
    ASSERT_NE(written, nullptr) << error;
    ASSERT_EQ(written->GetSizeX(), image->GetSizeX());
    ASSERT_EQ(written->GetSizeY(), image->GetSizeY());

    // Reading a PNG gives level / 255 back, so the level is recovered exactly.
    const std::size_t values = static_cast<std::size_t>(image->GetSizeX()) * image->GetSizeY() * 4;
    int mismatches = 0;
    for (std::size_t i = 0; i < values; ++i) {
        const long expected = EightBitLevel(image->GetConstArray()[i]);
        const long stored = std::lround(written->GetConstArray()[i] * 255.0f);
        if (stored != expected && ++mismatches <= 3)
            ADD_FAILURE() << "pixel (" << i / 4 % image->GetSizeX() << ", "
                          << i / 4 / image->GetSizeX() << ") channel " << i % 4 << ": level "
                          << stored << ", the image's value " << image->GetConstArray()[i]
                          << " gives " << expected;
    }
    EXPECT_EQ(mismatches, 0);
}

INSTANTIATE_TEST_SUITE_P(Examples, ExampleConformanceTest, ::testing::ValuesIn(ExampleDocuments()),
                         [](const ::testing::TestParamInfo<std::string>& info) {
                             std::string name = fs::path(info.param).filename().string();
                             name = name.substr(0, name.find('.'));
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

}  // namespace
