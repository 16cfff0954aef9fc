#include "library/TextureNodeFactories.h"

#include <new>

#include "library/NodeClasses.h"

namespace {

template <class NodeClass>
Node* createNode() {
    // A node's constructor allocates its attribute and plug lists too, so a failure may
    // surface there rather than in the node's own allocation.
    try {
        return new NodeClass();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

}  // namespace

#define TEXTURE_DEFINE_FACTORY(index, NodeClass, name, code, stem) \
    NodeType NodeClass##Factory::GetNodeType() const {             \
        return {10, 304, code};                                    \
    }                                                              \
    Node* NodeClass##Factory::CreateNode() {                       \
        return createNode<NodeClass>();                            \
    }                                                              \
    const char* NodeClass##Factory::GetClassName() const {         \
        return #NodeClass;                                         \
    }
TEXTURE_OFFERED_NODES(TEXTURE_DEFINE_FACTORY)
#undef TEXTURE_DEFINE_FACTORY
