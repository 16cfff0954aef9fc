#include "library/TextureExports.h"

#include <new>

#include "library/TextureNodeFactories.h"
#include "library/TextureNodeInterfaces.h"

#if TEXTURE_HAS_LIBRARY_INTERFACE
#include "library/TextureLibraryInterface.h"
#else
namespace {
// Builds without the Qt widget tools (no preview dialog to open) still give the host a library
// object: its name, and no menu entries.
class TextureLibraryInterface : public LibraryInterface {
public:
    std::string GetLibraryName() const override { return "Texture"; }
    std::string GetDisplayName() const override { return "Texture"; }
};
}  // namespace
#endif

namespace {

template <class Interface, class Factory>
NodeInterface* newInterface() {
    // The factory is made first so that the interface takes its reference at construction;
    // without a factory the interface is still worth returning (it describes the type).
    Factory* factory = new (std::nothrow) Factory();
    NodeInterface* created = new (std::nothrow) Interface(factory);
    if (created == nullptr)
        delete factory;
    return created;
}

}  // namespace

extern "C" {

LibraryInterface* GetLibraryInterface() {
    return new TextureLibraryInterface();
}

unsigned GetNumNodeInterfaces() {
    return kTextureOfferedNodeCount;
}

NodeInterface* GetNodeInterface(unsigned index) {
    switch (index) {
#define TEXTURE_INTERFACE_CASE(index, NodeClass, name, code, stem) \
    case index:                                                    \
        return newInterface<NodeClass##Interface, NodeClass##Factory>();
        TEXTURE_OFFERED_NODES(TEXTURE_INTERFACE_CASE)
#undef TEXTURE_INTERFACE_CASE
        default:
            return nullptr;
    }
}
}
