#pragma once

#include <cstdint>
#include <string>

#include "host/NodeInterface.h"

class TextureNodeFactory;

/// Base of the library's node interfaces: what every node type of the library answers alike
/// (category 7, library "Texture") and the ownership of the factory. The per-type classes
/// add the names, the type id and the icons.
class TextureNodeInterface : public NodeInterface {
public:
    /// Takes a reference on `factory`, which may be null when it could not be allocated.
    explicit TextureNodeInterface(TextureNodeFactory* factory);
    /// Releases the factory, freeing it when this was its last interface.
    ~TextureNodeInterface() override;
    TextureNodeInterface(const TextureNodeInterface&) = delete;
    TextureNodeInterface& operator=(const TextureNodeInterface&) = delete;

    NodeFactory* GetFactory() const override;
    /// The one attributes page (page 0) of the node: the gradient editor for the Texture
    /// Gradient type, the host's generic page otherwise; null for any other page, and in
    /// builds without the widget libraries.
    QWidget* CreateAttributesWidget(Node* node, QWidget* parent, int page) override;
    /// 7, the host's group for the library's node types.
    int GetCategory() const override { return 7; }
    /// "Texture".
    std::string GetLibraryName() const override { return "Texture"; }
    /// The last page this interface made for a Texture Gradient node, or null; kept for the
    /// host, not read by the library.
    QWidget* GetLastAttributesWidget() const { return mLastAttributesWidget; }

private:
    // Two words the host reserves for itself in every interface; zero from construction.
    std::uint32_t mReservedWords[2] = {0, 0};
    TextureNodeFactory* mFactory;
    // Only the Texture Gradient type ever sets it.
    QWidget* mLastAttributesWidget = nullptr;
};
