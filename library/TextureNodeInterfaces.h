#pragma once

#include <string>

#include "library/NodeCatalogue.h"
#include "library/TextureNodeInterface.h"

/// One interface class per node type, offered or hidden, named after the node class plus
/// "Interface" (TexturePerlinNodeInterface, ...). Each reports its type's display name, type
/// id and icon paths; everything else comes from TextureNodeInterface. Only the Render 3D
/// type has a built-in self-check; the others answer "none" (false).
#define TEXTURE_DECLARE_INTERFACE(index, NodeClass, name, code, stem) \
    class NodeClass##Interface : public TextureNodeInterface {        \
    public:                                                           \
        using TextureNodeInterface::TextureNodeInterface;             \
        std::string GetTypeName() const override;                     \
        NodeType GetNodeType() const override;                        \
        bool RunSelfTest() override;                                  \
        std::string GetIconPath() const override;                     \
        std::string GetSmallIconPath() const override;                \
    };
TEXTURE_ALL_NODES(TEXTURE_DECLARE_INTERFACE)
#undef TEXTURE_DECLARE_INTERFACE
