#pragma once

#include <string>

#include "host/HostTypes.h"

class Node;
class NodeFactory;
class QWidget;

/// Describes one node type of a plug-in to the host: names, type id, icons, library group,
/// and the factory that creates its nodes. The host owns interfaces returned by a plug-in
/// and deletes them through the virtual destructor.
///
/// The operations are declared in the host's slot order. The hooks are reserved for the
/// host; plug-ins leave them alone.
class NodeInterface {
public:
    virtual ~NodeInterface() = default;
    virtual NodeFactory* GetFactory() const = 0;
    /// The display name, for example "Perlin Texture".
    virtual std::string GetTypeName() const = 0;
    virtual NodeType GetNodeType() const = 0;
    /// The catalogue group the host files the type under; 0 unless overridden.
    virtual int GetCategory() const { return 0; }
    /// Runs the type's built-in self-check; true when it passed. False when there is none.
    virtual bool RunSelfTest() { return false; }
    virtual void ReservedHook7() {}
    virtual void ReservedHook8() {}
    /// The widget that edits `node`'s attributes on page `page`, parented to `parent`, or null.
    virtual QWidget* CreateAttributesWidget(Node* node, QWidget* parent, int page) {
        (void)node, (void)parent, (void)page;
        return nullptr;
    }
    virtual void ReservedHook10() {}
    virtual void ReservedHook11() {}
    virtual std::string GetLibraryName() const { return {}; }
    virtual int ReservedValue13() const { return 0; }
    /// Resource path of the large icon; empty when none.
    virtual std::string GetIconPath() const { return {}; }
    /// Resource path of the 12-pixel icon; empty when none.
    virtual std::string GetSmallIconPath() const { return {}; }
    virtual std::string GetModeName() const { return "as_is"; }
    virtual void ReservedHook17() {}
    virtual void ReservedHook18() {}
    virtual void ReservedHook19() {}
    virtual void ReservedHook20() {}
    virtual void ReservedHook21() {}
    virtual void ReservedHook22() {}
    virtual void ReservedHook23() {}
    virtual void ReservedHook24() {}
};
