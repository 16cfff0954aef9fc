#pragma once

// Small modules and helpers for the modifier and combiner tests: fixed colours, a coordinate
// echo, an evaluation log, a compiled-tree holder and stream round trips.

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "noisepp/core/Exception.h"
#include "noisepp/core/Module.h"
#include "noisepp/core/Stream.h"

namespace noisepp {

/// Lets GoogleTest print colours in failure messages.
inline void PrintTo(const TextureColor& c, std::ostream* os) {
    *os << "(" << c.red << ", " << c.green << ", " << c.blue << ", " << c.opacity << ")";
}

}  // namespace noisepp

namespace noisepp::test {

/// Returns one colour everywhere; when given a log, appends its tag on every evaluation.
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
        return pipeline->addElement(this, new FixedColorElement(mColor, mLog, mTag));
    }
    int getType() const override { return 7; }
    void setColor(TextureColor color) { mColor = color; }

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

/// Writes `from` and reads the bytes into `to`; expects every byte to be consumed.
inline void copyThroughStream(const Module& from, Module& to) {
    MemoryInStream in(bytesOf(from));
    to.read(in);
    EXPECT_EQ(in.remaining(), 0u) << "read must consume exactly what write wrote";
}

inline bool sameColor(const TextureColor& a, const TextureColor& b, float tolerance) {
    const auto near = [tolerance](float u, float v) { return std::abs(u - v) <= tolerance; };
    return near(a.red, b.red) && near(a.green, b.green) && near(a.blue, b.blue) &&
           near(a.opacity, b.opacity);
}

inline std::string describe(const TextureColor& c) {
    return ::testing::PrintToString(c);
}

}  // namespace noisepp::test

/// Expects two colours to agree within `tolerance` per channel, printing both otherwise.
#define EXPECT_COLOR_NEAR(actual, expected, tolerance)                         \
    EXPECT_TRUE(::noisepp::test::sameColor((actual), (expected), (tolerance))) \
        << "actual " << ::noisepp::test::describe(actual) << ", expected "     \
        << ::noisepp::test::describe(expected)
