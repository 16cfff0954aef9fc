#pragma once

#include "library/NodeCatalogue.h"
#include "library/TextureNodeFactory.h"

/// One factory class per offered node type, named after the node class plus "Factory"
/// (TexturePerlinNodeFactory, ...): it reports the type id, creates nodes of its class and
/// names that class. The hidden types have no factory, so nothing can create them.
#define TEXTURE_DECLARE_FACTORY(index, NodeClass, name, code, stem)                    \
    class NodeClass##Factory : public TextureNodeFactory {                             \
    public:                                                                            \
        NodeType GetNodeType() const override;                                         \
        /** A new node of the class, owned by the caller; null if allocation fails. */ \
        Node* CreateNode() override;                                                   \
        const char* GetClassName() const override;                                     \
    };
TEXTURE_OFFERED_NODES(TEXTURE_DECLARE_FACTORY)
#undef TEXTURE_DECLARE_FACTORY
