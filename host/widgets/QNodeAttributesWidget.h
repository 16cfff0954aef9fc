#pragma once

#include <string>
#include <vector>

#include <QWidget>

#include "host/NodeEvent.h"

class Attribute;
class Node;
class NodeInterface;
class NodeValue;
class QGridLayout;
class QAttributeRow;

/// The host's generic attributes page: one editing row per attribute of a node, in attribute
/// id order, each with the attribute's name (or a label) and editors fitting its kind: a drag
/// spinner for a number, a check box, a choice list, a colour button, two spinners for a point,
/// four for a frame, three fields for a mesh, a line for text.
///
/// Colour attributes declared combined with an opacity edit the opacity too (otherwise it is
/// kept); combined points and frames show their component names.
///
/// Edits go through the node's engine (Engine::SetAttributeValue), so they are checked,
/// recorded for undo and re-evaluate the node; a whole spinner drag or colour dialog is one
/// undo step. Right click on a row's label resets the attribute to its default. The page
/// listens to the node and shows changes that reach it from elsewhere (undo, documents); a row
/// whose attribute is driven by a link is disabled. A node outside any engine is edited
/// directly.
///
/// The page must be deleted before its node.
class QNodeAttributesWidget : public QWidget, public NodeListener {
    Q_OBJECT

public:
    /// Presentation of one attribute's row. A node interface passes one record per attribute
    /// id (record i describes the attribute with id i).
    struct AdditionalInfo {
        /// The row is shown.
        bool visible = true;
        /// The row can be edited (otherwise it shows the value only).
        bool enabled = true;
        /// The attribute is a frequency: its spinner drags logarithmically (a value doubles or
        /// halves per drag distance instead of moving by steps).
        bool frequency = false;
        /// A slider from sliderMinimum to sliderMaximum is shown beside a number's spinner.
        bool slider = false;
        /// Decimals shown in addition to the attribute's own.
        int extraDecimals = 0;
        double sliderMinimum = 0.0;
        double sliderMaximum = 1.0;
        /// Shown as the row's tool tip.
        std::string toolTip;
        /// Shown after a number, for example " px".
        std::string suffix;
        /// Shown as the row's label instead of the attribute's name.
        std::string label;
        /// Edits reach the node while the user drags or types (otherwise when the editing
        /// finishes).
        bool tracking = true;
    };

    /// Builds the page for `node`. `info` is null or an array of one record per attribute id;
    /// it is read during construction only. Without it each row takes its label, frequency
    /// flag and tool tip (the description) from its attribute. With `readOnly` set no row can be
    /// edited.
    QNodeAttributesWidget(QWidget* parent, Node* node, NodeInterface* interface,
                          const AdditionalInfo* info, bool readOnly);
    ~QNodeAttributesWidget() override;

    Node* GetNode() const { return mNode; }
    NodeInterface* GetInterface() const { return mInterface; }

    /// The number of rows built (hidden rows included).
    int GetRowCount() const;
    /// The row editing the attribute `attributeId`, or null when it has none.
    QWidget* GetRowWidget(unsigned attributeId) const;
    /// The label text shown for the attribute, empty when it has no row.
    QString GetRowLabel(unsigned attributeId) const;

    /// Shows the attributes' current values again (the editors' signals blocked meanwhile).
    void Refresh();

    void OnNodeEvent(Node* node, const NodeEvent& event) override;

signals:
    /// An edit was refused (out of range or of the wrong kind); the message names the
    /// attribute and the allowed range.
    void editRejected(QString message);

private:
    friend class QAttributeRow;

    /// Writes `value` into the attribute through the engine; false with editRejected otherwise.
    bool Apply(const Attribute& attribute, const NodeValue& value);
    /// Opens and closes one undo step around a gesture of several edits.
    void BeginGesture(const Attribute& attribute);
    void EndGesture(const Attribute& attribute);

    Node* mNode;
    NodeInterface* mInterface;
    QGridLayout* mLayout = nullptr;
    std::vector<QAttributeRow*> mRows;
};
