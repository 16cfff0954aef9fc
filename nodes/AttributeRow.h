#pragma once

// One row per attribute: everything a node type says about an attribute, read by the node's
// constructor (the host's attribute and its display group), by the attributes page and
// `texture nodes` (through the attribute) and by evaluation (the binding).

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "host/Attribute.h"
#include "host/Node.h"
#include "nodes/NodeInputs.h"

namespace texture {

/// The declaration half of a row: what the attribute is and how it is shown.
struct AttributeDeclaration {
    unsigned id = 0;
    const char* name = "";
    Attribute::Kind kind = Attribute::kNumber;
    /// The default of a number or bool (0 or 1), or a choice's default item index.
    double number = 0.0;
    Rgbo color{};
    Point point{};
    Frame frame{};
    double minimum = 0.0;
    double maximum = 0.0;
    double step = 0.0;
    int decimals = 0;
    /// A choice's comma-separated items.
    const char* items = "";
    /// The display group's component names: a colour's own and its opacity's, a point's x and
    /// y, a frame's position x, y and size x, y. Empty for no group.
    std::vector<std::string> group;
    Attribute::DisplayHint hint;
    const char* description = "";

    /// The row's spinner drags logarithmically.
    AttributeDeclaration Frequency() const;
    /// The row shows `label` instead of the attribute's name.
    AttributeDeclaration Labelled(const char* label) const;
    /// The row is shown as one group with these component names.
    AttributeDeclaration Grouped(std::vector<std::string> names) const;

    /// Adds the attribute to `node` and its display group, if any.
    void DeclareOn(Node& node, std::vector<std::unique_ptr<Attribute>>& attributes) const;
};

AttributeDeclaration number(unsigned id, const char* name, double value, double minimum,
                            double maximum, double step, int decimals, const char* description);
AttributeDeclaration boolean(unsigned id, const char* name, bool value, const char* description);
AttributeDeclaration choice(unsigned id, const char* name, int index, const char* items,
                            const char* description);
/// A colour shown with its opacity ("color_a" goes with "opacity_a" and so on).
AttributeDeclaration colour(unsigned id, const char* name, const Rgbo& value,
                            const char* opacityName, const char* description);
/// A colour without a display group.
AttributeDeclaration colour(unsigned id, const char* name, const Rgbo& value,
                            const char* description);
AttributeDeclaration point(unsigned id, const char* name, const Point& value, double minimum,
                           double maximum, double step, int decimals, const char* description);
AttributeDeclaration frame(unsigned id, const char* name, const Frame& value, double minimum,
                           double maximum, double step, int decimals, const char* description);
AttributeDeclaration mesh(unsigned id, const char* name, const char* description);

inline constexpr Rgbo kOpaqueBlack{0.0, 0.0, 0.0, 1.0};
inline constexpr Rgbo kOpaqueWhite{1.0, 1.0, 1.0, 1.0};

/// How a row's value reaches `Settings` during an evaluation.
template <class Settings>
using Binding = void (*)(Settings& settings, const Node& node, Node::Value** inputs,
                         unsigned attributeId);

/// A declaration and its binding. A row without a binding is read by its node, because its
/// value goes to the module together with other rows' values.
template <class Settings>
struct AttributeRow {
    AttributeDeclaration declaration;
    Binding<Settings> bind = nullptr;
};

// Bindings: the setter receives the value read the way its kind is always read.

/// A number through a 32-bit float, as every module parameter is.
template <auto Setter, class Settings>
void asFloat(Settings& settings, const Node& node, Node::Value** inputs, unsigned id) {
    (settings.*Setter)(readNumberAsFloat(node, inputs, id));
}
/// A whole number (seeds, counts) rounded half down.
template <auto Setter, class Settings>
void asWhole(Settings& settings, const Node& node, Node::Value** inputs, unsigned id) {
    (settings.*Setter)(readSeed(node, inputs, id));
}
template <auto Setter, class Settings>
void asBool(Settings& settings, const Node& node, Node::Value** inputs, unsigned id) {
    (settings.*Setter)(readBool(node, inputs, id));
}
/// A choice as the index of its item.
template <auto Setter, class Settings>
void asChoice(Settings& settings, const Node& node, Node::Value** inputs, unsigned id) {
    (settings.*Setter)(readChoice(node, inputs, id));
}
/// A colour with its opacity, each channel through a 32-bit float.
template <auto Setter, class Settings>
void asColor(Settings& settings, const Node& node, Node::Value** inputs, unsigned id) {
    (settings.*Setter)(readColor(node, inputs, id));
}

/// Declares every row's attribute on `node`, in row order.
template <class Settings>
void declareRows(std::span<const AttributeRow<Settings>> rows, Node& node,
                 std::vector<std::unique_ptr<Attribute>>& attributes) {
    for (const AttributeRow<Settings>& row : rows)
        row.declaration.DeclareOn(node, attributes);
}

/// Passes every bound row's value on the node's inputs to `settings`, in row order.
template <class Settings>
void applyRows(std::span<const AttributeRow<Settings>> rows, const Node& node, Node::Value** inputs,
               Settings& settings) {
    for (const AttributeRow<Settings>& row : rows)
        if (row.bind != nullptr)
            row.bind(settings, node, inputs, row.declaration.id);
}

}  // namespace texture
