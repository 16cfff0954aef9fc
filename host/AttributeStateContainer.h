#pragma once

#include "host/NodeValue.h"
#include "host/StateContainer.h"

class Node;

/// Undo record of one attribute's value. Swapping restores the value directly (no range check:
/// it was accepted once), sends the node event 3 and marks the node for re-evaluation.
class AttributeStateContainer : public StateContainer {
public:
    /// Captures the attribute's current value.
    AttributeStateContainer(Node* node, unsigned attributeId);
    void Swap() override;

private:
    Node* mNode;
    unsigned mAttributeId;
    NodeValue mSaved;
};
