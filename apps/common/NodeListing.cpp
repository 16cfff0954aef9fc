#include "apps/common/NodeListing.h"

#include <memory>

#include "host/Attribute.h"
#include "host/GradientNode.h"
#include "host/Node.h"
#include "host/NodeFactory.h"
#include "host/NodeInterface.h"
#include "host/NodeValue.h"
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
    const Attribute::DisplayHint& hint = attribute.GetDisplayHint();
    if (!hint.label.empty() || hint.frequency)
        entry["hint"] = {{"label", hint.label}, {"frequency", hint.frequency}};
    return entry;
}

}  // namespace

json DescribeNodeType(NodeInterface& type, unsigned index) {
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
            inputs.push_back({{"id", input.id},
                              {"name", input.name},
                              {"plug_type", input.plugType},
                              {"carries", NodeValue::GetTypeName(input.plugType)}});
        for (const Node::Output& output : node->GetOutplugs())
            outputs.push_back({{"id", output.id},
                               {"name", output.name},
                               {"plug_type", output.plugType},
                               {"carries", NodeValue::GetTypeName(output.plugType)}});
        for (const auto& attribute : node->GetAttributes())
            attributes.push_back(DescribeAttribute(*attribute));
        if (const auto* gradient = dynamic_cast<const GradientNode*>(node.get()))
            entry["gradient"] = {
                {"default", ValueCodec::EncodeGradient(gradient->GetGradient())},
                {"description",
                 "The colour ramp the node maps its input through: stops of position 0...1 and "
                 "colour, interpolated step, linear or smooth."}};
    }
    entry["inputs"] = inputs;
    entry["outputs"] = outputs;
    entry["attributes"] = attributes;
    return entry;
}
