#pragma once

// Small modules for exercising the engine core without any real generator.

#include "noisepp/core/Module.h"

namespace noisepp::test {

/// Returns a fixed grey level; counts how often it was compiled.
class LevelElement : public PipelineElement3D {
public:
    explicit LevelElement(float level) : mLevel(level) {}
    TextureColor getValue(double, double, double) const override {
        return {mLevel, mLevel, mLevel, 1.0f};
    }

private:
    float mLevel;
};

class LevelModule : public Module {
public:
    explicit LevelModule(float level = 0.25f) : Module(0), mLevel(level) {}
    std::size_t addToPipeline(Pipeline3D* pipeline) const override {
        ++compileCount;
        return pipeline->addElement(this, new LevelElement(mLevel));
    }
    int getType() const override { return 7; }
    mutable int compileCount = 0;

private:
    float mLevel;
};

/// Sums its two sources channel by channel.
class SumElement : public PipelineElement3D {
public:
    static constexpr int moduleType = 2;
    SumElement(const Pipeline3D& pipeline, std::size_t a, std::size_t b)
        : mA(pipeline.getElement(a)), mB(pipeline.getElement(b)) {}
    TextureColor getValue(double x, double y, double z) const override {
        const TextureColor a = mA->getValue(x, y, z);
        const TextureColor b = mB->getValue(x, y, z);
        return {a.red + b.red, a.green + b.green, a.blue + b.blue, a.opacity + b.opacity};
    }

private:
    const PipelineElement3D* mA;
    const PipelineElement3D* mB;
};
using SumModule = DualSourceModule<SumElement>;

/// Passes its source through.
class PassElement : public PipelineElement3D {
public:
    static constexpr int moduleType = 10;
    PassElement(const Pipeline3D& pipeline, std::size_t source)
        : mSource(pipeline.getElement(source)) {}
    TextureColor getValue(double x, double y, double z) const override {
        return mSource->getValue(x, y, z);
    }

private:
    const PipelineElement3D* mSource;
};
using PassModule = SingleSourceModule<PassElement>;

}  // namespace noisepp::test
