#pragma once

#include <vector>

#include "host/HostTypes.h"
#include "host/StateContainer.h"

class Node;

/// A colour gradient edited by the user: vertices (position 0...1 and colour) and how to
/// interpolate between them.
struct VertexGradient {
    enum Interpolation : int { kStep = 0, kLinear = 1, kSmooth = 2 };
    struct Vertex {
        double position = 0.0;
        Rgbo color;
        friend bool operator==(const Vertex&, const Vertex&) = default;
    };

    std::vector<Vertex> vertices;
    int interpolation = kLinear;

    friend bool operator==(const VertexGradient&, const VertexGradient&) = default;
};

/// Mix-in for nodes that own a gradient (for example a gradient-mapping node). The host saves
/// the gradient with the node's attributes and records its changes for undo.
class GradientNode {
public:
    GradientNode();
    virtual ~GradientNode() = default;

    const VertexGradient& GetGradient() const { return mGradient; }
    VertexGradient GetCopyGradient() const { return mGradient; }

    /// Stores `gradient` in `node`'s gradient (node must also be a GradientNode), sends the
    /// node event (type 4, code 796447) and marks the node for re-evaluation.
    static void SetGradient(Node* node, const VertexGradient& gradient);

    /// Undo record of a node's gradient.
    class GradientStateContainer : public StateContainer {
    public:
        GradientStateContainer(Node* node, GradientNode* gradientNode);
        void Swap() override;

    private:
        Node* mNode;
        GradientNode* mGradientNode;
        VertexGradient mSaved;
    };

protected:
    /// The gradient a new node starts with: black to white, linear.
    static VertexGradient DefaultGradient();

private:
    VertexGradient mGradient;
};
