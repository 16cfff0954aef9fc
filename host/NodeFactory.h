#pragma once

#include "host/HostTypes.h"

class Node;

/// Creates the nodes of one node type.
class NodeFactory {
public:
    virtual NodeType GetNodeType() const = 0;
    /// A new node of the factory's class, owned by the caller; null if allocation fails.
    virtual Node* CreateNode() = 0;
    /// The node class name, for example "TextureAdditionNode".
    virtual const char* GetClassName() const = 0;
    virtual ~NodeFactory() = default;
};
