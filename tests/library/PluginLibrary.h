#pragma once

#include <dlfcn.h>

#include <string>

#include "host/LibraryInterface.h"

/// The built plug-in, opened once for the whole test program exactly as a host opens it, with
/// its three exports looked up by name. Never closed: nodes and icons it made may outlive a test.
class PluginLibrary {
public:
    static PluginLibrary& Get() {
        static PluginLibrary library;
        return library;
    }

    static std::string Path() { return std::string(TEXTURE_BINARY_DIR) + "/bin/libTexture.so"; }

    bool IsLoaded() const {
        return mLibrary != nullptr && mCount != nullptr && mInterface != nullptr;
    }
    const std::string& GetError() const { return mError; }

    /// The handle dlopen returned, for looking up further symbols.
    void* handle() const { return mHandle; }
    GetLibraryInterfaceFunction library() const { return mLibrary; }
    GetNumNodeInterfacesFunction count() const { return mCount; }
    GetNodeInterfaceFunction nodeInterface() const { return mInterface; }

private:
    PluginLibrary() {
        mHandle = dlopen(Path().c_str(), RTLD_NOW | RTLD_LOCAL);
        if (mHandle == nullptr) {
            const char* reason = dlerror();
            mError = reason != nullptr ? reason : "dlopen failed";
            return;
        }
        mLibrary =
            reinterpret_cast<GetLibraryInterfaceFunction>(dlsym(mHandle, "GetLibraryInterface"));
        mCount =
            reinterpret_cast<GetNumNodeInterfacesFunction>(dlsym(mHandle, "GetNumNodeInterfaces"));
        mInterface = reinterpret_cast<GetNodeInterfaceFunction>(dlsym(mHandle, "GetNodeInterface"));
        if (!IsLoaded())
            mError = "an export is missing from " + Path();
    }

    void* mHandle = nullptr;
    GetLibraryInterfaceFunction mLibrary = nullptr;
    GetNumNodeInterfacesFunction mCount = nullptr;
    GetNodeInterfaceFunction mInterface = nullptr;
    std::string mError;
};
