#include "nodes/NodeInputs.h"

#include <cmath>

namespace texture {

double roundHalfDown(double x) {
    const double down = std::floor(x);
    return x - down > 0.5 ? std::ceil(x) : down;
}

const Node::Value* attributeValue(const Node& node, Node::Value** inputs, unsigned attributeId) {
    const Node::Value* value = inputs[node.GetInplugIdFromAttributeId(attributeId)];
    return value != nullptr && value->IsPresent() ? value : nullptr;
}

double readNumber(const Node& node, Node::Value** inputs, unsigned attributeId) {
    const Node::Value* value = attributeValue(node, inputs, attributeId);
    return value != nullptr ? value->GetNumber() : 0.0;
}

double readNumberAsFloat(const Node& node, Node::Value** inputs, unsigned attributeId) {
    return static_cast<double>(static_cast<float>(readNumber(node, inputs, attributeId)));
}

std::int32_t readSeed(const Node& node, Node::Value** inputs, unsigned attributeId) {
    return static_cast<std::int32_t>(roundHalfDown(readNumber(node, inputs, attributeId)));
}

bool readBool(const Node& node, Node::Value** inputs, unsigned attributeId) {
    const Node::Value* value = attributeValue(node, inputs, attributeId);
    return value != nullptr && value->GetBool();
}

int readChoice(const Node& node, Node::Value** inputs, unsigned attributeId) {
    const Node::Value* value = attributeValue(node, inputs, attributeId);
    const Attribute* attribute = node.GetAttribute(attributeId);
    if (attribute == nullptr)
        return -1;
    return attribute->GetChoiceIndex(value != nullptr ? value->GetText() : std::string());
}

noisepp::TextureColor readColor(const Node& node, Node::Value** inputs, unsigned attributeId) {
    const Node::Value* value = attributeValue(node, inputs, attributeId);
    if (value == nullptr)
        return {};
    const Rgbo& c = value->GetColor();
    return {static_cast<float>(c.red), static_cast<float>(c.green), static_cast<float>(c.blue),
            static_cast<float>(c.opacity)};
}

Point readPoint(const Node& node, Node::Value** inputs, unsigned attributeId) {
    const Node::Value* value = attributeValue(node, inputs, attributeId);
    return value != nullptr ? value->GetPoint() : Point{};
}

Frame readFrame(const Node& node, Node::Value** inputs, unsigned attributeId) {
    const Node::Value* value = attributeValue(node, inputs, attributeId);
    return value != nullptr ? value->GetFrame() : Frame{};
}

MeshReference readMesh(const Node& node, Node::Value** inputs, unsigned attributeId) {
    const Node::Value* value = attributeValue(node, inputs, attributeId);
    return value != nullptr ? value->GetMesh() : MeshReference{};
}

const Node::Value* regularInputValue(const Node& node, Node::Value** inputs,
                                     unsigned regularInputId) {
    const Node::Value* value = inputs[node.GetInplugIdFromRegularInputId(regularInputId)];
    return value != nullptr && value->IsPresent() ? value : nullptr;
}

TextureInput::TextureInput(const Node& node, Node::Value** inputs, unsigned regularInputId) {
    const Node::Value* value = regularInputValue(node, inputs, regularInputId);
    if (value == nullptr || value->GetType() != Node::kTexturePlug)
        return;
    mHandle = value->GetTexture();
    if (mHandle != nullptr)
        mHandle->Retain();
}

TextureInput::~TextureInput() {
    if (mHandle != nullptr)
        mHandle->Release();
}

noisepp::Module* TextureInput::module() const {
    return mHandle != nullptr ? mHandle->module : nullptr;
}

Image* readImage(const Node& node, Node::Value** inputs, unsigned regularInputId) {
    const Node::Value* value = regularInputValue(node, inputs, regularInputId);
    if (value == nullptr || value->GetType() != Node::kImagePlug)
        return nullptr;
    return value->GetImage();
}

}  // namespace texture
