// Covers: the source order of the channel-wise combiners and RgbMap, Curve's and Terrace's
// point checks in module and element, and Exponent, ScaleBias, Clamp, Invert, Terrace and the
// channel combiners against the rows of tests/data/modifier-values.txt.

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
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

/// Too few points are refused by the module before anything is compiled, and by the element.
TEST(CurveAndTerrace, TooFewPointsAreRefused) {
    EchoModule echo;
    CurveModule curve;
    TerraceModule terrace;
    for (int i = 0; i < 3; ++i)
        curve.addControlPoint(i, i);
    terrace.addTerracePoint(0.5);
    curve.setSourceModule(0, &echo);
    terrace.setSourceModule(0, &echo);
    Pipeline3D modules;
    Pipeline3D elements;
    const std::size_t source = echo.addToPipeline(&elements);
    const double points[6] = {0, 0, 0.5, 0.5, 1, 1};
    const std::string count = "invalid parameter for 'count' in '";
    const std::string nullPoints = "invalid parameter for 'points' in '";
    // The action, the start of its message and parts found in it.
    const std::vector<std::pair<std::function<void()>, std::vector<std::string>>> rows = {
        {[&] { curve.addToPipeline(&modules); },
         {count, "CurveModule::addToPipeline", "': assertion 'count >= 4' failed"}},
        {[&] { terrace.addToPipeline(&modules); },
         {count, "TerraceModule::addToPipeline", "': assertion 'count >= 2' failed"}},
        {[&] { CurveElement3D(elements, source, nullptr, 4); }, {nullPoints, "CurveElement3D"}},
        {[&] { CurveElement3D(elements, source, points, 3); },
         {count, ": assertion 'count >= 4' failed"}},
        {[&] { TerraceElement3D(elements, source, nullptr, 2, false); },
         {nullPoints, "TerraceElement3D", "': assertion 'points != nullptr' failed"}},
        {[&] { TerraceElement3D(elements, source, points, 1, false); },
         {count, "': assertion 'count >= 2' failed"}},
    };
    for (const auto& [action, parts] : rows) {
        const std::string message = messageOf(action);
        EXPECT_TRUE(startsWith(message, parts[0])) << message;
        for (std::size_t i = 1; i < parts.size(); ++i)
            EXPECT_TRUE(contains(message, parts[i])) << message;
    }
    EXPECT_EQ(modules.getElementCount(), 0u) << "nothing is compiled for a refused module";
    curve.addControlPoint(3, 3);
    EXPECT_NO_THROW(curve.addToPipeline(&modules));
    EXPECT_EQ(curve.getControlPoints()[2], (CurveModule::ControlPoint{2.0, 2.0}));
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

}  // namespace
}  // namespace noisepp
