#pragma once

// Probe textures and nodes for driving the preview and the gradient page in tests: a texture
// that returns the sampled point as its colour, a texture that holds its samples until the test
// opens a gate, a node publishing any of them, a node without a texture
// and a node with a gradient; and a helper that spins the event loop until a condition holds.

#include <atomic>
#include <chrono>
#include <functional>
#include <latch>
#include <memory>
#include <utility>

#include <QCoreApplication>
#include <QThread>

#include "host/GradientNode.h"
#include "host/Node.h"
#include "noisepp/core/Module.h"
#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"

namespace uitest {

/// Processes events until `done` holds; false when it did not within `limit` (a guard against
/// hanging, not a timing assertion).
inline bool SpinUntil(const std::function<bool()>& done,
                      std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!done()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(1);
    }
    return true;
}

/// A source-less module whose colour at (x, y, z) is colorAt(x, y, z).
class FunctionModule : public noisepp::Module {
public:
    using ColorAt = std::function<noisepp::TextureColor(double, double, double)>;
    explicit FunctionModule(ColorAt colorAt) : Module(0), mColorAt(std::move(colorAt)) {}
    std::size_t addToPipeline(noisepp::Pipeline3D* pipeline) const override {
        return pipeline->addElement(this, new Element(mColorAt));
    }
    int getType() const override { return 9000; }

private:
    struct Element : noisepp::PipelineElement3D {
        explicit Element(ColorAt colorAt) : colorAt(std::move(colorAt)) {}
        noisepp::TextureColor getValue(double x, double y, double z) const override {
            return colorAt(x, y, z);
        }
        ColorAt colorAt;
    };
    ColorAt mColorAt;
};

/// The colour at (x, y, z) is (x, y, z, 1): shows exactly which points a builder sampled.
inline std::unique_ptr<FunctionModule> MakeCoordinateModule() {
    return std::make_unique<FunctionModule>([](double x, double y, double z) {
        return noisepp::TextureColor{static_cast<float>(x), static_cast<float>(y),
                                     static_cast<float>(z), 1.0f};
    });
}

/// A gate a texture waits at: every sample marks that it arrived and waits until it opens.
struct Gate {
    std::atomic<bool> arrived = false;
    std::latch open{1};
};

/// Opaque red, but every sample first passes `gate`.
inline std::unique_ptr<FunctionModule> MakeGatedModule(Gate* gate) {
    return std::make_unique<FunctionModule>([gate](double, double, double) {
        gate->arrived = true;
        gate->open.wait();
        return noisepp::TextureColor{1.0f, 0.0f, 0.0f, 1.0f};
    });
}

/// Publishes a module given by the test on output 0 "texture"; its "level" attribute exists
/// only so that edits can reach the node.
class ProbeTextureNode : public Node {
public:
    explicit ProbeTextureNode(std::unique_ptr<noisepp::Module> module)
        : mModule(std::move(module)) {
        mAttributes.push_back(
            std::make_unique<Attribute>(this, 0, "level", 0.0, 0.0, 10.0, 0.1, 1));
        mOutputs.push_back({0, kTexturePlug, "texture"});
        UpdateInplugsAndOutplugs();
    }
    NodeType GetNodeType() const override { return {99, 2, 1}; }
    std::string GetTypeName() const override { return "Probe Texture"; }
    void Evaluate(unsigned, Value**) override { ++evaluations; }
    TextureHandle* GetOutputTexture(unsigned index) override {
        return index == 0 ? new TextureHandle(mModule.get()) : nullptr;
    }
    int evaluations = 0;

private:
    std::unique_ptr<noisepp::Module> mModule;
};

/// A node whose only output is an (empty) image: it has no texture to preview.
class ImageOnlyNode : public Node {
public:
    ImageOnlyNode() {
        mOutputs.push_back({0, kImagePlug, "image"});
        UpdateInplugsAndOutplugs();
    }
    NodeType GetNodeType() const override { return {99, 2, 2}; }
    std::string GetTypeName() const override { return "Image Only"; }
    void Evaluate(unsigned, Value**) override {}
};

/// A node with a gradient of its own and one number attribute.
class ProbeGradientNode : public Node, public GradientNode {
public:
    ProbeGradientNode() {
        mAttributes.push_back(
            std::make_unique<Attribute>(this, 0, "level", 0.0, 0.0, 10.0, 0.1, 1));
        mOutputs.push_back({0, kTexturePlug, "texture"});
        UpdateInplugsAndOutplugs();
    }
    NodeType GetNodeType() const override { return {99, 2, 3}; }
    std::string GetTypeName() const override { return "Probe Gradient"; }
    void Evaluate(unsigned, Value**) override {}
    GradientNode* GetGradientNode() override { return this; }
};

}  // namespace uitest
