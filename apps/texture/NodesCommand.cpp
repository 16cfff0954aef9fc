#include "apps/texture/NodesCommand.h"

#include <cstdio>
#include <iostream>
#include <nlohmann/json.hpp>

#include "apps/common/NodeListing.h"
#include "host/Node.h"
#include "host/NodeInterface.h"
#include "host/PluginLoader.h"

using nlohmann::json;

namespace {

std::string HintText(const json& hint) {
    std::string text;
    if (const std::string label = hint["label"].get<std::string>(); !label.empty())
        text = "shown as '" + label + "'";
    if (hint["frequency"].get<bool>()) {
        if (!text.empty())
            text += "; ";
        text += "a frequency: dragged logarithmically";
    }
    return text;
}

void PrintText(const json& type) {
    std::cout << type["type"].get<std::string>() << "  (class " << type["class"].get<std::string>()
              << ", code " << type["code"] << ", library '" << type["library"].get<std::string>()
              << "')\n";
    for (const json& input : type["inputs"])
        std::cout << "  input " << input["id"] << " '" << input["name"].get<std::string>() << "' ("
                  << input["carries"].get<std::string>() << ")\n";
    for (const json& output : type["outputs"])
        std::cout << "  output " << output["id"] << " '" << output["name"].get<std::string>()
                  << "' (" << output["carries"].get<std::string>() << ")\n";
    for (const json& attribute : type["attributes"]) {
        std::cout << "  attribute " << attribute["id"] << " '"
                  << attribute["name"].get<std::string>() << "' "
                  << attribute["kind"].get<std::string>() << " = " << attribute["default"].dump();
        if (attribute.contains("min"))
            std::cout << "  [" << attribute["min"] << " ... " << attribute["max"] << ", step "
                      << attribute["step"] << "]";
        if (attribute.contains("items"))
            std::cout << "  items " << attribute["items"].dump();
        std::cout << "\n";
        const std::string description = attribute["description"].get<std::string>();
        if (!description.empty())
            std::cout << "      " << description << "\n";
        if (attribute.contains("hint"))
            std::cout << "      hint: " << HintText(attribute["hint"]) << "\n";
    }
    if (type.contains("gradient"))
        std::cout << "  gradient = " << type["gradient"]["default"].dump() << "\n      "
                  << type["gradient"]["description"].get<std::string>() << "\n";
}

// The document syntax of values, once for every node type.
constexpr const char* kValueSyntax = R"(# Node reference

Every node type of the plug-in, as `texture nodes --markdown` lists it: the plugs that link it,
its attributes with their ranges and what each does. A test keeps this page equal to the
command's output; regenerate it with `texture nodes --markdown > docs/nodes.md`.

## Values in documents

An attribute is set in a node's `"attributes"` object of a graph document, or on the command line
with `texture render --set NODE.ATTR=VALUE` in the same syntax:

| kind | syntax | example |
|---|---|---|
| number | a number within the attribute's range | `"octaves": 5` |
| bool | `true` or `false` | `"seamless": true` |
| choice | the item's text (its index from 0 is read too) | `"kind": "Ridged"` |
| colour | `[r, g, b, opacity]`, each 0 to 1 | `"color_a": [0.1, 0.2, 0.5, 1]` |
| point | `[x, y]` | `"range": [2, 2]` |
| frame | `[position_x, position_y, size_x, size_y]` in pixels | `"frame": [0, 0, 512, 512]` |
| mesh | `[model, submesh, flag]`; model -1 is none, submesh -1 all | `"mesh": [0, -1, 0]` |
| text, file | a string; files relative to the document's folder | `"file": "images/rock.png"` |
| gradient | `{"interpolation": "linear", "stops": [[position, [r, g, b, opacity]], ...]}` | `"gradient": {"interpolation": "smooth", "stops": [[0, [0, 0, 0, 1]], [1, [1, 1, 1, 1]]]}` |

Render nodes share a vocabulary. The **frame** is the image's place and size in pixels. A
Render 2D node samples the texture-space rectangle that starts at **start_x**, **start_y** (the
image's left and top edges) and spans **range** `[width, height]`, on the plane z = **start_z**;
a larger range zooms out, another start_z gives a related variation. **seamless** blends the
edges so that the image tiles. Interpolation `step` holds each stop's colour up to the next,
`linear` blends evenly and `smooth` eases in and out.
)";

std::string Cell(std::string text) {
    for (std::size_t at = 0; (at = text.find('|', at)) != std::string::npos; at += 2)
        text.replace(at, 1, "\\|");
    return text;
}

// Numbers as the editor shows them: 0.1 rather than the float widened to double.
std::string Number(const json& value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.7g", value.get<double>());
    return text;
}

std::string Plugs(const json& plugs) {
    std::string list;
    for (const json& plug : plugs) {
        if (!list.empty())
            list += ", ";
        list.append("`").append(plug["name"].get<std::string>());
        list.append("` (").append(plug["carries"].get<std::string>()).append(")");
    }
    return list.empty() ? "none" : list;
}

void PrintMarkdown(const json& list) {
    std::cout << kValueSyntax;
    for (const json& type : list) {
        std::cout << "\n## " << type["type"].get<std::string>() << "\n\n"
                  << "Class `" << type["class"].get<std::string>()
                  << "`. Inputs: " << Plugs(type["inputs"])
                  << ". Outputs: " << Plugs(type["outputs"]) << ".\n";
        if (!type["attributes"].empty() || type.contains("gradient"))
            std::cout << "\n| attribute | kind | default | range | what it does |\n"
                         "|---|---|---|---|---|\n";
        for (const json& attribute : type["attributes"]) {
            std::string range;
            if (attribute.contains("min"))
                range = Number(attribute["min"]) + " to " + Number(attribute["max"]) + ", step " +
                        Number(attribute["step"]);
            if (attribute.contains("items"))
                for (const json& item : attribute["items"])
                    range += (range.empty() ? "" : ", ") + item.get<std::string>();
            std::string description = attribute["description"].get<std::string>();
            if (attribute.contains("hint"))
                description += " (" + HintText(attribute["hint"]) + ")";
            std::cout << "| `" << attribute["name"].get<std::string>() << "` | "
                      << attribute["kind"].get<std::string>() << " | `"
                      << Cell(attribute["default"].dump()) << "` | " << Cell(range) << " | "
                      << Cell(description) << " |\n";
        }
        if (type.contains("gradient"))
            std::cout << "| `gradient` | gradient | `" << Cell(type["gradient"]["default"].dump())
                      << "` | | " << Cell(type["gradient"]["description"].get<std::string>())
                      << " |\n";
    }
}

}  // namespace

int RunNodesCommand(const PluginLoader& catalogue, const std::string& type, NodesFormat format) {
    const auto& types = catalogue.GetNodeInterfaces();
    NodeInterface* only = nullptr;
    if (!type.empty()) {
        only = catalogue.FindType(type);
        if (only == nullptr) {
            std::string error;
            catalogue.CreateNode(type, &error);
            std::cerr << "error: " << error << "\n";
            return 2;
        }
    }
    json list = json::array();
    for (unsigned i = 0; i < types.size(); ++i)
        if (only == nullptr || types[i] == only)
            list.push_back(DescribeNodeType(*types[i], i));
    if (format == NodesFormat::kJson) {
        std::cout << list.dump(2) << "\n";
        return 0;
    }
    if (format == NodesFormat::kMarkdown) {
        PrintMarkdown(list);
        return 0;
    }
    for (const json& entry : list)
        PrintText(entry);
    return 0;
}
