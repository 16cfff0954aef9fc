#pragma once

#include <string>
#include <vector>

#include "host/HostTypes.h"
#include "host/NodeValue.h"

class Node;

/// The default of a file attribute: a path, empty for none.
struct FilePath {
    std::string path;
};

/// One editable parameter of a node. Every attribute is also an inplug of its node.
///
/// The constructor chosen gives the kind; numbers, points and frames carry a default, a
/// minimum, a maximum, a step and a number of decimals, in that order. The decimals are
/// display precision only: values are stored as given.
class Attribute {
public:
    /// kFile is text naming a file: absolute once a document is loaded, written relative to
    /// the document's folder when it lies inside it.
    enum Kind { kNumber, kBool, kChoice, kColor, kPoint, kFrame, kMesh, kText, kFile };

    /// How an attributes page presents the attribute's row.
    struct DisplayHint {
        /// Shown as the row's label instead of the attribute's name when not empty.
        std::string label;
        /// The attribute is a frequency: its spinner drags logarithmically.
        bool frequency = false;
    };

    Attribute(Node* node, unsigned id, const std::string& name, double defaultValue, double minimum,
              double maximum, double step, int decimals);
    Attribute(Node* node, unsigned id, const std::string& name, bool defaultValue);
    /// A choice: the default item's index and the comma-separated item list.
    Attribute(Node* node, unsigned id, const std::string& name, int defaultIndex,
              const std::string& items);
    Attribute(Node* node, unsigned id, const std::string& name, const Rgbo& defaultValue);
    Attribute(Node* node, unsigned id, const std::string& name, const Point& defaultValue,
              double minimum, double maximum, double step, int decimals);
    Attribute(Node* node, unsigned id, const std::string& name, const Frame& defaultValue,
              double minimum, double maximum, double step, int decimals);
    Attribute(Node* node, unsigned id, const std::string& name, const MeshReference& defaultValue);
    Attribute(Node* node, unsigned id, const std::string& name, const std::string& defaultText);
    /// Text from a literal (without this overload a literal would pick the bool constructor).
    Attribute(Node* node, unsigned id, const std::string& name, const char* defaultText);
    Attribute(Node* node, unsigned id, const std::string& name, const FilePath& defaultFile);

    Node* GetNode() const { return mNode; }
    unsigned GetId() const { return mId; }
    const std::string& GetName() const { return mName; }
    Kind GetKind() const { return mKind; }
    /// "number", "bool", "choice", "colour", "point", "frame", "mesh" or "text" (a file too).
    const char* GetKindName() const;

    double GetMinimum() const { return mMinimum; }
    double GetMaximum() const { return mMaximum; }
    double GetStep() const { return mStep; }
    int GetDecimals() const { return mDecimals; }
    const std::vector<std::string>& GetItems() const { return mItems; }

    /// One plain sentence telling a user what the attribute does (empty when undescribed).
    const std::string& GetDescription() const { return mDescription; }
    void SetDescription(const std::string& description) { mDescription = description; }
    const DisplayHint& GetDisplayHint() const { return mHint; }
    void SetDisplayHint(const DisplayHint& hint) { mHint = hint; }

    /// The NodeValue type code of this attribute's values (kNumber for a number, ...).
    unsigned GetValueType() const;

    const NodeValue& GetDefault() const { return mDefault; }
    const NodeValue& GetValue() const { return mValue; }
    /// Stores a value of this attribute's kind as given (no range check: see Validate); throws
    /// std::invalid_argument for a value of another kind. Nodes in an engine are edited with
    /// Engine::SetAttributeValue instead, which also checks, records undo and re-evaluates.
    void SetValue(const NodeValue& value);
    /// `value` as SetValue stores it: a choice given only by its text gets its index, one given
    /// only by its index (empty text) gets its text. Other values are returned unchanged.
    NodeValue Normalize(const NodeValue& value) const;
    /// Empty when `value` has this attribute's kind and lies within its range; otherwise a
    /// sentence saying what is allowed, for example "must be between 0 and 8".
    std::string Validate(const NodeValue& value) const;

    /// Selects the choice item with this text; false when the list has no such item.
    bool SetChoice(const std::string& item);
    /// The index of `item` in the choice list, -1 when it is not there.
    int GetChoiceIndex(const std::string& item) const;
    /// The index of the current choice.
    int GetChoiceIndex() const { return mValue.GetChoiceIndex(); }

private:
    Attribute(Node* node, unsigned id, const std::string& name, Kind kind, NodeValue defaultValue);

    Node* mNode;
    unsigned mId;
    std::string mName;
    Kind mKind;
    double mMinimum = 0.0;
    double mMaximum = 0.0;
    double mStep = 0.0;
    int mDecimals = 0;
    std::vector<std::string> mItems;
    std::string mDescription;
    DisplayHint mHint;
    NodeValue mDefault;
    NodeValue mValue;
};
