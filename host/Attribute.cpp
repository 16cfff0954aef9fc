#include "host/Attribute.h"

#include <charconv>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace {

unsigned valueTypeOf(Attribute::Kind kind) {
    switch (kind) {
        case Attribute::kNumber:
            return NodeValue::kNumber;
        case Attribute::kBool:
            return NodeValue::kBool;
        case Attribute::kChoice:
            return NodeValue::kChoice;
        case Attribute::kColor:
            return NodeValue::kColor;
        case Attribute::kPoint:
            return NodeValue::kPoint;
        case Attribute::kFrame:
            return NodeValue::kFrame;
        case Attribute::kMesh:
            return NodeValue::kMesh;
        case Attribute::kText:
        case Attribute::kFile:
            return NodeValue::kText;
    }
    return NodeValue::kNone;
}

std::string trimmed(const std::string& text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string::npos)
        return {};
    const auto last = text.find_last_not_of(" \t");
    return text.substr(first, last - first + 1);
}

std::vector<std::string> splitItems(const std::string& list) {
    std::vector<std::string> items;
    std::size_t start = 0;
    while (true) {
        const std::size_t comma = list.find(',', start);
        items.push_back(trimmed(list.substr(start, comma - start)));
        if (comma == std::string::npos)
            break;
        start = comma + 1;
    }
    return items;
}

// Shortest text that reads back as the same double, so a message shows "0.1", not "0.100000".
std::string formatNumber(double value) {
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

bool within(double value, double minimum, double maximum) {
    return value >= minimum && value <= maximum;  // false for NaN
}

std::string itemList(const std::vector<std::string>& items) {
    std::string text;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i > 0)
            text += ", ";
        text += "\"" + items[i] + "\"";
    }
    return text;
}

}  // namespace

Attribute::Attribute(Node* node, unsigned id, const std::string& name, Kind kind,
                     NodeValue defaultValue)
    : mNode(node), mId(id), mName(name), mKind(kind), mDefault(std::move(defaultValue)) {
    mValue = mDefault;
}

Attribute::Attribute(Node* node, unsigned id, const std::string& name, double defaultValue,
                     double minimum, double maximum, double step, int decimals)
    : Attribute(node, id, name, kNumber, NodeValue::Number(defaultValue)) {
    mMinimum = minimum;
    mMaximum = maximum;
    mStep = step;
    mDecimals = decimals;
}

Attribute::Attribute(Node* node, unsigned id, const std::string& name, bool defaultValue)
    : Attribute(node, id, name, kBool, NodeValue::Bool(defaultValue)) {}

Attribute::Attribute(Node* node, unsigned id, const std::string& name, int defaultIndex,
                     const std::string& items)
    : Attribute(node, id, name, kChoice, NodeValue()) {
    mItems = splitItems(items);
    if (defaultIndex < 0 || static_cast<std::size_t>(defaultIndex) >= mItems.size())
        throw std::logic_error("choice attribute '" + name + "': default index " +
                               std::to_string(defaultIndex) + " is not in the item list \"" +
                               items + "\"");
    mDefault = NodeValue::Choice(defaultIndex, mItems[static_cast<std::size_t>(defaultIndex)]);
    mValue = mDefault;
}

Attribute::Attribute(Node* node, unsigned id, const std::string& name, const Rgbo& defaultValue)
    : Attribute(node, id, name, kColor, NodeValue::Color(defaultValue)) {}

Attribute::Attribute(Node* node, unsigned id, const std::string& name, const Point& defaultValue,
                     double minimum, double maximum, double step, int decimals)
    : Attribute(node, id, name, kPoint, NodeValue::FromPoint(defaultValue)) {
    mMinimum = minimum;
    mMaximum = maximum;
    mStep = step;
    mDecimals = decimals;
}

Attribute::Attribute(Node* node, unsigned id, const std::string& name, const Frame& defaultValue,
                     double minimum, double maximum, double step, int decimals)
    : Attribute(node, id, name, kFrame, NodeValue::FromFrame(defaultValue)) {
    mMinimum = minimum;
    mMaximum = maximum;
    mStep = step;
    mDecimals = decimals;
}

Attribute::Attribute(Node* node, unsigned id, const std::string& name,
                     const MeshReference& defaultValue)
    : Attribute(node, id, name, kMesh, NodeValue::Mesh(defaultValue)) {}

Attribute::Attribute(Node* node, unsigned id, const std::string& name,
                     const std::string& defaultText)
    : Attribute(node, id, name, kText, NodeValue::Text(defaultText)) {}

Attribute::Attribute(Node* node, unsigned id, const std::string& name, const char* defaultText)
    : Attribute(node, id, name, std::string(defaultText != nullptr ? defaultText : "")) {}

Attribute::Attribute(Node* node, unsigned id, const std::string& name, const FilePath& defaultFile)
    : Attribute(node, id, name, kFile, NodeValue::Text(defaultFile.path)) {}

const char* Attribute::GetKindName() const {
    return NodeValue::GetTypeName(valueTypeOf(mKind));
}

unsigned Attribute::GetValueType() const {
    return valueTypeOf(mKind);
}

NodeValue Attribute::Normalize(const NodeValue& value) const {
    if (mKind != kChoice || value.GetType() != NodeValue::kChoice)
        return value;
    if (!value.GetText().empty()) {
        const int index = GetChoiceIndex(value.GetText());
        if (index >= 0)
            return NodeValue::Choice(index, value.GetText());
        return value;
    }
    const int index = value.GetChoiceIndex();
    if (index >= 0 && static_cast<std::size_t>(index) < mItems.size())
        return NodeValue::Choice(index, mItems[static_cast<std::size_t>(index)]);
    return value;
}

void Attribute::SetValue(const NodeValue& value) {
    if (value.GetType() != valueTypeOf(mKind))
        throw std::invalid_argument("attribute '" + mName + "' takes a " + GetKindName() +
                                    ", not a " + NodeValue::GetTypeName(value.GetType()));
    mValue = Normalize(value);
}

std::string Attribute::Validate(const NodeValue& value) const {
    if (value.GetType() != valueTypeOf(mKind))
        return std::string("must be a ") + GetKindName() + ", not a " +
               NodeValue::GetTypeName(value.GetType());
    const std::string range =
        "must be between " + formatNumber(mMinimum) + " and " + formatNumber(mMaximum);
    switch (mKind) {
        case kNumber:
            if (!within(value.GetNumber(), mMinimum, mMaximum))
                return range;
            return {};
        case kPoint: {
            const Point& p = value.GetPoint();
            if (!within(p.x, mMinimum, mMaximum) || !within(p.y, mMinimum, mMaximum))
                return range + " in both components";
            return {};
        }
        case kFrame: {
            const Frame& f = value.GetFrame();
            for (const double component : {f.positionX, f.positionY, f.sizeX, f.sizeY})
                if (!within(component, mMinimum, mMaximum))
                    return range + " in all four components";
            return {};
        }
        case kChoice: {
            const std::string& text = value.GetText();
            const int index = value.GetChoiceIndex();
            const bool known = text.empty()
                                   ? index >= 0 && static_cast<std::size_t>(index) < mItems.size()
                                   : GetChoiceIndex(text) >= 0;
            if (!known)
                return "must be one of " + itemList(mItems);
            return {};
        }
        case kMesh: {
            const MeshReference& m = value.GetMesh();
            if (m.model < -1 || m.submesh < -1)
                return "must name a model index and a sub-mesh index of -1 or more";
            return {};
        }
        case kBool:
        case kColor:
        case kText:
        case kFile:
            return {};
    }
    return {};
}

bool Attribute::SetChoice(const std::string& item) {
    const int index = GetChoiceIndex(item);
    if (index < 0)
        return false;
    mValue = NodeValue::Choice(index, item);
    return true;
}

int Attribute::GetChoiceIndex(const std::string& item) const {
    for (std::size_t i = 0; i < mItems.size(); ++i)
        if (mItems[i] == item)
            return static_cast<int>(i);
    return -1;
}
