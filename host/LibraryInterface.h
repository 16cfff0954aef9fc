#pragma once

#include <string>

class QWidget;

/// The library-wide object a plug-in gives the host (export GetLibraryInterface): its name
/// and the menu entries it adds. The host owns it.
class LibraryInterface {
public:
    virtual std::string GetLibraryName() const = 0;
    virtual std::string GetDisplayName() const { return {}; }
    /// Adds the library's actions to the host menu `menu`.
    virtual void AddMenuActions(QWidget* menu) { (void)menu; }
    /// Removes them again (called before the menu is torn down).
    virtual void RemoveMenuActions(QWidget* menu) { (void)menu; }
    /// Closes whatever windows the library opened; called before the library is unloaded.
    virtual void Close() {}
    virtual ~LibraryInterface() = default;
};

/// The three exports every plug-in provides, with C linkage.
extern "C" {
using GetLibraryInterfaceFunction = LibraryInterface* (*)();
using GetNumNodeInterfacesFunction = unsigned (*)();
using GetNodeInterfaceFunction = class NodeInterface* (*)(unsigned index);
}
