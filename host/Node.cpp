#include "host/Node.h"

#include <algorithm>
#include <mutex>
#include <optional>
#include <stdexcept>

namespace {

// Listener lists are shared with the thread that delivers events; a node in an engine guards
// them with the engine's lock, a node outside one is used by one thread only.
std::optional<std::unique_lock<EngineMutex>> lockEngineOf(const Node& node) {
    if (node.GetHost() == nullptr)
        return std::nullopt;
    return std::unique_lock<EngineMutex>(node.GetHost()->GetMutex());
}

}  // namespace

Node::Node() = default;

Node::~Node() = default;

bool Node::OnProcessEvent(const NodeEvent& event) {
    (void)event;
    return false;
}

Image* Node::GetOutputImage(unsigned index) {
    (void)index;
    return nullptr;
}

TextureHandle* Node::GetOutputTexture(unsigned index) {
    (void)index;
    return nullptr;
}

bool Node::HandleStoredAttribute(const std::string& name, const std::string& value) {
    (void)name, (void)value;
    return false;
}

void Node::AddCombinedRgboAttribute(unsigned attributeId, const std::string& colorName,
                                    const std::string& opacityName) {
    const Attribute* attribute = GetAttribute(attributeId);
    if (attribute == nullptr || attribute->GetKind() != Attribute::kColor)
        throw std::logic_error(GetTypeName() + ": combined colour attribute " +
                               std::to_string(attributeId) + " is not a colour attribute");
    mCombined.push_back({CombinedAttribute::kRgbo, attributeId, {colorName, opacityName}});
}

void Node::AddCombinedPointAttribute(unsigned attributeId, const std::string& xName,
                                     const std::string& yName) {
    const Attribute* attribute = GetAttribute(attributeId);
    if (attribute == nullptr || attribute->GetKind() != Attribute::kPoint)
        throw std::logic_error(GetTypeName() + ": combined point attribute " +
                               std::to_string(attributeId) + " is not a point attribute");
    mCombined.push_back({CombinedAttribute::kPoint, attributeId, {xName, yName}});
}

void Node::AddCombinedFramePositionSizeAttribute(unsigned attributeId, const std::string& positionX,
                                                 const std::string& positionY,
                                                 const std::string& sizeX,
                                                 const std::string& sizeY) {
    const Attribute* attribute = GetAttribute(attributeId);
    if (attribute == nullptr || attribute->GetKind() != Attribute::kFrame)
        throw std::logic_error(GetTypeName() + ": combined frame attribute " +
                               std::to_string(attributeId) + " is not a frame attribute");
    mCombined.push_back(
        {CombinedAttribute::kFramePositionSize, attributeId, {positionX, positionY, sizeX, sizeY}});
}

void Node::UpdateInplugsAndOutplugs() {
    // Nodes read inputs[GetInplugIdFromAttributeId(id)], and documents and undo records name
    // attributes by id: an id that is not the declaration index would silently read the
    // wrong attribute, so it is refused outright.
    for (std::size_t i = 0; i < mAttributes.size(); ++i) {
        if (mAttributes[i] == nullptr)
            throw std::logic_error(GetTypeName() + ": attribute slot " + std::to_string(i) +
                                   " is empty");
        if (mAttributes[i]->GetId() != i)
            throw std::logic_error(GetTypeName() + ": attribute '" + mAttributes[i]->GetName() +
                                   "' has id " + std::to_string(mAttributes[i]->GetId()) +
                                   " but is declared at position " + std::to_string(i) +
                                   "; attribute ids must be 0, 1, 2, ... in declaration order");
    }
    for (std::size_t i = 0; i < mOutputs.size(); ++i)
        if (mOutputs[i].id != i)
            throw std::logic_error(GetTypeName() + ": output '" + mOutputs[i].name + "' has id " +
                                   std::to_string(mOutputs[i].id) +
                                   " but is declared at position " + std::to_string(i));

    std::vector<const RegularInput*> inputs;
    for (const RegularInput& input : mRegularInputs)
        inputs.push_back(&input);
    std::stable_sort(inputs.begin(), inputs.end(),
                     [](const RegularInput* a, const RegularInput* b) { return a->id < b->id; });
    for (std::size_t i = 1; i < inputs.size(); ++i)
        if (inputs[i]->id == inputs[i - 1]->id)
            throw std::logic_error(GetTypeName() + ": regular inputs '" + inputs[i - 1]->name +
                                   "' and '" + inputs[i]->name + "' share id " +
                                   std::to_string(inputs[i]->id));

    std::vector<Inplug> inplugs;
    for (const auto& attribute : mAttributes)
        inplugs.push_back({static_cast<unsigned>(inplugs.size()), attribute->GetName(),
                           attribute->GetValueType(), static_cast<int>(attribute->GetId()), -1});
    for (const RegularInput* input : inputs)
        inplugs.push_back({static_cast<unsigned>(inplugs.size()), input->name, input->plugType, -1,
                           static_cast<int>(input->id)});
    mInplugs = std::move(inplugs);
}

unsigned Node::GetInplugIdFromAttributeId(unsigned attributeId) const {
    if (attributeId >= mAttributes.size())
        throw std::out_of_range(GetTypeName() + " has no attribute with id " +
                                std::to_string(attributeId));
    return attributeId;
}

unsigned Node::GetInplugIdFromRegularInputId(unsigned regularInputId) const {
    for (const Inplug& inplug : mInplugs)
        if (inplug.regularInputId == static_cast<int>(regularInputId))
            return inplug.id;
    throw std::out_of_range(GetTypeName() + " has no regular input with id " +
                            std::to_string(regularInputId));
}

int Node::FindInplug(const std::string& name) const {
    for (const Inplug& inplug : mInplugs)
        if (inplug.name == name)
            return static_cast<int>(inplug.id);
    return -1;
}

int Node::FindOutplug(const std::string& name) const {
    for (std::size_t i = 0; i < mOutputs.size(); ++i)
        if (mOutputs[i].name == name)
            return static_cast<int>(i);
    return -1;
}

Attribute* Node::GetAttribute(unsigned id) const {
    return id < mAttributes.size() ? mAttributes[id].get() : nullptr;
}

Attribute* Node::FindAttribute(const std::string& name) const {
    for (const auto& attribute : mAttributes)
        if (attribute->GetName() == name)
            return attribute.get();
    return nullptr;
}

void Node::SetState(unsigned outplug, int state, const std::string& message) {
    (void)outplug;  // one state per node: every node of ours has a single output
    if (state == kStateOk) {
        ClearState();
        return;
    }
    // Keep the worst state; messages of the same severity accumulate, so that a node that
    // drops two mismatched inputs reports both.
    if (state < mState)
        return;
    if (state == mState && !mStateMessage.empty()) {
        if (!message.empty() && mStateMessage.find(message) == std::string::npos)
            mStateMessage += " " + message;
        return;
    }
    mState = state;
    mStateMessage = message;
}

void Node::ClearState() {
    mState = kStateOk;
    mStateMessage.clear();
}

void Node::SetEvaluationEnabled(bool enabled) {
    if (mHost == nullptr) {
        mEvaluationEnabled = enabled;
        return;
    }
    {
        std::lock_guard lock(mHost->GetMutex());
        if (mEvaluationEnabled == enabled)
            return;
        mEvaluationEnabled = enabled;
    }
    // Outside the lock, so that the output-changed events go out once the engine is free.
    mHost->MarkDirty(this);
}

void Node::AddNodeListener(NodeListener* listener) {
    if (listener == nullptr)
        return;
    const auto lock = lockEngineOf(*this);
    if (std::find(mListeners.begin(), mListeners.end(), listener) == mListeners.end())
        mListeners.push_back(listener);
}

void Node::RemoveNodeListener(NodeListener* listener) {
    const auto lock = lockEngineOf(*this);
    std::erase(mListeners, listener);
}

void Node::ProcessEvent(int type, int code) {
    if (type == NodeEvent::kOutputChanged && mHost != nullptr)
        mHost->MarkOutputChanged(this);
    DeliverEvent(NodeEvent{type, code});
}

void Node::DeliverEvent(const NodeEvent& event) {
    OnProcessEvent(event);
    std::vector<NodeListener*> listeners;
    {
        const auto lock = lockEngineOf(*this);
        listeners = mListeners;
    }
    for (NodeListener* listener : listeners) {
        // A listener may detach another one (or itself) while being told.
        bool attached;
        {
            const auto lock = lockEngineOf(*this);
            attached =
                std::find(mListeners.begin(), mListeners.end(), listener) != mListeners.end();
        }
        if (attached)
            listener->OnNodeEvent(this, event);
    }
}

void Node::ReleaseValue(Value* value) {
    delete value;
}

Node::Value* Evaluate(Node* node, unsigned outplug) {
    if (node == nullptr || node->GetHost() == nullptr)
        return new Node::Value();
    return new Node::Value(node->GetHost()->EvaluateOutput(node, outplug));
}
