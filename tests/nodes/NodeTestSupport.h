#pragma once

// Shared by the node tests: a local engine that adds and links nodes, sets attributes and
// hands back the module a node published, a node offering a test's image, and a sampler.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

#include "host/Engine.h"
#include "host/Image.h"
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
