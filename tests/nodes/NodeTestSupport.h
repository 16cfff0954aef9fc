#pragma once

// Shared by the node tests: a local engine that adds and links nodes, sets attributes and
// hands back the module a node published, a node offering a test's image, and a sampler.

#include <gtest/gtest.h>

#include <memory>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "host/Engine.h"
#include "host/Image.h"
#include "host/Log.h"
#include "host/Node.h"
#include "noisepp/core/Module.h"
#include "noisepp/core/Pipeline.h"

namespace gentest {

/// Nodes in a local engine, driven as a host drives them.
class NodeGraph {
public:
    template <class NodeClass, class... Args>
    NodeClass* Add(const std::string& id, Args&&... args) {
        std::string error;
        Node* node =
            engine.AddNode(std::make_unique<NodeClass>(std::forward<Args>(args)...), id, &error);
        EXPECT_NE(node, nullptr) << error;
        return static_cast<NodeClass*>(node);
    }

    /// Links output 0 of `from` to the inplug named `input` of `to`.
    void Connect(Node* from, Node* to, const std::string& input) {
        std::string error;
        ASSERT_TRUE(
            engine.Connect(from, 0, to, static_cast<unsigned>(to->FindInplug(input)), &error))
            << error;
    }

    void Set(Node* node, unsigned attributeId, const NodeValue& value) {
        std::string error;
        EXPECT_TRUE(engine.SetAttributeValue(node, attributeId, value, &error))
            << node->GetTypeName() << " attribute " << attributeId << ": " << error;
    }

    /// Sets the attribute named `name`.
    void Set(Node* node, const std::string& name, const NodeValue& value) {
        const Attribute* attribute = node->FindAttribute(name);
        ASSERT_NE(attribute, nullptr) << node->GetTypeName() << " has no " << name;
        Set(node, attribute->GetId(), value);
    }

    /// Evaluates the node and returns the module on its outplug 0 (null when it built none).
    /// The module lives until the node evaluates again.
    noisepp::Module* Evaluate(Node* node) {
        EXPECT_TRUE(engine.EvaluateNode(node)) << node->GetStateMessage();
        const NodeValue output = engine.GetOutputValue(node, 0);
        EXPECT_EQ(output.GetType(), NodeValue::kTexture);
        return output.GetTexture() != nullptr ? output.GetTexture()->module : nullptr;
    }

    /// Evaluates and returns the module as the class the node must build (null otherwise).
    template <class ModuleClass>
    ModuleClass* EvaluateAs(Node* node) {
        noisepp::Module* module = Evaluate(node);
        auto* typed = dynamic_cast<ModuleClass*>(module);
        EXPECT_NE(typed, nullptr) << node->GetTypeName() << " built no module of the right class";
        return typed;
    }

    Engine engine;
};

/// Output 0 "image": an image the test supplies (one reference held while set).
class ImageSourceNode : public Node {
public:
    ImageSourceNode() {
        mOutputs.push_back({0, kImagePlug, "image", 0});
        UpdateInplugsAndOutplugs();
    }
    ~ImageSourceNode() override { SetImage(nullptr); }
    NodeType GetNodeType() const override { return {99, 2, 2}; }
    std::string GetTypeName() const override { return "Test Image Source"; }
    void Evaluate(unsigned, Value**) override {}
    Image* GetOutputImage(unsigned index) override { return index == 0 ? mImage : nullptr; }

    /// Takes a reference to `image` (may be null) and drops the previous one.
    void SetImage(Image* image) {
        if (image != nullptr)
            image->AddRef();
        if (mImage != nullptr)
            mImage->Release();
        mImage = image;
    }

private:
    Image* mImage = nullptr;
};

/// The colour of a module tree at one point, through a freshly compiled pipeline.
inline noisepp::TextureColor Sample(const noisepp::Module& module, double x, double y, double z) {
    noisepp::Pipeline3D pipeline;
    const std::size_t id = module.addToPipeline(&pipeline);
    return pipeline.getElement(id)->getValue(x, y, z);
}

}  // namespace gentest

// The render nodes' tests: a node publishing a module the test owns, a probe texture whose
// colour is the point it is sampled at, OBJ models, a log capture and a local engine holding a
// source node linked to the render node under test.
namespace rendertest {

/// True when `line` is `prefix` followed by a whole number of milliseconds and " ms".
inline bool IsTimingLine(const std::string& line, const std::string& prefix) {
    return line.starts_with(prefix) &&
           std::regex_match(line.substr(prefix.size()), std::regex("[0-9]+ ms"));
}

/// Output 0 "texture": whatever module the test hands it (borrowed), null by default.
class ModuleSourceNode : public Node {
public:
    ModuleSourceNode() {
        mOutputs.push_back({0, kTexturePlug, "texture", 0});
        UpdateInplugsAndOutplugs();
    }
    NodeType GetNodeType() const override { return {99, 2, 1}; }
    std::string GetTypeName() const override { return "Test Module Source"; }
    void Evaluate(unsigned, Value**) override {}
    TextureHandle* GetOutputTexture(unsigned index) override {
        return index == 0 ? new TextureHandle(module) : nullptr;
    }

    noisepp::Module* module = nullptr;
};

/// The colour at (x, y, z) is (x, y, z, 1): a render shows where it sampled the texture.
/// Squared, it is (x * x, y * y, z * z, 1), whose pixel averages tell sample counts apart.
class ProbeModule : public noisepp::Module {
public:
    explicit ProbeModule(bool squared = false) : Module(0), mSquared(squared) {}
    std::size_t addToPipeline(noisepp::Pipeline3D* pipeline) const override {
        return pipeline->addElement(this, new Element(mSquared));
    }
    int getType() const override { return -1; }

private:
    struct Element : noisepp::PipelineElement3D {
        explicit Element(bool squared) : squared(squared) {}
        noisepp::TextureColor getValue(double x, double y, double z) const override {
            const auto f = [this](double v) { return static_cast<float>(squared ? v * v : v); };
            return {f(x), f(y), f(z), 1.0f};
        }
        bool squared;
    };
    bool mSquared;
};

/// The unit square at z = 0 with UVs equal to its positions: every pixel centre of a render
/// lies on the surface point with the same x and y as its UV.
inline const char* const kUnitQuadObj =
    "o quad\n"
    "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n"
    "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n"
    "f 1/1 2/2 3/3\nf 1/1 3/3 4/4\n";

/// The lower-right half of the unit square only (u >= v), UVs equal to positions.
inline const char* const kHalfQuadObj =
    "o half\n"
    "v 0 0 0\nv 1 0 0\nv 1 1 0\n"
    "vt 0 0\nvt 1 0\nvt 1 1\n"
    "f 1/1 2/2 3/3\n";

/// Collects log lines while alive (every level shown), then restores the default sink.
class LogCapture {
public:
    LogCapture() : mLevel(Log::GetLevel()) {
        Log::SetLevel(Log::Level::kTrace);
        Log::SetSink([this](Log::Level, const std::string& line) { lines.push_back(line); });
    }
    ~LogCapture() {
        Log::SetSink(nullptr);
        Log::SetLevel(mLevel);
    }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<std::string> lines;

private:
    Log::Level mLevel;
};

/// A local engine with a ModuleSourceNode "source" linked to a render node "render".
template <class RenderNode>
class RenderGraph : public gentest::NodeGraph {
public:
    RenderGraph() : source(Add<ModuleSourceNode>("source")), render(Add<RenderNode>("render")) {
        Connect(source, render, "texture");
    }

    /// Publishes `module` (borrowed) from the source node; null publishes no texture.
    void SetTexture(noisepp::Module* module) {
        source->module = module;
        engine.MarkDirty(source);
    }

    using NodeGraph::Set;
    void Set(const std::string& attribute, const NodeValue& value) {
        Set(render, attribute, value);
    }

    /// Links an image node's output 0 to the render node's inplug `inplug`.
    void ConnectImage(Node* from, const std::string& inplug) { Connect(from, render, inplug); }

    /// Evaluates the render node and returns the value on its image outplug (holding a
    /// reference to the image, if any).
    NodeValue Render() {
        engine.EvaluateNode(render);
        return engine.GetOutputValue(render, 0);
    }

    /// The float pixels of a render, empty when there is no image.
    std::vector<float> Pixels() {
        const NodeValue value = Render();
        const Image* image = value.GetImage();
        if (image == nullptr)
            return {};
        const float* data = image->GetConstArray();
        return {data, data + static_cast<std::size_t>(image->GetSizeX()) * image->GetSizeY() * 4};
    }

    ModuleSourceNode* source;
    RenderNode* render;
};

using gentest::ImageSourceNode;
}  // namespace rendertest
