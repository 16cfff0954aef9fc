// A test-only plug-in: "Test Fill" (a size x size image of one colour, with a gradient of its
// own that documents keep) and "Test Invert"
// (1 - rgb of its input image), exported through the three plug-in functions.

#include <cstdlib>
#include <memory>
#include <string>

#include "host/GradientNode.h"
#include "host/Image.h"
#include "host/LibraryInterface.h"
#include "host/Log.h"
#include "host/Node.h"
#include "host/NodeFactory.h"
#include "host/NodeInterface.h"

namespace {

class ImageOutputNode : public Node {
public:
    ~ImageOutputNode() override { Publish(nullptr); }
    Image* GetOutputImage(unsigned index) override { return index == 0 ? mImage : nullptr; }
    bool OnProcessEvent(const NodeEvent& event) override {
        if (event.type == NodeEvent::kReleaseOutputs)
            Publish(nullptr);
        return false;
    }

protected:
    void Publish(Image* image) {
        if (image != nullptr)
            image->AddRef();
        if (mImage != nullptr)
            mImage->Release();
        mImage = image;
    }

private:
    Image* mImage = nullptr;
};

class TestFillNode : public ImageOutputNode, public GradientNode {
public:
    TestFillNode() {
        mAttributes.push_back(std::make_unique<Attribute>(this, 0, "color", Rgbo{1, 0, 0, 1}));
        mAttributes.push_back(std::make_unique<Attribute>(this, 1, "size", 4.0, 1.0, 64.0, 1.0, 0));
        mAttributes.push_back(std::make_unique<Attribute>(this, 2, "mode", 0, "a,b"));
        mOutputs.push_back({0, kImagePlug, "image", 0});
        UpdateInplugsAndOutplugs();
    }
    NodeType GetNodeType() const override { return {99, 7, 1}; }
    std::string GetTypeName() const override { return "Test Fill"; }
    /// Takes the stored attribute "legacy" (an older document's name) and nothing else.
    bool HandleStoredAttribute(const std::string& name, const std::string&) override {
        return name == "legacy";
    }
    GradientNode* GetGradientNode() override { return this; }
    void Evaluate(unsigned, Value** inputs) override {
        Publish(nullptr);
        if (!IsEvaluationEnabled())
            return;
        const Rgbo& c = inputs[GetInplugIdFromAttributeId(0)]->GetColor();
        const int size = static_cast<int>(inputs[GetInplugIdFromAttributeId(1)]->GetNumber());
        auto* image = new Image(size, size);
        const float pixel[4] = {static_cast<float>(c.red), static_cast<float>(c.green),
                                static_cast<float>(c.blue), static_cast<float>(c.opacity)};
        image->Fill(pixel);
        Publish(image);
    }
};

class TestInvertNode : public ImageOutputNode {
public:
    TestInvertNode() {
        mRegularInputs.push_back({0, kImagePlug, "image", 0, 0});
        mOutputs.push_back({0, kImagePlug, "image", 0});
        UpdateInplugsAndOutplugs();
    }
    NodeType GetNodeType() const override { return {99, 7, 2}; }
    std::string GetTypeName() const override { return "Test Invert"; }
    void Evaluate(unsigned outplug, Value** inputs) override {
        Publish(nullptr);
        if (!IsEvaluationEnabled())
            return;
        Image* source = inputs[GetInplugIdFromRegularInputId(0)]->GetImage();
        if (source == nullptr) {
            SetState(outplug, kStateError, "no input image");
            return;
        }
        auto* image = new Image(source->GetSizeX(), source->GetSizeY());
        const float* from = source->GetConstArray();
        float* to = image->GetArray();
        const std::size_t count = static_cast<std::size_t>(source->GetSizeX()) *
                                  static_cast<std::size_t>(source->GetSizeY()) * 4;
        for (std::size_t i = 0; i < count; ++i)
            to[i] = i % 4 == 3 ? from[i] : 1.0f - from[i];
        Publish(image);
    }
};

template <class NodeClass>
class Factory : public NodeFactory {
public:
    explicit Factory(const char* className) : mClassName(className) {}
    NodeType GetNodeType() const override { return NodeClass().GetNodeType(); }
    Node* CreateNode() override { return new NodeClass(); }
    const char* GetClassName() const override { return mClassName; }

private:
    const char* mClassName;
};

template <class NodeClass>
class Interface : public NodeInterface {
public:
    Interface(const char* typeName, const char* className, unsigned code)
        : mTypeName(typeName), mCode(code), mFactory(className) {}
    NodeFactory* GetFactory() const override { return &mFactory; }
    std::string GetTypeName() const override { return mTypeName; }
    NodeType GetNodeType() const override { return {99, 7, mCode}; }
    std::string GetLibraryName() const override { return "Test"; }
    /// "Test Fill" has a self-check that passes; "Test Invert" has none, unless
    /// TEXTURE_TEST_FAILING_SELFCHECK is set: then it has one that fails and says why.
    bool RunSelfTest() override {
        if (mTypeName == "Test Fill")
            return true;
        if (std::getenv("TEXTURE_TEST_FAILING_SELFCHECK") != nullptr)
            Log::Error("Test Invert: self-check failed on purpose");
        return false;
    }

private:
    std::string mTypeName;
    unsigned mCode;
    mutable Factory<NodeClass> mFactory;
};

class TestLibrary : public LibraryInterface {
public:
    std::string GetLibraryName() const override { return "Test"; }
};

}  // namespace

extern "C" {
__attribute__((visibility("default"))) LibraryInterface* GetLibraryInterface() {
    return new TestLibrary();
}
__attribute__((visibility("default"))) unsigned GetNumNodeInterfaces() {
    return 2;
}
__attribute__((visibility("default"))) NodeInterface* GetNodeInterface(unsigned index) {
    if (index == 0)
        return new Interface<TestFillNode>("Test Fill", "TestFillNode", 1);
    if (index == 1)
        return new Interface<TestInvertNode>("Test Invert", "TestInvertNode", 2);
    return nullptr;
}
}
