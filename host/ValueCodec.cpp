#include "host/ValueCodec.h"

#include <string>
#include <vector>

#include "host/Attribute.h"
#include "host/NodeValue.h"

using nlohmann::json;

namespace {

const char* const kInterpolationNames[] = {"step", "linear", "smooth"};

[[noreturn]] void Fail(const std::string& message) {
    throw ValueCodec::Error(message);
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

}  // namespace

NodeValue ValueCodec::Decode(const Attribute& attribute, const json& value) {
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
        case Attribute::kFile:
            if (!value.is_string())
                Fail(std::string("expected a string, got ") + JsonKind(value));
            return NodeValue::Text(value.get<std::string>());
    }
    Fail("unsupported attribute kind");
}

json ValueCodec::Encode(const Attribute& attribute, const NodeValue& value) {
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
        case Attribute::kFile:
            return value.GetText();
    }
    return nullptr;
}

VertexGradient ValueCodec::DecodeGradient(const json& value) {
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

json ValueCodec::EncodeGradient(const VertexGradient& gradient) {
    json stops = json::array();
    for (const VertexGradient::Vertex& v : gradient.vertices)
        stops.push_back(json::array({v.position, json::array({v.color.red, v.color.green,
                                                              v.color.blue, v.color.opacity})}));
    const int mode = gradient.interpolation >= 0 && gradient.interpolation < 3
                         ? gradient.interpolation
                         : VertexGradient::kLinear;
    return {{"interpolation", kInterpolationNames[mode]}, {"stops", stops}};
}
