#pragma once

// Small node types for driving the engine in tests: an image source, a pass-through, a
// two-input sum, a texture source, a node that throws, a gradient node, and an event recorder.

#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/Engine.h"
#include "host/GradientNode.h"
#include "host/Image.h"
#include "host/Node.h"

namespace hosttest {

/// Where test nodes note their evaluations, in order.
using EvaluationLog = std::vector<std::string>;

/// A node with one image output holding a 1 x 1 image; the red channel carries the value.
class ImageNode : public Node {
public:
    ImageNode(std::string name, EvaluationLog* log) : mName(std::move(name)), mLog(log) {}
    ~ImageNode() override { ReleaseImage(); }

    NodeType GetNodeType() const override { return {99, 1, 1}; }
    std::string GetTypeName() const override { return "Test " + mName; }
    Image* GetOutputImage(unsigned index) override { return index == 0 ? mImage : nullptr; }
    bool OnProcessEvent(const NodeEvent& event) override {
        if (event.type == NodeEvent::kReleaseOutputs)
            ReleaseImage();
        return true;
    }
    bool HasImage() const { return mImage != nullptr; }
    int evaluations = 0;

protected:
    void Publish(float value) {
        mImage = new Image(1, 1);
        const float pixel[4] = {value, 0.0f, 0.0f, 1.0f};
        mImage->Fill(pixel);
        mImage->AddRef();
    }
    void ReleaseImage() {
        if (mImage != nullptr)
            mImage->Release();
        mImage = nullptr;
    }
    void Note() {
        ++evaluations;
        if (mLog != nullptr)
            mLog->push_back(mName);
    }
    static const Image* InputImage(const Node& node, Value** inputs, unsigned regularInput) {
        const Value* value = inputs[node.GetInplugIdFromRegularInputId(regularInput)];
        return value->GetType() == kImagePlug ? value->GetImage() : nullptr;
    }

    std::string mName;
    EvaluationLog* mLog;
    Image* mImage = nullptr;
};

/// Attribute 0 "value" (number, -100...100); output 0 "image".
class SourceNode : public ImageNode {
public:
    explicit SourceNode(std::string name = "source", EvaluationLog* log = nullptr)
        : ImageNode(std::move(name), log) {
        mAttributes.push_back(
            std::make_unique<Attribute>(this, 0, "value", 1.0, -100.0, 100.0, 1.0, 0));
        mOutputs.push_back({0, kImagePlug, "image", 0});
        UpdateInplugsAndOutplugs();
    }
    void Evaluate(unsigned, Value** inputs) override {
        Note();
        ReleaseImage();
        if (!IsEvaluationEnabled())
            return;
        Publish(static_cast<float>(inputs[GetInplugIdFromAttributeId(0)]->GetNumber()));
    }
};

/// Attribute 0 "gain" (number); regular input 0 "image"; output 0 "image" = input x gain,
/// none without an input.
class PassNode : public ImageNode {
public:
    explicit PassNode(std::string name = "pass", EvaluationLog* log = nullptr)
        : ImageNode(std::move(name), log) {
        mAttributes.push_back(
            std::make_unique<Attribute>(this, 0, "gain", 1.0, -100.0, 100.0, 1.0, 0));
        mRegularInputs.push_back({0, kImagePlug, "image", 0, 0});
        mOutputs.push_back({0, kImagePlug, "image", 0});
        UpdateInplugsAndOutplugs();
    }
    void Evaluate(unsigned, Value** inputs) override {
        Note();
        ReleaseImage();
        const Image* input = InputImage(*this, inputs, 0);
        if (!IsEvaluationEnabled() || input == nullptr)
            return;
        const double gain = inputs[GetInplugIdFromAttributeId(0)]->GetNumber();
        Publish(static_cast<float>(input->GetConstArray()[0] * gain));
    }
};

/// Regular inputs 0 "a" and 1 "b"; output 0 "image" = a + b (a missing input counts 0).
class SumNode : public ImageNode {
public:
    explicit SumNode(std::string name = "sum", EvaluationLog* log = nullptr)
        : ImageNode(std::move(name), log) {
        mRegularInputs.push_back({0, kImagePlug, "a", 0, 0});
        mRegularInputs.push_back({1, kImagePlug, "b", 0, 0});
        mOutputs.push_back({0, kImagePlug, "image", 0});
        UpdateInplugsAndOutplugs();
    }
    void Evaluate(unsigned, Value** inputs) override {
        Note();
        ReleaseImage();
        float sum = 0.0f;
        for (unsigned i = 0; i < 2; ++i)
            if (const Image* input = InputImage(*this, inputs, i))
                sum += input->GetConstArray()[0];
        Publish(sum);
    }
};

/// Output 0 "texture" (plug type 9) carrying a handle with no module.
class TextureSourceNode : public Node {
public:
    TextureSourceNode() {
        mOutputs.push_back({0, kTexturePlug, "texture", 0});
        UpdateInplugsAndOutplugs();
    }
    NodeType GetNodeType() const override { return {99, 1, 2}; }
    std::string GetTypeName() const override { return "Test Texture"; }
    void Evaluate(unsigned, Value**) override {}
    TextureHandle* GetOutputTexture(unsigned index) override {
        return index == 0 ? new TextureHandle(nullptr) : nullptr;
    }
};

/// Attribute 0 "fault" (choice "none,exception,silent,integer"): what Evaluate throws (a
/// std::runtime_error "pipeline exploded", one with an empty message, an int, or nothing).
class FaultyNode : public ImageNode {
public:
    FaultyNode() : ImageNode("faulty", nullptr) {
        mAttributes.push_back(
            std::make_unique<Attribute>(this, 0, "fault", 1, "none,exception,silent,integer"));
        mOutputs.push_back({0, kImagePlug, "image", 0});
        UpdateInplugsAndOutplugs();
    }
    void Evaluate(unsigned, Value** inputs) override {
        Note();
        ReleaseImage();
        Publish(7.0f);
        const std::string fault = inputs[GetInplugIdFromAttributeId(0)]->GetText();
        if (fault == "exception")
            throw std::runtime_error("pipeline exploded");
        if (fault == "silent")
            throw std::runtime_error("");
        if (fault == "integer")
            throw 42;
    }
};

/// A gradient-owning node with attribute 0 "amount" and an image output.
class GradientTestNode : public ImageNode, public GradientNode {
public:
    GradientTestNode() : ImageNode("gradient", nullptr) {
        mAttributes.push_back(
            std::make_unique<Attribute>(this, 0, "amount", 0.0, 0.0, 1.0, 0.1, 1));
        mOutputs.push_back({0, kImagePlug, "image", 0});
        UpdateInplugsAndOutplugs();
    }
    void Evaluate(unsigned, Value**) override {
        Note();
        ReleaseImage();
        Publish(static_cast<float>(GetGradient().vertices.size()));
    }
    GradientNode* GetGradientNode() override { return this; }
};

/// Records the events of the nodes it listens to.
class EventRecorder : public NodeListener {
public:
    struct Entry {
        Node* node;
        int type;
        int code;
    };
    void OnNodeEvent(Node* node, const NodeEvent& event) override {
        events.push_back({node, event.type, event.code});
    }
    int Count(const Node* node, int type) const {
        int n = 0;
        for (const Entry& e : events)
            if (e.node == node && e.type == type)
                ++n;
        return n;
    }
    std::vector<Entry> events;
};

/// The red channel of the image on outplug 0, or NaN when there is none.
inline float OutputRed(const Engine& engine, const Node* node) {
    const NodeValue value = engine.GetOutputValue(node, 0);
    if (value.GetImage() == nullptr)
        return std::numeric_limits<float>::quiet_NaN();
    return value.GetImage()->GetConstArray()[0];
}

}  // namespace hosttest
