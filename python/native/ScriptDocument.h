#pragma once

#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "host/Document.h"
#include "host/Engine.h"
#include "host/RenderOptions.h"

class Image;
class Node;
class PluginLoader;
class PointSampler;

/// A graph document held by a script: an engine of its own with the document's nodes, links,
/// active and display node, edited and rendered on request.
///
/// Every edit is checked completely before anything changes, so a failed edit leaves the
/// document as it was. Failures throw std::invalid_argument whose message is the one the
/// `texture` command prints for the same fault in a document, place first ("node 'noise'
/// (Perlin Texture): attribute 'octaves': must be between 1 and 30"); load and save messages
/// start with the file, as there.
class ScriptDocument {
public:
    /// What to render: a node with an image output, the size a Render 2D node renders its
    /// rectangle at (0 x 0: its frame's size), the window of that image (empty: all of it,
    /// row 0 at the top), the worker threads (0: one per processor) and whether the image
    /// repeats (RenderOptions::tileable).
    struct RenderRequest {
        std::string node;
        int width = 0;
        int height = 0;
        RenderOptions::Window window;
        unsigned threads = 0;
        bool tileable = false;
    };

    explicit ScriptDocument(const PluginLoader& catalogue);
    ~ScriptDocument();
    ScriptDocument(const ScriptDocument&) = delete;
    ScriptDocument& operator=(const ScriptDocument&) = delete;

    void Load(const std::string& path);
    void Save(const std::string& path);

    /// Adds a node of the type (display or class name) under `id`, or under the type's first
    /// word in lower case with a number appended when `id` is empty, with the attributes
    /// (an object of document values) set. Returns the id.
    std::string AddNode(const std::string& type, const std::string& id,
                        const nlohmann::json& attributes);
    /// Sets every attribute of the object, or none when one of them is bad.
    void SetAttributes(const std::string& id, const nlohmann::json& attributes);
    /// Every attribute of the node as document values, in declaration order.
    std::vector<std::pair<std::string, nlohmann::json>> GetAttributes(const std::string& id) const;
    /// Links "NODE.OUTPLUG" to "NODE.INPLUG", replacing the link that inplug had.
    void Link(const std::string& from, const std::string& to);

    std::vector<std::string> GetNodeIds() const;
    std::string GetNodeType(const std::string& id) const;
    std::string GetDisplay() const { return mDocument.GetDisplay(); }
    void SetDisplay(const std::string& id);

    /// The size in pixels of the image `request` gives, when it is known before rendering
    /// (a Render 2D node whose frame is not linked); 0 x 0 otherwise.
    std::pair<int, int> PlannedSize(const RenderRequest& request) const;
    /// Evaluates the node for `request` and returns its image with one reference for the
    /// caller. Throws std::runtime_error naming every failed node ("node 'out' (Render 2D
    /// Texture): MESSAGE") and std::invalid_argument for a bad request. Safe to call without
    /// the interpreter lock.
    Image* Render(const RenderRequest& request);
    /// Evaluates the node with a texture output and compiles its texture for sampling.
    std::unique_ptr<PointSampler> CompileTexture(const std::string& id);

private:
    Node* Find(const std::string& id) const;
    std::string Describe(const Node* node) const;
    std::string NewId(const std::string& type) const;
    /// Decodes and checks every attribute of the object for `node`; nothing is set.
    std::vector<std::pair<unsigned, NodeValue>> Decode(const Node& node,
                                                       const nlohmann::json& attributes) const;
    /// Evaluates `node`; throws with the error of every failed node.
    void Evaluate(Node* node);

    const PluginLoader& mCatalogue;
    Engine mEngine;
    Document mDocument;
};
