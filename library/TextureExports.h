#pragma once

#include "host/LibraryInterface.h"

class NodeInterface;

/// The plug-in's only exported functions, with C linkage so that the host finds them by
/// name. Every object they return is new and owned by the caller.
extern "C" {

/// A new library interface: the library's name and its menu entries.
__attribute__((visibility("default"))) LibraryInterface* GetLibraryInterface();

/// The number of node types offered: 26.
__attribute__((visibility("default"))) unsigned GetNumNodeInterfaces();

/// A new interface, with a new factory of its own, for the type at `index` (0 to 25); null
/// for any other index or if the interface cannot be allocated. An interface whose factory
/// could not be allocated has a null factory.
__attribute__((visibility("default"))) NodeInterface* GetNodeInterface(unsigned index);
}
