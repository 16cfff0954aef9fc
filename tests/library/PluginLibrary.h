#pragma once

#include <dlfcn.h>

#include <string>

#include "host/LibraryInterface.h"

/// The built plug-in, opened once for the whole test program exactly as a host opens it, with
/// its three exports looked up by name (null when missing). Never closed: nodes and icons it
/// made may outlive a test.
struct PluginLibrary {
    static std::string Path() { return std::string(TEXTURE_BINARY_DIR) + "/bin/libTexture.so"; }

    static const PluginLibrary& Get() {
        static const PluginLibrary library;
        return library;
    }

    template <class Function>
    Function Find(const char* name) const {
        return handle != nullptr ? reinterpret_cast<Function>(dlsym(handle, name)) : nullptr;
    }

    void* const handle = dlopen(Path().c_str(), RTLD_NOW | RTLD_LOCAL);
    const GetLibraryInterfaceFunction library =
        Find<GetLibraryInterfaceFunction>("GetLibraryInterface");
    const GetNumNodeInterfacesFunction count =
        Find<GetNumNodeInterfacesFunction>("GetNumNodeInterfaces");
    const GetNodeInterfaceFunction nodeInterface =
        Find<GetNodeInterfaceFunction>("GetNodeInterface");
};
