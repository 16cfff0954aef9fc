#pragma once

#include <QWidget>

#include "host/NodeEvent.h"

class GradientNode;
class Node;
class NodeInterface;
class QGradientEditor;

/// The attributes page of a gradient-mapping node: a gradient editor whose edits are written
/// into the node's gradient, one undo step ("Gradient Set Color") per gesture from press to
/// release, and which follows changes that reach the node from elsewhere (undo, documents).
///
/// Node notifications are turned into Qt signals, so that the page reacts through Qt's signal
/// delivery (queued when the host notifies from another thread). A node that has no gradient
/// (or none at all) gets a disabled editor.
class QTextureGradientWidget : public QWidget, public NodeListener {
    Q_OBJECT

public:
    /// Builds the page for `node` (which must also be a GradientNode to be editable) made by
    /// `interface`, loads the node's gradient without echoing it back and listens to the node.
    QTextureGradientWidget(QWidget* parent, Node* node, NodeInterface* interface);
    /// Stops listening; a gesture still open is closed as an undo step. The page must be
    /// deleted before its node.
    ~QTextureGradientWidget() override;

    Node* GetNode() const { return mNode; }
    NodeInterface* GetInterface() const { return mInterface; }
    QGradientEditor* GetEditor() const { return mEditor; }

    /// A gradient change of the node (type 4, code 796447) emits ProcessUpdateGradientSignal,
    /// every other event ProcessEventSignal.
    void OnNodeEvent(Node* node, const NodeEvent& event) override;

signals:
    void ProcessEventSignal();
    void ProcessUpdateGradientSignal();

private slots:
    /// Shows the node's gradient again (its inputs or state may have changed).
    void OnProcessEventSignal();
    /// Reloads the editor from the node's gradient, with the editor's signals blocked.
    void OnProcessUpdateGradientSignal();
    /// Writes the editor's gradient into the node.
    void OnGradientChanged();
    /// Opens the undo step of a gesture, capturing the gradient before it.
    void OnDragWidgetPressed();
    /// Closes the gesture's undo step.
    void OnDragWidgetReleased();

private:
    void ReloadEditor();

    Node* mNode;
    GradientNode* mGradientNode;
    NodeInterface* mInterface;
    QGradientEditor* mEditor = nullptr;
    bool mGestureOpen = false;
};
