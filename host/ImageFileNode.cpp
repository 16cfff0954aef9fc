#include "host/ImageFileNode.h"

#include <memory>

#include "host/Image.h"
#include "host/NodeFactory.h"
#include "host/NodeInterface.h"

namespace {

class ImageFileFactory : public NodeFactory {
public:
    NodeType GetNodeType() const override { return {1, 1, 1}; }
    Node* CreateNode() override { return new ImageFileNode(); }
    const char* GetClassName() const override { return "ImageFileNode"; }
};

class ImageFileInterface : public NodeInterface {
public:
    NodeFactory* GetFactory() const override { return &mFactory; }
    std::string GetTypeName() const override { return "Image File"; }
    NodeType GetNodeType() const override { return {1, 1, 1}; }
    std::string GetLibraryName() const override { return "host"; }

private:
    mutable ImageFileFactory mFactory;
};

}  // namespace

ImageFileNode::ImageFileNode() {
    mAttributes.push_back(std::make_unique<Attribute>(this, 0, "file", FilePath{}));
    mOutputs.push_back({0, kImagePlug, "image", 0});
    UpdateInplugsAndOutplugs();
}

ImageFileNode::~ImageFileNode() {
    ReleaseImage();
}

void ImageFileNode::Evaluate(unsigned outplug, Value** inputs) {
    ReleaseImage();
    if (!IsEvaluationEnabled())
        return;
    const std::string path = inputs[GetInplugIdFromAttributeId(0)]->GetText();
    if (path.empty()) {
        SetState(outplug, kStateError, "no file given (attribute 'file')");
        return;
    }
    std::string error;
    mImage = Image::ReadFile(path, &error);
    if (mImage == nullptr) {
        SetState(outplug, kStateError, "cannot read '" + path + "': " + error);
        return;
    }
    mImage->AddRef();
}

Image* ImageFileNode::GetOutputImage(unsigned index) {
    return index == 0 ? mImage : nullptr;
}

bool ImageFileNode::OnProcessEvent(const NodeEvent& event) {
    if (event.type == NodeEvent::kReleaseOutputs)
        ReleaseImage();
    return false;
}

NodeInterface* ImageFileNode::CreateInterface() {
    return new ImageFileInterface();
}

void ImageFileNode::ReleaseImage() {
    if (mImage != nullptr)
        mImage->Release();
    mImage = nullptr;
}
