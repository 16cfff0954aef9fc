// Covers: the source order of the channel-wise combiners and RgbMap, Curve's point checks,
// Exponent, ScaleBias, Clamp, Invert, Terrace and the channel combiners against the rows of
// tests/data/modifier-values.txt, and Terrace's point checks in module and element.

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "TestSupport.h"
#include "noisepp/modules/CurveElement3D.h"
#include "noisepp/modules/CurveModule.h"
#include "noisepp/modules/MultiplyModule.h"
#include "noisepp/modules/RgbMapModule.h"
#include "noisepp/modules/TerraceElement3D.h"
#include "noisepp/modules/TerraceModule.h"

namespace noisepp {
namespace {

using test::Compiled;
using test::EchoModule;
using test::FixedColorModule;
using test::messageOf;

bool startsWith(const std::string& text, const std::string& prefix) {
    return text.rfind(prefix, 0) == 0;
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
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

TEST(RgbMap, EvaluatesTheCoordinateSourceFirst) {
    std::string log;
    FixedColorModule sampled({1, 1, 1, 1}, &log, 's');
    FixedColorModule coordinates({0, 0, 0, 1}, &log, 'm');
    RgbMapModule map;
    map.setSourceModule(0, &sampled);
    map.setSourceModule(1, &coordinates);
    const Compiled compiled(map);
    log.clear();
    compiled.at(0, 0, 0);
    EXPECT_EQ(log, "ms");
    EXPECT_EQ(compiled.pipeline->getElementCount(), 3u);
    log.clear();
    compiled.pipeline->getElement(0)->getValue(0, 0, 0);
    EXPECT_EQ(log, "s") << "source 0 is compiled before source 1";
}

TEST(Curve, NeedsFourPoints) {
    EchoModule echo;
    CurveModule curve;
    for (int i = 0; i < 3; ++i)
        curve.addControlPoint(i, i);
    Pipeline3D pipeline;
    curve.setSourceModule(0, &echo);
    const std::string message = messageOf([&] { curve.addToPipeline(&pipeline); });
    EXPECT_TRUE(startsWith(message, "invalid parameter for 'count' in '")) << message;
    EXPECT_TRUE(contains(message, "CurveModule::addToPipeline")) << message;
    EXPECT_TRUE(contains(message, "': assertion 'count >= 4' failed")) << message;
    EXPECT_EQ(pipeline.getElementCount(), 0u) << "nothing is compiled for a refused curve";
    curve.addControlPoint(3, 3);
    EXPECT_NO_THROW(curve.addToPipeline(&pipeline));
    EXPECT_EQ(curve.getControlPoints()[2], (CurveModule::ControlPoint{2.0, 2.0}));
}

TEST(Curve, ElementChecksItsPoints) {
    Pipeline3D pipeline;
    EchoModule echo;
    const std::size_t source = echo.addToPipeline(&pipeline);
    const double pairs[6] = {0, 0, 0.5, 0.5, 1, 1};
    EXPECT_TRUE(contains(messageOf([&] { CurveElement3D(pipeline, source, nullptr, 4); }),
                         "'points' in '"));
    EXPECT_TRUE(contains(messageOf([&] { CurveElement3D(pipeline, source, pairs, 3); }),
                         ": assertion 'count >= 4' failed"));
}

/// Exponent (opacity raised too, NaN for a negative channel to a fractional power), ScaleBias
/// (one wrap above 1 only, opacity untouched), Clamp (lower bound first), Invert (opacity
/// untouched), Terrace (quadratic rise, inverted, ends, uneven points) and the channel
/// combiners (opacity included, addition clamped, multiply not, source 0 the base of the power).
TEST(ValueModifiersAndCombiners, GiveTheRecordedColours) {
    std::ifstream in(std::string(TEXTURE_SOURCE_DIR) + "/tests/data/modifier-values.txt");
    int rows = 0;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#')
            continue;
        std::istringstream words(line);
        std::string name, word;
        words >> name;
        MemoryOutStream parameters;
        while (words >> word && word != ":" && word != "=") {
            if (word[0] == 'd')
                parameters.writeDouble(std::stod(word.substr(2)));
            else
                parameters.writeInt32(std::stoi(word.substr(2)));
        }
        std::vector<TextureColor> colours;  // the sources, then the result
        for (float c[4]; words >> word;) {
            c[0] = std::stof(word);
            for (int i = 1; i < 4; ++i) {
                words >> word;
                c[i] = std::stof(word);
            }
            colours.push_back({c[0], c[1], c[2], c[3]});
            words >> word;  // ":" or "="
        }
        const auto module = test::moduleRow(name).make();
        MemoryInStream stream(parameters.data());
        module->read(stream);
        std::vector<std::unique_ptr<FixedColorModule>> sources;
        for (std::size_t i = 0; i + 1 < colours.size(); ++i) {
            sources.push_back(std::make_unique<FixedColorModule>(colours[i]));
            module->setSourceModule(i, sources.back().get());
        }
        const TextureColor result = Compiled(*module).at(0.3, 0.6, 0.9);
        const float actual[4] = {result.red, result.green, result.blue, result.opacity};
        const TextureColor& wanted = colours.back();
        const float expected[4] = {wanted.red, wanted.green, wanted.blue, wanted.opacity};
        for (int c = 0; c < 4; ++c) {
            EXPECT_TRUE(actual[c] == expected[c] ||
                        (std::isnan(actual[c]) && std::isnan(expected[c])))
                << line << ": channel " << c << " is " << actual[c];
        }
        ++rows;
    }
    EXPECT_GT(rows, 20);
}

TEST(Terrace, NeedsTwoPoints) {
    EchoModule echo;
    TerraceModule single;
    single.addTerracePoint(0.5);
    single.setSourceModule(0, &echo);
    Pipeline3D pipeline;
    const std::string message = messageOf([&] { single.addToPipeline(&pipeline); });
    EXPECT_TRUE(startsWith(message, "invalid parameter for 'count' in '")) << message;
    EXPECT_TRUE(contains(message, "TerraceModule::addToPipeline")) << message;
    EXPECT_TRUE(contains(message, "': assertion 'count >= 2' failed")) << message;
    EXPECT_EQ(pipeline.getElementCount(), 0u);

    const std::size_t source = echo.addToPipeline(&pipeline);
    const double points[2] = {0.0, 1.0};
    const std::string nullPoints =
        messageOf([&] { TerraceElement3D(pipeline, source, nullptr, 2, false); });
    EXPECT_TRUE(startsWith(nullPoints, "invalid parameter for 'points' in '")) << nullPoints;
    EXPECT_TRUE(contains(nullPoints, "TerraceElement3D")) << nullPoints;
    EXPECT_TRUE(contains(nullPoints, "': assertion 'points != nullptr' failed")) << nullPoints;
    const std::string oneCount =
        messageOf([&] { TerraceElement3D(pipeline, source, points, 1, false); });
    EXPECT_TRUE(contains(oneCount, "'count' in '")) << oneCount;
    EXPECT_TRUE(contains(oneCount, "': assertion 'count >= 2' failed")) << oneCount;
}

}  // namespace
}  // namespace noisepp
