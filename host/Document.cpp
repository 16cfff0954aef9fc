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
#include "host/Engine.h"
#include "host/GradientNode.h"
#include "host/GraphDepth.h"
#include "host/ImageFileNode.h"
#include "host/JsonReader.h"
#include "host/Node.h"
#include "host/NodeValue.h"
#include "host/PluginLoader.h"

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

const char* JsonKind(const json& value) {
    if (value.is_number())
        return "a number";
    if (value.is_boolean())
        return "true/false";
    if (value.is_string())
        return "a string";
    if (value.is_array())
        return "an array";
    if (value.is_object())
        return "an object";
    return "null";
}

std::vector<double> Numbers(const json& value, std::size_t count, const std::string& what) {
    if (!value.is_array() || value.size() != count)
        Fail("expected " + what + ", got " + JsonKind(value));
    std::vector<double> numbers;
    for (const json& item : value) {
        if (!item.is_number())
            Fail("expected " + what + ", got an array holding " + JsonKind(item));
        numbers.push_back(item.get<double>());
    }
    return numbers;
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

NodeValue DecodeValue(const Attribute& attribute, const json& value) {
    switch (attribute.GetKind()) {
        case Attribute::kNumber:
            if (!value.is_number())
                Fail(std::string("expected a number, got ") + JsonKind(value));
            return NodeValue::Number(value.get<double>());
        case Attribute::kBool:
            if (!value.is_boolean())
                Fail(std::string("expected true or false, got ") + JsonKind(value));
            return NodeValue::Bool(value.get<bool>());
        case Attribute::kChoice: {
            std::string items;
            for (const std::string& item : attribute.GetItems())
                items += (items.empty() ? "" : ", ") + item;
            if (value.is_string()) {
                if (attribute.GetChoiceIndex(value.get<std::string>()) < 0)
                    Fail("unknown choice '" + value.get<std::string>() + "' (items: " + items +
                         ")");
                return attribute.Normalize(NodeValue::Choice(-1, value.get<std::string>()));
            }
            if (value.is_number_integer()) {
                const long long index = value.get<long long>();
                if (index < 0 || index >= static_cast<long long>(attribute.GetItems().size()))
                    Fail("choice index " + std::to_string(index) + " must be between 0 and " +
                         std::to_string(attribute.GetItems().size() - 1) + " (items: " + items +
                         ")");
                return attribute.Normalize(NodeValue::Choice(static_cast<int>(index), ""));
            }
            Fail(std::string("expected an item's text or index, got ") + JsonKind(value));
        }
        case Attribute::kColor: {
            const auto c = Numbers(value, 4, "a colour [r, g, b, opacity]");
            return NodeValue::Color({c[0], c[1], c[2], c[3]});
        }
        case Attribute::kPoint: {
            const auto p = Numbers(value, 2, "a point [x, y]");
            return NodeValue::FromPoint({p[0], p[1]});
        }
        case Attribute::kFrame: {
            const auto f = Numbers(value, 4, "a frame [position_x, position_y, size_x, size_y]");
            return NodeValue::FromFrame({f[0], f[1], f[2], f[3]});
        }
        case Attribute::kMesh: {
            if (!value.is_array() || value.size() != 3 || !value[0].is_number_integer() ||
                !value[1].is_number_integer() ||
                !(value[2].is_boolean() || value[2].is_number_integer()))
                Fail("expected a mesh [model, submesh, flag] of integers");
            const bool flag =
                value[2].is_boolean() ? value[2].get<bool>() : value[2].get<int>() != 0;
            return NodeValue::Mesh({value[0].get<int>(), value[1].get<int>(), flag});
        }
        case Attribute::kText:
            if (!value.is_string())
                Fail(std::string("expected a string, got ") + JsonKind(value));
            return NodeValue::Text(value.get<std::string>());
    }
    Fail("unsupported attribute kind");
}

json EncodeJson(const Attribute& attribute, const NodeValue& value) {
    switch (attribute.GetKind()) {
        case Attribute::kNumber:
            return value.GetNumber();
        case Attribute::kBool:
            return value.GetBool();
        case Attribute::kChoice:
            return value.GetText();
        case Attribute::kColor: {
            const Rgbo& c = value.GetColor();
            return json::array({c.red, c.green, c.blue, c.opacity});
        }
        case Attribute::kPoint:
            return json::array({value.GetPoint().x, value.GetPoint().y});
        case Attribute::kFrame: {
            const Frame& f = value.GetFrame();
            return json::array({f.positionX, f.positionY, f.sizeX, f.sizeY});
        }
        case Attribute::kMesh: {
            const MeshReference& m = value.GetMesh();
            return json::array({m.model, m.submesh, m.flag ? 1 : 0});
        }
        case Attribute::kText:
            return value.GetText();
    }
    return nullptr;
}

const char* kInterpolationNames[] = {"step", "linear", "smooth"};

VertexGradient DecodeGradient(const json& value) {
    if (!value.is_object())
        Fail("expected {\"interpolation\": ..., \"stops\": [...]}");
    VertexGradient gradient;
    if (value.contains("interpolation")) {
        const json& mode = value["interpolation"];
        int found = -1;
        for (int i = 0; i < 3; ++i)
            if (mode.is_string() && mode.get<std::string>() == kInterpolationNames[i])
                found = i;
        if (found < 0)
            Fail("interpolation must be \"linear\", \"step\" or \"smooth\"");
        gradient.interpolation = found;
    }
    if (!value.contains("stops") || !value["stops"].is_array())
        Fail("expected \"stops\": [[position, [r, g, b, opacity]], ...]");
    for (const json& stop : value["stops"]) {
        if (!stop.is_array() || stop.size() != 2 || !stop[0].is_number())
            Fail("each stop must be [position, [r, g, b, opacity]]");
        const auto c = Numbers(stop[1], 4, "a stop colour [r, g, b, opacity]");
        gradient.vertices.push_back({stop[0].get<double>(), {c[0], c[1], c[2], c[3]}});
    }
    return gradient;
}

json EncodeGradient(const VertexGradient& gradient) {
    json stops = json::array();
    for (const VertexGradient::Vertex& v : gradient.vertices)
        stops.push_back(json::array({v.position, json::array({v.color.red, v.color.green,
                                                              v.color.blue, v.color.opacity})}));
    const int mode = gradient.interpolation >= 0 && gradient.interpolation < 3
                         ? gradient.interpolation
                         : VertexGradient::kLinear;
    return {{"interpolation", kInterpolationNames[mode]}, {"stops", stops}};
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
            if (auto* gradientNode = dynamic_cast<GradientNode*>(node);
                gradientNode != nullptr && name == "gradient") {
                try {
                    GradientNode::SetGradient(node, DecodeGradient(value));
                } catch (const DocumentError& e) {
                    Fail(where + ": " + e.what());
                }
                continue;
            }
            const std::string text = value.is_string() ? value.get<std::string>() : value.dump();
            if (!node->HandleStoredAttribute(name, text))
                Fail(place + ": unknown attribute '" + name + "'");
            continue;
        }
        NodeValue decoded;
        try {
            decoded = DecodeValue(*attribute, value);
        } catch (const DocumentError& e) {
            Fail(where + " (" + attribute->GetKindName() + "): " + e.what());
        }
        if (dynamic_cast<ImageFileNode*>(node) != nullptr && name == "file" &&
            !decoded.GetText().empty()) {
            const std::string path = Absolute(decoded.GetText(), folder);
            if (!fs::is_regular_file(path))
                Fail(where + ": image file '" + path + "' does not exist");
            decoded = NodeValue::Text(path);
        }
        if (const std::string problem = attribute->Validate(decoded); !problem.empty())
            Fail(where + ": " + problem);
        if (!engine.SetAttributeValue(node, attribute->GetId(), decoded, &error))
            Fail(where + ": " + error);
    }
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
            Fail("unknown node id '" + fromId + "'");
        Node* to = engine.FindNode(toId);
        if (to == nullptr)
            Fail("unknown node id '" + toId + "'");
        const int outplug = from->FindOutplug(outName);
        if (outplug < 0)
            Fail(Describe(engine, from) + " has no output '" + outName + "'");
        const int inplug = to->FindInplug(inName);
        if (inplug < 0)
            Fail(Describe(engine, to) + " has no input or attribute '" + inName + "'");
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

bool Document::Load(const std::string& path, Engine& engine, const PluginLoader& catalogue,
                    std::string* error) {
    engine.Clear();
    mActive.clear();
    mDisplay.clear();
    try {
        const fs::path folder = fs::absolute(fs::path(path)).parent_path();
        const json document = JsonReader::Parse(JsonReader::ReadFile(path));
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
                Fail(std::string("\"") + field + "\": unknown node id " + id.dump());
            (std::string(field) == "active" ? mActive : mDisplay) = id.get<std::string>();
        }
    } catch (const std::exception& e) {
        engine.Clear();
        mActive.clear();
        mDisplay.clear();
        if (error != nullptr)
            *error = path + ": " + e.what();
        return false;
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
                if (dynamic_cast<ImageFileNode*>(node) != nullptr && attribute->GetName() == "file")
                    value = NodeValue::Text(Relative(value.GetText(), folder));
                attributes[attribute->GetName()] = EncodeJson(*attribute, value);
            }
            if (const auto* gradientNode = dynamic_cast<const GradientNode*>(node))
                attributes["gradient"] = EncodeGradient(gradientNode->GetGradient());
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

std::string Document::EncodeValue(const Attribute& attribute, const NodeValue& value) {
    return EncodeJson(attribute, value).dump();
}
