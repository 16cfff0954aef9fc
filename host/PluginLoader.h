#pragma once

#include <memory>
#include <string>
#include <vector>

class LibraryInterface;
class Node;
class NodeInterface;

/// Loads the plug-in shared library through its three exports and keeps the catalogue of node
/// types it offers, followed by the host's own node types ("Image File").
///
/// The loader owns the interfaces and unloads the library when destroyed: clear every engine
/// that holds nodes of the plug-in first.
class PluginLoader {
public:
    PluginLoader();
    ~PluginLoader();
    PluginLoader(const PluginLoader&) = delete;
    PluginLoader& operator=(const PluginLoader&) = delete;

    /// The plug-in to load when none is named: the environment variable TEXTURE_PLUGIN when set,
    /// otherwise libTexture.so in the folder of the running executable.
    static std::string DefaultPluginPath();

    /// Loads the plug-in at `path` (DefaultPluginPath() when empty) and adds its node types to
    /// the catalogue. False with a one-line `error` when the file is not a complete shared
    /// library (checked before it is mapped), cannot be opened or lacks
    /// an export; the message names --plugin and TEXTURE_PLUGIN.
    bool Load(const std::string& path, std::string* error);
    /// The file loaded, empty before a successful Load.
    const std::string& GetPluginPath() const { return mPath; }
    /// The plug-in's library object, or null.
    LibraryInterface* GetLibrary() const { return mLibrary; }

    /// Every node type, plug-in types first (in the plug-in's order), then host types.
    const std::vector<NodeInterface*>& GetNodeInterfaces() const { return mInterfaces; }
    /// The number of node types that came from the plug-in (the first ones).
    unsigned GetPluginInterfaceCount() const { return mPluginInterfaceCount; }
    /// The type with this display name or class name, or null.
    NodeInterface* FindType(const std::string& name) const;
    /// Up to three display names that resemble `name` (for "did you mean" messages).
    std::vector<std::string> FindCloseMatches(const std::string& name) const;
    /// A new node of the named type; null with `error` ("unknown node type 'X' (close matches:
    /// ...)") when there is no such type.
    std::unique_ptr<Node> CreateNode(const std::string& name, std::string* error) const;

private:
    void AddHostTypes();

    void* mHandle = nullptr;
    std::string mPath;
    LibraryInterface* mLibrary = nullptr;
    std::vector<NodeInterface*> mInterfaces;
    unsigned mPluginInterfaceCount = 0;
};
