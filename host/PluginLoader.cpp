#include "host/PluginLoader.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "host/CloseMatches.h"
#include "host/ImageFileNode.h"
#include "host/LibraryInterface.h"
#include "host/Node.h"
#include "host/NodeFactory.h"
#include "host/NodeInterface.h"

namespace {

std::string ExecutableFolder() {
    std::error_code error;
    const std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string(".") : exe.parent_path().string();
}

bool ReadAt(int descriptor, void* into, std::size_t size, std::uint64_t offset) {
    return pread(descriptor, into, size, static_cast<off_t>(offset)) == static_cast<ssize_t>(size);
}

// The loader maps a library without checking that the file holds what its headers promise: a
// truncated file then faults inside the loader. Checks the headers and every loadable segment
// against the file's size and returns why the file cannot be loaded, or nothing.
std::string CheckSharedLibrary(const std::string& file) {
    const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return std::string("cannot open the file: ") + std::strerror(errno);
    struct Closer {
        int descriptor;
        ~Closer() { close(descriptor); }
    } closer{descriptor};
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode))
        return "not a regular file";
    const auto size = static_cast<std::uint64_t>(status.st_size);
    const std::string truncated = "the file is truncated (" + std::to_string(size) + " bytes)";
    ElfW(Ehdr) header{};
    if (!ReadAt(descriptor, &header, sizeof header, 0))
        return size >= SELFMAG && std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0
                   ? truncated
                   : "not a shared library";
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 || header.e_type != ET_DYN)
        return "not a shared library";
#if __SIZEOF_POINTER__ == 8
    const unsigned char nativeClass = ELFCLASS64;
#else
    const unsigned char nativeClass = ELFCLASS32;
#endif
    if (header.e_ident[EI_CLASS] != nativeClass || header.e_phentsize != sizeof(ElfW(Phdr)))
        return "a shared library for another kind of machine";
    const auto within = [size](std::uint64_t offset, std::uint64_t length) {
        return offset <= size && length <= size - offset;
    };
    if (!within(header.e_phoff, std::uint64_t{header.e_phnum} * header.e_phentsize) ||
        !within(header.e_shoff, std::uint64_t{header.e_shnum} * header.e_shentsize))
        return truncated;
    for (unsigned i = 0; i < header.e_phnum; ++i) {
        ElfW(Phdr) segment{};
        if (!ReadAt(descriptor, &segment, sizeof segment,
                    header.e_phoff + std::uint64_t{i} * header.e_phentsize))
            return truncated;
        if (segment.p_type == PT_LOAD && !within(segment.p_offset, segment.p_filesz))
            return truncated;
    }
    return {};
}

}  // namespace

PluginLoader::PluginLoader() {
    AddHostTypes();
}

PluginLoader::~PluginLoader() {
    // Interfaces and the library object were made by the plug-in: delete them while its code
    // is still mapped.
    for (NodeInterface* type : mInterfaces)
        delete type;
    if (mLibrary != nullptr) {
        mLibrary->Close();
        delete mLibrary;
    }
    if (mHandle != nullptr)
        dlclose(mHandle);
}

std::string PluginLoader::DefaultPluginPath() {
    if (const char* path = std::getenv("TEXTURE_PLUGIN"); path != nullptr && *path != '\0')
        return path;
    return ExecutableFolder() + "/libTexture.so";
}

bool PluginLoader::Load(const std::string& path, std::string* error) {
    const std::string file = path.empty() ? DefaultPluginPath() : path;
    auto fail = [&](const std::string& message) {
        if (error != nullptr)
            *error = "cannot load plug-in '" + file + "': " + message +
                     " (name the plug-in with --plugin PATH or the environment variable "
                     "TEXTURE_PLUGIN)";
        return false;
    };
    if (mHandle != nullptr)
        return fail("a plug-in is loaded already");
    if (const std::string problem = CheckSharedLibrary(file); !problem.empty())
        return fail(problem);
    void* handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        const char* reason = dlerror();
        return fail(reason != nullptr ? reason : "dlopen failed");
    }
    auto getLibrary =
        reinterpret_cast<GetLibraryInterfaceFunction>(dlsym(handle, "GetLibraryInterface"));
    auto getCount =
        reinterpret_cast<GetNumNodeInterfacesFunction>(dlsym(handle, "GetNumNodeInterfaces"));
    auto getInterface =
        reinterpret_cast<GetNodeInterfaceFunction>(dlsym(handle, "GetNodeInterface"));
    if (getLibrary == nullptr || getCount == nullptr || getInterface == nullptr) {
        dlclose(handle);
        return fail(
            "the library does not export GetLibraryInterface, GetNumNodeInterfaces and "
            "GetNodeInterface");
    }
    mHandle = handle;
    mPath = file;
    mLibrary = getLibrary();
    std::vector<NodeInterface*> pluginTypes;
    const unsigned count = getCount();
    for (unsigned i = 0; i < count; ++i)
        if (NodeInterface* type = getInterface(i))
            pluginTypes.push_back(type);
    mInterfaces.insert(mInterfaces.begin(), pluginTypes.begin(), pluginTypes.end());
    mPluginInterfaceCount = static_cast<unsigned>(pluginTypes.size());
    return true;
}

NodeInterface* PluginLoader::FindType(const std::string& name) const {
    for (NodeInterface* type : mInterfaces)
        if (type->GetTypeName() == name)
            return type;
    for (NodeInterface* type : mInterfaces)
        if (NodeFactory* factory = type->GetFactory();
            factory != nullptr && factory->GetClassName() == name)
            return type;
    return nullptr;
}

std::vector<std::string> PluginLoader::FindCloseMatches(const std::string& name) const {
    std::vector<std::string> names;
    for (NodeInterface* type : mInterfaces)
        names.emplace_back(type->GetTypeName());
    return ::FindCloseMatches(name, names);
}

std::unique_ptr<Node> PluginLoader::CreateNode(const std::string& name, std::string* error) const {
    NodeInterface* type = FindType(name);
    NodeFactory* factory = type != nullptr ? type->GetFactory() : nullptr;
    if (factory == nullptr) {
        if (error != nullptr) {
            std::vector<std::string> names;
            for (NodeInterface* type : mInterfaces)
                names.emplace_back(type->GetTypeName());
            *error = "unknown node type '" + name + "'" + CloseMatchesNote(name, names);
        }
        return nullptr;
    }
    std::unique_ptr<Node> node(factory->CreateNode());
    if (node == nullptr && error != nullptr)
        *error = "node type '" + name + "' could not create a node";
    return node;
}

void PluginLoader::AddHostTypes() {
    mInterfaces.push_back(ImageFileNode::CreateInterface());
}
