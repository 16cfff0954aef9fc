#include "apps/texture/NodesCommand.h"

#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "host/Attribute.h"
#include "host/Node.h"
#include "host/NodeFactory.h"
#include "host/NodeInterface.h"
#include "host/PluginLoader.h"
#include "host/ValueCodec.h"

using nlohmann::json;

namespace {

json DescribeAttribute(const Attribute& attribute) {
    json entry = {{"id", attribute.GetId()},
                  {"name", attribute.GetName()},
                  {"kind", attribute.GetKindName()},
                  {"default", ValueCodec::Encode(attribute, attribute.GetDefault())},
                  {"description", attribute.GetDescription()}};
    const Attribute::Kind kind = attribute.GetKind();
    if (kind == Attribute::kNumber || kind == Attribute::kPoint || kind == Attribute::kFrame) {
        entry["min"] = attribute.GetMinimum();
        entry["max"] = attribute.GetMaximum();
        entry["step"] = attribute.GetStep();
        entry["decimals"] = attribute.GetDecimals();
    }
    if (kind == Attribute::kChoice)
        entry["items"] = attribute.GetItems();
    return entry;
}

json DescribeType(NodeInterface& type, unsigned index) {
    NodeFactory* factory = type.GetFactory();
    const NodeType id = type.GetNodeType();
    json entry = {{"index", index},
                  {"type", type.GetTypeName()},
                  {"class", factory != nullptr ? factory->GetClassName() : ""},
                  {"code", id.code},
                  {"type_id", {id.maker, id.family, id.code}},
                  {"category", type.GetCategory()},
                  {"library", type.GetLibraryName()},
                  {"icon", type.GetIconPath()},
                  {"small_icon", type.GetSmallIconPath()}};
    json inputs = json::array();
    json outputs = json::array();
    json attributes = json::array();
    // Plugs and attributes are declared by a node's constructor, so a sample node tells them.
    std::unique_ptr<Node> node(factory != nullptr ? factory->CreateNode() : nullptr);
    if (node != nullptr) {
        for (const Node::RegularInput& input : node->GetRegularInputs())
            inputs.push_back(
                {{"id", input.id}, {"name", input.name}, {"plug_type", input.plugType}});
        for (const Node::Output& output : node->GetOutplugs())
            outputs.push_back(
                {{"id", output.id}, {"name", output.name}, {"plug_type", output.plugType}});
        for (const auto& attribute : node->GetAttributes())
            attributes.push_back(DescribeAttribute(*attribute));
    }
    entry["inputs"] = inputs;
    entry["outputs"] = outputs;
    entry["attributes"] = attributes;
    return entry;
}

void PrintText(const json& type) {
    std::cout << type["type"].get<std::string>() << "  (class " << type["class"].get<std::string>()
              << ", code " << type["code"] << ", library '" << type["library"].get<std::string>()
              << "')\n";
    for (const json& input : type["inputs"])
        std::cout << "  input " << input["id"] << " '" << input["name"].get<std::string>()
                  << "' (plug type " << input["plug_type"] << ")\n";
    for (const json& output : type["outputs"])
        std::cout << "  output " << output["id"] << " '" << output["name"].get<std::string>()
                  << "' (plug type " << output["plug_type"] << ")\n";
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
    }
}

}  // namespace

int RunNodesCommand(const PluginLoader& catalogue, const std::string& type, bool asJson) {
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
            list.push_back(DescribeType(*types[i], i));
    if (asJson) {
        std::cout << list.dump(2) << "\n";
        return 0;
    }
    for (const json& entry : list)
        PrintText(entry);
    return 0;
}
