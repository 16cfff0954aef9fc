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

#include "host/ImageFileNode.h"
#include "host/LibraryInterface.h"
#include "host/Node.h"
#include "host/NodeFactory.h"
#include "host/NodeInterface.h"

namespace {

std::string Lower(const std::string& text) {
    std::string result = text;
    for (char& c : result)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return result;
}

// Case-insensitive edit distance: the measure behind "did you mean" suggestions.
std::size_t EditDistance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t above = row[j];
            const std::size_t cost = a[i - 1] == b[j - 1] ? 0 : 1;
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + cost});
            diagonal = above;
        }
    }
    return row[b.size()];
}

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
    const std::string wanted = Lower(name);
    std::vector<std::pair<std::size_t, std::string>> scored;
    for (NodeInterface* type : mInterfaces) {
        const std::string display = type->GetTypeName();
        const std::string candidate = Lower(display);
        std::size_t distance = EditDistance(wanted, candidate);
        const bool contains = !wanted.empty() && (candidate.find(wanted) != std::string::npos ||
                                                  wanted.find(candidate) != std::string::npos);
        if (contains)
            distance = std::min<std::size_t>(distance, 1);
        if (distance <= std::max<std::size_t>(2, wanted.size() / 3))
            scored.emplace_back(distance, display);
    }
    std::stable_sort(scored.begin(), scored.end(),
                     [](const auto& l, const auto& r) { return l.first < r.first; });
    std::vector<std::string> result;
    for (std::size_t i = 0; i < scored.size() && i < 3; ++i)
        result.push_back(scored[i].second);
    return result;
}

std::unique_ptr<Node> PluginLoader::CreateNode(const std::string& name, std::string* error) const {
    NodeInterface* type = FindType(name);
    NodeFactory* factory = type != nullptr ? type->GetFactory() : nullptr;
    if (factory == nullptr) {
        if (error != nullptr) {
            *error = "unknown node type '" + name + "'";
            const std::vector<std::string> matches = FindCloseMatches(name);
            for (std::size_t i = 0; i < matches.size(); ++i)
                *error += (i == 0 ? " (close matches: '" : ", '") + matches[i] + "'";
            if (!matches.empty())
                *error += ")";
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
