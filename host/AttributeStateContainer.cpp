#include "host/AttributeStateContainer.h"

#include "host/Engine.h"
#include "host/Node.h"

AttributeStateContainer::AttributeStateContainer(Node* node, unsigned attributeId)
    : mNode(node), mAttributeId(attributeId), mSaved(node->GetAttribute(attributeId)->GetValue()) {}

void AttributeStateContainer::Swap() {
    Attribute* attribute = mNode->GetAttribute(mAttributeId);
    Engine* engine = mNode->GetEngine();
    if (engine == nullptr) {
        NodeValue live = attribute->GetValue();
        attribute->SetValue(mSaved);
        mSaved = live;
        mNode->ProcessEvent(NodeEvent::kInputsChanged, 0);
        return;
    }
    // Undo and Redo swap under the engine's lock; the events go out when they return.
    NodeValue live = attribute->GetValue();
    attribute->SetValue(mSaved);
    mSaved = live;
    engine->SendNodeEvent(mNode, NodeEvent::kInputsChanged, 0);
    engine->MarkDirty(mNode);
}
