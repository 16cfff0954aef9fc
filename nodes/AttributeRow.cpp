#include "nodes/AttributeRow.h"

#include <utility>

namespace texture {

AttributeDeclaration AttributeDeclaration::Frequency() const {
    AttributeDeclaration copy = *this;
    copy.hint.frequency = true;
    return copy;
}

AttributeDeclaration AttributeDeclaration::Labelled(const char* label) const {
    AttributeDeclaration copy = *this;
    copy.hint.label = label;
    return copy;
}

AttributeDeclaration AttributeDeclaration::Grouped(std::vector<std::string> names) const {
    AttributeDeclaration copy = *this;
    copy.group = std::move(names);
    return copy;
}

void AttributeDeclaration::DeclareOn(Node& node,
                                     std::vector<std::unique_ptr<Attribute>>& attributes) const {
    std::unique_ptr<Attribute> attribute;
    switch (kind) {
        case Attribute::kNumber:
            attribute = std::make_unique<Attribute>(&node, id, name, number, minimum, maximum, step,
                                                    decimals);
            break;
        case Attribute::kBool:
            attribute = std::make_unique<Attribute>(&node, id, name, number != 0.0);
            break;
        case Attribute::kChoice:
            attribute = std::make_unique<Attribute>(&node, id, name, static_cast<int>(number),
                                                    std::string(items));
            break;
        case Attribute::kColor:
            attribute = std::make_unique<Attribute>(&node, id, name, color);
            break;
        case Attribute::kPoint:
            attribute = std::make_unique<Attribute>(&node, id, name, point, minimum, maximum, step,
                                                    decimals);
            break;
        case Attribute::kFrame:
            attribute = std::make_unique<Attribute>(&node, id, name, frame, minimum, maximum, step,
                                                    decimals);
            break;
        case Attribute::kMesh:
            attribute = std::make_unique<Attribute>(&node, id, name, MeshReference{});
            break;
        case Attribute::kText:
            attribute = std::make_unique<Attribute>(&node, id, name, std::string());
            break;
        case Attribute::kFile:
            attribute = std::make_unique<Attribute>(&node, id, name, FilePath{});
            break;
    }
    attribute->SetDescription(description);
    attribute->SetDisplayHint(hint);
    attributes.push_back(std::move(attribute));
    if (group.empty())
        return;
    if (kind == Attribute::kColor)
        node.AddCombinedRgboAttribute(id, group.at(0), group.at(1));
    else if (kind == Attribute::kPoint)
        node.AddCombinedPointAttribute(id, group.at(0), group.at(1));
    else if (kind == Attribute::kFrame)
        node.AddCombinedFramePositionSizeAttribute(id, group.at(0), group.at(1), group.at(2),
                                                   group.at(3));
}

namespace {

AttributeDeclaration ranged(unsigned id, const char* name, Attribute::Kind kind, double minimum,
                            double maximum, double step, int decimals, const char* description) {
    AttributeDeclaration row;
    row.id = id;
    row.name = name;
    row.kind = kind;
    row.minimum = minimum;
    row.maximum = maximum;
    row.step = step;
    row.decimals = decimals;
    row.description = description;
    return row;
}

AttributeDeclaration plain(unsigned id, const char* name, Attribute::Kind kind,
                           const char* description) {
    return ranged(id, name, kind, 0.0, 0.0, 0.0, 0, description);
}

}  // namespace

AttributeDeclaration number(unsigned id, const char* name, double value, double minimum,
                            double maximum, double step, int decimals, const char* description) {
    AttributeDeclaration row =
        ranged(id, name, Attribute::kNumber, minimum, maximum, step, decimals, description);
    row.number = value;
    return row;
}

AttributeDeclaration boolean(unsigned id, const char* name, bool value, const char* description) {
    AttributeDeclaration row = plain(id, name, Attribute::kBool, description);
    row.number = value ? 1.0 : 0.0;
    return row;
}

AttributeDeclaration choice(unsigned id, const char* name, int index, const char* items,
                            const char* description) {
    AttributeDeclaration row = plain(id, name, Attribute::kChoice, description);
    row.number = index;
    row.items = items;
    return row;
}

AttributeDeclaration colour(unsigned id, const char* name, const Rgbo& value,
                            const char* description) {
    AttributeDeclaration row = plain(id, name, Attribute::kColor, description);
    row.color = value;
    return row;
}

AttributeDeclaration colour(unsigned id, const char* name, const Rgbo& value,
                            const char* opacityName, const char* description) {
    return colour(id, name, value, description).Grouped({name, opacityName});
}

AttributeDeclaration point(unsigned id, const char* name, const Point& value, double minimum,
                           double maximum, double step, int decimals, const char* description) {
    AttributeDeclaration row =
        ranged(id, name, Attribute::kPoint, minimum, maximum, step, decimals, description);
    row.point = value;
    return row;
}

AttributeDeclaration frame(unsigned id, const char* name, const Frame& value, double minimum,
                           double maximum, double step, int decimals, const char* description) {
    AttributeDeclaration row =
        ranged(id, name, Attribute::kFrame, minimum, maximum, step, decimals, description);
    row.frame = value;
    return row;
}

AttributeDeclaration mesh(unsigned id, const char* name, const char* description) {
    return plain(id, name, Attribute::kMesh, description);
}

}  // namespace texture
