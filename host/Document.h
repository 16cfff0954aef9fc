#pragma once

#include <string>

class Engine;
class PluginLoader;

/// A graph document (format "texture-graph", version 1): loads one into an engine and saves
/// an engine's graph back in the same format.
///
/// Relative paths in a document (scene models, image files) are resolved against the
/// document's folder and held as absolute paths; saving writes paths inside the document's
/// folder relative to it again.
class Document {
public:
    /// Clears `engine` and fills it from the file, creating nodes through `catalogue`. Nothing
    /// of a bad document stays in the engine: on failure the engine is cleared again and
    /// `error` holds one line naming the file and the place, for example
    /// "a.texture.json: node 'noise': attribute 'octaves': must be between 0 and 8".
    /// The undo history is empty afterwards.
    bool Load(const std::string& path, Engine& engine, const PluginLoader& catalogue,
              std::string* error);
    /// Loads a document given as text (read from a pipe, say) as Load does; `name` stands for
    /// the file in messages and relative paths are resolved against `folder`.
    bool LoadText(const std::string& text, const std::string& name, const std::string& folder,
                  Engine& engine, const PluginLoader& catalogue, std::string* error);

    /// Writes the engine's graph to `path` atomically: a temporary file in the same folder
    /// renamed over the target, so a failed save leaves an existing file untouched.
    bool Save(const std::string& path, const Engine& engine, std::string* error) const;

    /// The ids of the host's active and display nodes (empty when unset).
    const std::string& GetActive() const { return mActive; }
    const std::string& GetDisplay() const { return mDisplay; }
    void SetActive(const std::string& id) { mActive = id; }
    void SetDisplay(const std::string& id) { mDisplay = id; }

private:
    /// Leaves the engine and this document empty after a failed load and reports `why`,
    /// prefixed by `where` (the file or the document's name); always false.
    bool FailLoad(Engine& engine, const std::string& where, const char* why, std::string* error);

    std::string mActive;
    std::string mDisplay;
};
