#include "library/TextureNodeInterfaces.h"

#include "nodes/Render3DSelfTest.h"

#define TEXTURE_DECLARE_NODE_CLASS(index, NodeClass, name, code, stem) class NodeClass;
TEXTURE_ALL_NODES(TEXTURE_DECLARE_NODE_CLASS)
#undef TEXTURE_DECLARE_NODE_CLASS

namespace {

/// The built-in self-check of a node type: none (false) unless specialised.
template <class NodeClass>
bool runSelfTest() {
    return false;
}

template <>
bool runSelfTest<ImageRender3DTextureNode>() {
    return runRender3DSelfTest();
}

}  // namespace

#define TEXTURE_DEFINE_INTERFACE(index, NodeClass, name, code, stem) \
    std::string NodeClass##Interface::GetTypeName() const {          \
        return name;                                                 \
    }                                                                \
    NodeType NodeClass##Interface::GetNodeType() const {             \
        return {10, 304, code};                                      \
    }                                                                \
    bool NodeClass##Interface::RunSelfTest() {                       \
        return runSelfTest<NodeClass>();                             \
    }                                                                \
    std::string NodeClass##Interface::GetIconPath() const {          \
        return TEXTURE_ICON_FOLDER #stem ".png";                     \
    }                                                                \
    std::string NodeClass##Interface::GetSmallIconPath() const {     \
        return TEXTURE_ICON_FOLDER #stem "12.png";                   \
    }
TEXTURE_ALL_NODES(TEXTURE_DEFINE_INTERFACE)
#undef TEXTURE_DEFINE_INTERFACE
