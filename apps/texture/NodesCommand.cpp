#include "apps/texture/NodesCommand.h"

#include <iostream>
#include <nlohmann/json.hpp>

#include "apps/common/NodeListing.h"
#include "host/Node.h"
#include "host/NodeInterface.h"
#include "host/PluginLoader.h"

using nlohmann::json;

namespace {

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
            list.push_back(DescribeNodeType(*types[i], i));
    if (asJson) {
        std::cout << list.dump(2) << "\n";
        return 0;
    }
    for (const json& entry : list)
        PrintText(entry);
    return 0;
}
