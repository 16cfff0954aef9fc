#include "host/Document.h"

#include <unistd.h>
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <stdexcept>

#include "host/AtomicFile.h"
#include "host/Attribute.h"
#include "host/CloseMatches.h"
#include "host/Engine.h"
#include "host/GradientNode.h"
#include "host/GraphDepth.h"
#include "host/JsonReader.h"
#include "host/Node.h"
#include "host/NodeValue.h"
#include "host/PluginLoader.h"
#include "host/ValueCodec.h"

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

/// A document fault: the place ("node 'noise': attribute 'octaves'") and what is wrong.
struct DocumentError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

[[noreturn]] void Fail(const std::string& message) {
    throw DocumentError(message);
}

std::string Absolute(const std::string& path, const fs::path& folder) {
    const fs::path p(path);
    return (p.is_absolute() ? p : folder / p).lexically_normal().string();
}

std::string Relative(const std::string& path, const fs::path& folder) {
    const fs::path relative = fs::path(path).lexically_relative(folder);
    if (relative.empty() || *relative.begin() == "..")
        return path;
    return relative.string();
}

/// Splits "NODE.PLUG" into its two halves.
std::pair<std::string, std::string> SplitPlug(const json& value, const std::string& field) {
    if (!value.is_string())
        Fail("\"" + field + "\" must be a string \"NODE.PLUG\"");
    const std::string text = value.get<std::string>();
    const std::size_t dot = text.find('.');
    if (dot == std::string::npos || dot == 0 || dot + 1 == text.size())
        Fail("\"" + field + "\" must look like \"NODE.PLUG\", got '" + text + "'");
    return {text.substr(0, dot), text.substr(dot + 1)};
}

std::string Describe(Engine& engine, Node* node) {
    return "node '" + engine.GetNodeId(node) + "' (" + node->GetTypeName() + ")";
}

/// Ids name nodes in links and on the command line, so they stay plain: letters, digits, '_', '-'.
bool IsValidId(const std::string& id) {
    return !id.empty() && std::all_of(id.begin(), id.end(), [](unsigned char c) {
        return std::isalnum(c) != 0 || c == '_' || c == '-';
    });
}

void LoadNode(const json& entry, std::size_t index, Engine& engine, const PluginLoader& catalogue,
              const fs::path& folder) {
    std::string place = "nodes[" + std::to_string(index) + "]";
    if (!entry.is_object())
        Fail(place + ": expected an object");
    if (!entry.contains("id") || !entry["id"].is_string())
        Fail(place + ": \"id\" (a string) is missing");
    const std::string id = entry["id"].get<std::string>();
    if (!IsValidId(id))
        Fail(place + ": id '" + id + "' may hold only letters, digits, '_' and '-'");
    place = "node '" + id + "'";
    if (engine.FindNode(id) != nullptr)
        Fail(place + ": duplicate id");
    if (!entry.contains("type") || !entry["type"].is_string())
        Fail(place + ": \"type\" (a string) is missing");
    std::string error;
    std::unique_ptr<Node> created = catalogue.CreateNode(entry["type"].get<std::string>(), &error);
    if (created == nullptr)
        Fail(place + ": " + error);
    Node* node = engine.AddNode(std::move(created), id, &error);
    if (node == nullptr)
        Fail(place + ": " + error);
    place = Describe(engine, node);
    for (const auto& [key, value] : entry.items())
        if (key != "id" && key != "type" && key != "enabled" && key != "attributes")
            Fail(place + ": unknown field \"" + key + "\"");
    if (entry.contains("enabled")) {
        if (!entry["enabled"].is_boolean())
            Fail(place + ": \"enabled\" must be true or false");
        node->SetEvaluationEnabled(entry["enabled"].get<bool>());
    }
    if (!entry.contains("attributes"))
        return;
    const json& attributes = entry["attributes"];
    if (!attributes.is_object())
        Fail(place + ": \"attributes\" must be an object");
    for (const auto& [name, value] : attributes.items()) {
        const std::string where = place + ": attribute '" + name + "'";
        Attribute* attribute = node->FindAttribute(name);
        if (attribute == nullptr) {
            if (name == "gradient" && node->GetGradientNode() != nullptr) {
                try {
                    GradientNode::SetGradient(node, ValueCodec::DecodeGradient(value));
                } catch (const ValueCodec::Error& e) {
                    Fail(where + ": " + e.what());
                }
                continue;
            }
            const std::string text = value.is_string() ? value.get<std::string>() : value.dump();
            if (!node->HandleStoredAttribute(name, text)) {
                std::vector<std::string> names;
                for (const auto& each : node->GetAttributes())
                    names.push_back(each->GetName());
                Fail(place + ": unknown attribute '" + name + "'" + CloseMatchesNote(name, names));
            }
            continue;
        }
        NodeValue decoded;
        try {
            decoded = ValueCodec::Decode(*attribute, value);
        } catch (const ValueCodec::Error& e) {
            Fail(where + " (" + attribute->GetKindName() + "): " + e.what());
        }
        if (attribute->GetKind() == Attribute::kFile && !decoded.GetText().empty()) {
            const std::string path = Absolute(decoded.GetText(), folder);
            if (!fs::is_regular_file(path))
                Fail(where + ": file '" + path + "' does not exist");
            decoded = NodeValue::Text(path);
        }
        if (const std::string problem = attribute->Validate(decoded); !problem.empty())
            Fail(where + ": " + problem);
        if (!engine.SetAttributeValue(node, attribute->GetId(), decoded, &error))
            Fail(where + ": " + error);
    }
}

// " (close matches: ...)" among the node ids of `engine`.
std::string CloseNodeIds(const std::string& id, const Engine& engine) {
    std::vector<std::string> ids;
    for (const Node* node : engine.GetNodes())
        ids.push_back(engine.GetNodeId(node));
    return CloseMatchesNote(id, ids);
}

template <class Plugs>
std::string ClosePlugNames(const std::string& name, const Plugs& plugs) {
    std::vector<std::string> names;
    for (const auto& plug : plugs)
        names.push_back(plug.name);
    return CloseMatchesNote(name, names);
}

void LoadLink(const json& entry, std::size_t index, Engine& engine) {
    const std::string place = "links[" + std::to_string(index) + "]";
    if (!entry.is_object() || !entry.contains("from") || !entry.contains("to"))
        Fail(place + ": expected {\"from\": \"NODE.OUTPLUG\", \"to\": \"NODE.INPLUG\"}");
    try {
        const auto [fromId, outName] = SplitPlug(entry["from"], "from");
        const auto [toId, inName] = SplitPlug(entry["to"], "to");
        Node* from = engine.FindNode(fromId);
        if (from == nullptr)
            Fail("unknown node id '" + fromId + "'" + CloseNodeIds(fromId, engine));
        Node* to = engine.FindNode(toId);
        if (to == nullptr)
            Fail("unknown node id '" + toId + "'" + CloseNodeIds(toId, engine));
        const int outplug = from->FindOutplug(outName);
        if (outplug < 0)
            Fail(Describe(engine, from) + " has no output '" + outName + "'" +
                 ClosePlugNames(outName, from->GetOutplugs()));
        const int inplug = to->FindInplug(inName);
        if (inplug < 0)
            Fail(Describe(engine, to) + " has no input or attribute '" + inName + "'" +
                 ClosePlugNames(inName, to->GetInplugs()));
        unsigned outType = 0;
        for (const Node::Output& output : from->GetOutplugs())
            if (static_cast<int>(output.id) == outplug)
                outType = output.plugType;
        const unsigned inType = to->GetInplugs()[static_cast<unsigned>(inplug)].plugType;
        if (outType != inType)
            Fail("plug type mismatch: '" + fromId + "." + outName + "' carries " +
                 NodeValue::GetTypeName(outType) + " but '" + toId + "." + inName + "' takes " +
                 NodeValue::GetTypeName(inType));
        if (engine.FindLinkTo(to, static_cast<unsigned>(inplug)) != nullptr)
            Fail("'" + toId + "." + inName + "' is linked already (one link per input)");
        std::string error;
        if (!engine.Connect(from, static_cast<unsigned>(outplug), to, static_cast<unsigned>(inplug),
                            &error))
            Fail("'" + fromId + "." + outName + "' to '" + toId + "." + inName + "': " + error);
    } catch (const DocumentError& e) {
        Fail(place + ": " + e.what());
    }
}

}  // namespace

bool Document::FailLoad(Engine& engine, const std::string& where, const char* why,
                        std::string* error) {
    engine.Clear();
    mActive.clear();
    mDisplay.clear();
    if (error != nullptr)
        *error = where + ": " + why;
    return false;
}

bool Document::Load(const std::string& path, Engine& engine, const PluginLoader& catalogue,
                    std::string* error) {
    std::string text;
    try {
        text = JsonReader::ReadFile(path);
    } catch (const std::exception& e) {
        return FailLoad(engine, path, e.what(), error);
    }
    return LoadText(text, path, fs::absolute(fs::path(path)).parent_path().string(), engine,
                    catalogue, error);
}

bool Document::LoadText(const std::string& text, const std::string& name,
                        const std::string& folderName, Engine& engine,
                        const PluginLoader& catalogue, std::string* error) {
    engine.Clear();
    mActive.clear();
    mDisplay.clear();
    try {
        const fs::path folder(folderName);
        const json document = JsonReader::Parse(text);
        if (!document.is_object())
            Fail("the document must be a JSON object");
        if (document.value("format", std::string()) != "texture-graph")
            Fail("\"format\" must be \"texture-graph\"");
        if (!document.contains("version") || document["version"] != 1)
            Fail("\"version\" must be 1");
        if (document.contains("scene")) {
            const json& scene = document["scene"];
            std::vector<std::string> models;
            if (!scene.is_object())
                Fail("\"scene\" must be an object");
            if (scene.contains("models")) {
                if (!scene["models"].is_array())
                    Fail("scene.models must be an array of file names");
                for (std::size_t i = 0; i < scene["models"].size(); ++i) {
                    const json& model = scene["models"][i];
                    const std::string place = "scene.models[" + std::to_string(i) + "]";
                    if (!model.is_string())
                        Fail(place + ": expected a file name");
                    const std::string file = Absolute(model.get<std::string>(), folder);
                    if (!fs::is_regular_file(file))
                        Fail(place + ": model file '" + file + "' does not exist");
                    models.push_back(file);
                }
            }
            engine.SetSceneModels(models);
        }
        const json nodes = document.value("nodes", json::array());
        if (!nodes.is_array())
            Fail("\"nodes\" must be an array");
        for (std::size_t i = 0; i < nodes.size(); ++i)
            LoadNode(nodes[i], i, engine, catalogue, folder);
        const json links = document.value("links", json::array());
        if (!links.is_array())
            Fail("\"links\" must be an array");
        for (std::size_t i = 0; i < links.size(); ++i)
            LoadLink(links[i], i, engine);
        if (const std::string tooDeep = GraphDepth::Check(engine); !tooDeep.empty())
            Fail(tooDeep);
        for (const char* field : {"active", "display"}) {
            if (!document.contains(field))
                continue;
            const json& id = document[field];
            if (!id.is_string() || engine.FindNode(id.get<std::string>()) == nullptr)
                Fail(std::string("\"") + field + "\": unknown node id " + id.dump() +
                     (id.is_string() ? CloseNodeIds(id.get<std::string>(), engine) : ""));
            (std::string(field) == "active" ? mActive : mDisplay) = id.get<std::string>();
        }
    } catch (const std::exception& e) {
        return FailLoad(engine, name, e.what(), error);
    }
    engine.ClearUndoHistory();
    return true;
}

bool Document::Save(const std::string& path, const Engine& engine, std::string* error) const {
    const fs::path folder = fs::absolute(fs::path(path)).parent_path();
    try {
        json document = {{"format", "texture-graph"}, {"version", 1}};
        json models = json::array();
        for (const std::string& model : engine.GetSceneModels())
            models.push_back(Relative(model, folder));
        document["scene"] = {{"models", models}};
        json nodes = json::array();
        for (Node* node : engine.GetNodes()) {
            json entry = {{"id", engine.GetNodeId(node)}, {"type", node->GetTypeName()}};
            if (!node->IsEvaluationEnabled())
                entry["enabled"] = false;
            json attributes = json::object();
            for (const auto& attribute : node->GetAttributes()) {
                NodeValue value = attribute->GetValue();
                if (value == attribute->GetDefault())
                    continue;
                if (attribute->GetKind() == Attribute::kFile)
                    value = NodeValue::Text(Relative(value.GetText(), folder));
                attributes[attribute->GetName()] = ValueCodec::Encode(*attribute, value);
            }
            if (const GradientNode* gradientNode = node->GetGradientNode())
                attributes["gradient"] = ValueCodec::EncodeGradient(gradientNode->GetGradient());
            if (!attributes.empty())
                entry["attributes"] = attributes;
            nodes.push_back(entry);
        }
        document["nodes"] = nodes;
        json links = json::array();
        for (const Engine::Link& link : engine.GetLinks()) {
            std::string outName;
            for (const Node::Output& output : link.from->GetOutplugs())
                if (output.id == link.outplug)
                    outName = output.name;
            links.push_back({{"from", engine.GetNodeId(link.from) + "." + outName},
                             {"to", engine.GetNodeId(link.to) + "." +
                                        link.to->GetInplugs()[link.inplug].name}});
        }
        document["links"] = links;
        if (!mActive.empty())
            document["active"] = mActive;
        if (!mDisplay.empty())
            document["display"] = mDisplay;
        // Serialise before touching the disk: a value that cannot be written (text that is
        // not UTF-8) must not leave a half-written temporary file behind.
        const std::string text = document.dump(2) + "\n";

        AtomicFile::Write(path, text);
    } catch (const FileError& e) {
        if (error != nullptr)
            *error = e.what();
        return false;
    } catch (const std::exception& e) {
        if (error != nullptr)
            *error = path + ": cannot save: " + e.what();
        return false;
    }
    return true;
}
