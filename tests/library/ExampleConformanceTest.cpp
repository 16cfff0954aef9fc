// Every example document renders through the texture command without errors or warnings; and
// when it ends in a plane render, the node's image equals, bit for bit, the engine's own plane
// builder run over the module tree arriving at the node, with the bounds, z and seamless flag
// its attributes give; that plane, evaluated in whole lines on every instruction set the
// machine offers, equals the same points evaluated one at a time.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "host/Document.h"
#include "host/Engine.h"
#include "host/Image.h"
#include "host/Node.h"
#include "host/PluginLoader.h"
#include "host/TextureHandle.h"
#include "hwy/targets.h"
#include "noisepp/core/Pipeline.h"
#include "tests/library/PluginLibrary.h"
#include "tests/support/PlanePixels.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TextureCommand.h"

namespace {

namespace fs = std::filesystem;
using Colors = std::vector<noisepp::TextureColor>;

std::vector<std::string> ExampleDocuments() {
    std::vector<std::string> paths;
    for (const auto& entry : fs::directory_iterator(fs::path(TEXTURE_SOURCE_DIR) / "examples"))
        if (entry.path().string().ends_with(".texture.json"))
            paths.push_back(entry.path().string());
    std::sort(paths.begin(), paths.end());
    return paths;
}

/// The rectangle a Render 2D node samples over its image: its attributes narrowed to float,
/// the range at least a thousandth. (How the frame sets the image's size and pin is the render
/// nodes' own test.)
struct Plane : testsupport::PlaneWindow {
    Plane(const Node& render, const Image& image) {
        const auto value = [&](const char* name) { return render.FindAttribute(name)->GetValue(); };
        const Point range = value("range").GetPoint();
        lowerX = static_cast<float>(value("start_x").GetNumber());
        lowerY = static_cast<float>(value("start_y").GetNumber());
        z = static_cast<float>(value("start_z").GetNumber());
        upperX = static_cast<float>(lowerX) + std::max(0.001f, static_cast<float>(range.x));
        upperY = static_cast<float>(lowerY) + std::max(0.001f, static_cast<float>(range.y));
        seamless = value("seamless").GetBool();
        width = image.GetSizeX();
        height = image.GetSizeY();
    }

    Colors Build(const noisepp::Module& module) const {
        return testsupport::BuildPlane(module, *this);
    }

    /// One point at a time through getValue, at the points the builder's line jobs visit (x
    /// and y advance by adding their steps).
    Colors PointByPoint(const noisepp::Module& module) const {
        noisepp::Pipeline3D pipeline;
        const auto* element = pipeline.getElement(module.addToPipeline(&pipeline));
        const double xStep = (upperX - lowerX) / width, yStep = (upperY - lowerY) / height;
        Colors colors;
        double y = lowerY + yStep * 0.5;
        for (int row = 0; row < height; ++row, y = y + yStep) {
            double x = lowerX + xStep * 0.5;
            for (int column = 0; column < width; ++column, x = x + xStep)
                colors.push_back(element->getValue(x, y, z));
        }
        return colors;
    }
};

/// Counts pixels (`channels` floats each) that differ in any bit from `expected` and reports
/// the first few.
int CountMismatches(const float* actual, int channels, const Colors& expected) {
    int mismatches = 0;
    for (std::size_t i = 0; i < expected.size(); ++i)
        if (std::memcmp(actual + i * channels, &expected[i], sizeof expected[i]) != 0 &&
            ++mismatches <= 3)
            ADD_FAILURE() << "pixel " << i << ": red " << actual[i * channels] << ", expected "
                          << expected[i].red;
    return mismatches;
}

class ExampleConformanceTest : public ::testing::TestWithParam<std::string> {
protected:
    void TearDown() override { mEngine.Clear(); }

    PluginLoader mCatalogue;
    Engine mEngine;
};

TEST_P(ExampleConformanceTest, RendersCleanlyAndAPlaneRenderEqualsThePlaneBuilder) {
    const testsupport::TempFolder folder;
    const std::string png = folder / "out.png";
    const testsupport::CommandResult run =
        testsupport::RunTexture({"render", GetParam(), "-q", "-o", png});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_FALSE(testsupport::ReadFile(png).empty()) << "no image written";
    for (const std::string& text : {run.out, run.err}) {
        EXPECT_EQ(text.find("error"), std::string::npos) << text;
        EXPECT_EQ(text.find("warning"), std::string::npos) << text;
    }

    std::string error;
    ASSERT_TRUE(mCatalogue.Load(PluginLibrary::Path(), &error)) << error;
    Document document;
    ASSERT_TRUE(document.Load(GetParam(), mEngine, mCatalogue, &error)) << error;
    Node* render = mEngine.FindNode(document.GetDisplay());
    ASSERT_NE(render, nullptr) << "no display node";
    if (render->GetTypeName() != "Render 2D Texture")
        return;  // a bake onto a mesh: the command's clean run is what there is to check
    ASSERT_TRUE(mEngine.EvaluateNode(render)) << render->GetStateMessage();
    const Image* image = mEngine.GetOutputValue(render, 0).GetImage();
    ASSERT_NE(image, nullptr);
    const Plane plane(*render, *image);

    const Engine::Link* link = mEngine.FindLinkTo(render, render->GetInplugIdFromRegularInputId(0));
    ASSERT_NE(link, nullptr) << "the render node has no texture";
    const TextureHandle* texture = mEngine.GetOutputValue(link->from, link->outplug).GetTexture();
    ASSERT_TRUE(texture != nullptr && texture->module != nullptr);
    EXPECT_EQ(CountMismatches(image->GetConstArray(), image->GetNumChannels(),
                              plane.Build(*texture->module)),
              0);

    // Whole lines, on every instruction set this machine offers, against single points.
    // Seamless planes blend four samples and are left to the plane builder's own tests.
    if (plane.seamless)
        return;
    const Colors points = plane.PointByPoint(*texture->module);
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        SCOPED_TRACE(std::string("instruction set ") + hwy::TargetName(target));
        const Colors lines = plane.Build(*texture->module);
        EXPECT_EQ(CountMismatches(&lines[0].red, 4, points), 0);
    }
    hwy::SetSupportedTargetsForTest(0);
}

INSTANTIATE_TEST_SUITE_P(Examples, ExampleConformanceTest, ::testing::ValuesIn(ExampleDocuments()),
                         [](const ::testing::TestParamInfo<std::string>& info) {
                             std::string name = fs::path(info.param).filename().string();
                             name = name.substr(0, name.find('.'));
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

}  // namespace
