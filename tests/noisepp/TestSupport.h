#pragma once

// Helpers of the engine tests: small modules (fixed colours with an evaluation log and a
// coordinate echo), a compiled-tree holder, exception messages,
// stream bytes, and the run-form checks repeated per instruction set.

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <functional>
#include <memory>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "hwy/targets.h"
#include "noisepp/core/Exception.h"
#include "noisepp/core/Module.h"
#include "noisepp/core/Pipeline.h"
#include "noisepp/core/Stream.h"
#include "noisepp/modules/ModuleList.h"

namespace noisepp {

/// Lets GoogleTest print colours in failure messages.
inline void PrintTo(const TextureColor& c, std::ostream* os) {
    *os << "(" << c.red << ", " << c.green << ", " << c.blue << ", " << c.opacity << ")";
}

}  // namespace noisepp

namespace noisepp::test {

/// One module class of the engine's module list.
struct ModuleRow {
    int typeCode;
    std::string name;
    std::function<std::unique_ptr<Module>()> make;
};

#define NOISEPP_TEST_ROW(code, Class) \
    ModuleRow{code, #Class, [] { return std::unique_ptr<Module>(new Class); }},
inline const std::vector<ModuleRow>& moduleRows() {
    static const std::vector<ModuleRow> rows = {NOISEPP_MODULE_LIST(NOISEPP_TEST_ROW)};
    return rows;
}
#undef NOISEPP_TEST_ROW

inline const ModuleRow& moduleRow(const std::string& name) {
    for (const ModuleRow& row : moduleRows()) {
        if (row.name == name)
            return row;
    }
    throw std::invalid_argument("no module " + name);
}

/// One line of tests/data/module-streams.txt: a module name, a kind and typed fields ("d:" a
/// double, "i:" a 32-bit integer), with the bytes they make in a stream.
struct StreamLine {
    std::string module;
    std::string kind;
    std::string fields;
    std::vector<unsigned char> bytes;
};

inline std::vector<StreamLine> readStreamLines() {
    std::ifstream in(std::string(TEXTURE_SOURCE_DIR) + "/tests/data/module-streams.txt");
    std::vector<StreamLine> lines;
    for (std::string text; std::getline(in, text);) {
        if (text.empty() || text[0] == '#')
            continue;
        std::istringstream words(text);
        StreamLine line;
        words >> line.module >> line.kind;
        MemoryOutStream out;
        for (std::string field; words >> field;) {
            line.fields += " " + field;
            if (field.rfind("d:", 0) == 0)
                out.writeDouble(std::stod(field.substr(2)));
            else
                out.writeInt32(std::stoi(field.substr(2)));
        }
        line.bytes = out.data();
        lines.push_back(std::move(line));
    }
    return lines;
}

/// Reads sample parameter set `index` (modulo their number) recorded for module `name` into
/// `module`; leaves a module without samples at its defaults. Returns the number of samples.
inline std::size_t configureFromSample(Module& module, const std::string& name, std::size_t index) {
    static const std::vector<StreamLine> lines = readStreamLines();
    std::vector<const StreamLine*> samples;
    for (const StreamLine& line : lines) {
        if (line.module == name && line.kind == "sample")
            samples.push_back(&line);
    }
    if (!samples.empty()) {
        MemoryInStream in(samples[index % samples.size()]->bytes);
        module.read(in);
    }
    return samples.size();
}

/// Returns one colour everywhere; when given a log, appends its tag on every evaluation. The
/// module counts how often it was compiled.
class FixedColorElement : public PipelineElement3D {
public:
    FixedColorElement(TextureColor color, std::string* log, char tag)
        : mColor(color), mLog(log), mTag(tag) {}
    TextureColor getValue(double, double, double) const override {
        if (mLog != nullptr)
            mLog->push_back(mTag);
        return mColor;
    }

private:
    TextureColor mColor;
    std::string* mLog;
    char mTag;
};

class FixedColorModule : public Module {
public:
    explicit FixedColorModule(TextureColor color, std::string* log = nullptr, char tag = '?')
        : Module(0), mColor(color), mLog(log), mTag(tag) {}
    std::size_t addToPipeline(Pipeline3D* pipeline) const override {
        ++compileCount;
        return pipeline->addElement(this, new FixedColorElement(mColor, mLog, mTag));
    }
    int getType() const override { return 7; }
    void setColor(TextureColor color) { mColor = color; }
    mutable int compileCount = 0;

private:
    TextureColor mColor;
    std::string* mLog;
    char mTag;
};

/// Returns the point it is evaluated at as (x, y, z, 1), so a modifier's lookup point can be
/// read off its output.
class EchoElement : public PipelineElement3D {
public:
    TextureColor getValue(double x, double y, double z) const override {
        return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z), 1.0f};
    }
};

class EchoModule : public Module {
public:
    EchoModule() : Module(0) {}
    std::size_t addToPipeline(Pipeline3D* pipeline) const override {
        return pipeline->addElement(this, new EchoElement);
    }
    int getType() const override { return 7; }
};

/// A module tree compiled into its own pipeline.
struct Compiled {
    explicit Compiled(const Module& root, std::int32_t seed = 0)
        : pipeline(std::make_unique<Pipeline3D>()) {
        pipeline->setSeed(seed);
        element = pipeline->getElement(root.addToPipeline(pipeline.get()));
    }
    TextureColor at(double x, double y, double z = 0.0) const { return element->getValue(x, y, z); }

    std::unique_ptr<Pipeline3D> pipeline;
    const PipelineElement3D* element = nullptr;
};

/// The message of the noisepp exception `action` throws, or "(no exception)".
inline std::string messageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const Exception& e) {
        return e.what();
    }
    return "(no exception)";
}

/// The bytes `module` writes.
inline std::vector<unsigned char> bytesOf(const Module& module) {
    MemoryOutStream out;
    module.write(out);
    return out.data();
}

inline bool sameColor(const TextureColor& a, const TextureColor& b, float tolerance) {
    const auto near = [tolerance](float u, float v) { return std::abs(u - v) <= tolerance; };
    return near(a.red, b.red) && near(a.green, b.green) && near(a.blue, b.blue) &&
           near(a.opacity, b.opacity);
}

inline std::string describe(const TextureColor& c) {
    std::ostringstream text;
    text.precision(9);
    text << "(" << c.red << ", " << c.green << ", " << c.blue << ", " << c.opacity << ")";
    return text.str();
}

/// Calls check() once for every instruction set compiled in and supported here, with only that
/// one allowed, and restores the normal choice afterwards.
template <class Check>
void forEachTarget(Check check) {
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        SCOPED_TRACE(std::string("instruction set ") + hwy::TargetName(target));
        check();
    }
    hwy::SetSupportedTargetsForTest(0);
}

inline bool sameBits(const TextureColor& a, const TextureColor& b) {
    return std::memcmp(&a, &b, sizeof(TextureColor)) == 0;
}

/// Points for the run forms: x per point, y and z per point.
struct PointSet {
    std::vector<double> x, y, z;
    void add(double px, double py, double pz) {
        x.push_back(px);
        y.push_back(py);
        z.push_back(pz);
    }
    std::size_t size() const { return x.size(); }
};

/// Expects every run form of `element` to give getValue's colour bit for bit: the line from
/// (x, y, z) advancing by xStep, the same points as a row, and `points` as arbitrary points.
/// Reports at most the first mismatch of each form.
inline void expectRunsMatchPoints(const PipelineElement3D& element, double x, double y, double z,
                                  double xStep, std::size_t count, const PointSet& points) {
    std::vector<TextureColor> line(count);
    const double end = element.getLine(x, y, z, xStep, count, line.data());
    std::vector<double> xs(count);
    double px = x;
    for (std::size_t i = 0; i < count; ++i) {
        xs[i] = px;
        px = px + xStep;
    }
    EXPECT_EQ(std::memcmp(&end, &px, sizeof(double)), 0) << "x after the line";
    std::vector<TextureColor> row(count);
    element.getRowValues(xs.data(), y, z, count, row.data());
    for (std::size_t i = 0; i < count; ++i) {
        const TextureColor expected = element.getValue(xs[i], y, z);
        if (!sameBits(line[i], expected) || !sameBits(row[i], expected)) {
            ADD_FAILURE() << "line point " << i << " at (" << xs[i] << ", " << y << ", " << z
                          << "): one point " << describe(expected) << ", line " << describe(line[i])
                          << ", row " << describe(row[i]);
            break;
        }
    }
    std::vector<TextureColor> many(points.size());
    element.getValues(points.x.data(), points.y.data(), points.z.data(), points.size(),
                      many.data());
    for (std::size_t i = 0; i < points.size(); ++i) {
        const TextureColor expected = element.getValue(points.x[i], points.y[i], points.z[i]);
        if (!sameBits(many[i], expected)) {
            ADD_FAILURE() << "point " << i << " at (" << points.x[i] << ", " << points.y[i] << ", "
                          << points.z[i] << "): one point " << describe(expected) << ", run "
                          << describe(many[i]);
            break;
        }
    }
}

}  // namespace noisepp::test

/// Expects two colours to agree within `tolerance` per channel, printing both otherwise.
#define EXPECT_COLOR_NEAR(actual, expected, tolerance)                         \
    EXPECT_TRUE(::noisepp::test::sameColor((actual), (expected), (tolerance))) \
        << "actual " << ::noisepp::test::describe(actual) << ", expected "     \
        << ::noisepp::test::describe(expected)
