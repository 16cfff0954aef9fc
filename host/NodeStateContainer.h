#pragma once

#include "host/Engine.h"
#include "host/StateContainer.h"

/// Undo record of a node's presence. Made when the node is deleted: it takes the node and its
/// links out of the engine and keeps them; swapping puts them back or takes them out again.
/// While it holds the node, the node is owned here and deleted with the record.
class NodeStateContainer : public StateContainer {
public:
    NodeStateContainer(Engine* engine, Node* node);
    ~NodeStateContainer() override;
    NodeStateContainer(const NodeStateContainer&) = delete;
    NodeStateContainer& operator=(const NodeStateContainer&) = delete;

    void Swap() override;

private:
    Engine* mEngine;
    Node* mNode;
    Engine::DetachedNode mDetached;
};
