#pragma once

class Node;

/// A notice about a node, sent by the host to the node (OnProcessEvent) and its listeners.
///
/// Types the host sends (see docs/host.md): 3 the node's inputs changed, 5 its output
/// changed, 4 with code 796447 its gradient changed, 11 release cached outputs.
struct NodeEvent {
    enum Type : int {
        kInputsChanged = 3,
        kParameterChanged = 4,
        kOutputChanged = 5,
        kReleaseOutputs = 11,
    };
    static constexpr int kGradientChangedCode = 796447;

    int type = 0;
    int code = 0;
};

/// Receives the events of the nodes it is attached to (Node::AddNodeListener).
class NodeListener {
public:
    virtual ~NodeListener() = default;
    virtual void OnNodeEvent(Node* node, const NodeEvent& event) = 0;
};
