#pragma once

#include <string>

#include "host/GradientNode.h"
#include "host/Node.h"

namespace noisepp {
class Module;
}

/// "Texture Gradient": maps the grey of "texture" through a colour gradient.
///
/// The gradient comes from the image on the "gradient" input when one is connected: every
/// column of its bottom row becomes a stop, column x of a W-pixel image at x / W. Otherwise
/// it is the node's own gradient (the GradientNode part), which the node's attributes page
/// edits with GradientNode::SetGradient inside an undo step of the engine's state recorder;
/// each change marks the node for re-evaluation. Either way the stops are interpolated as
/// the node's own gradient says (step, linear or smooth). Offers no texture when "texture"
/// has none.
class TextureGradientNode : public Node, public GradientNode {
public:
    enum RegularInputId : unsigned { kTextureInput = 0, kGradientInput = 1 };

    TextureGradientNode();
    ~TextureGradientNode() override;

    NodeType GetNodeType() const override { return {10, 304, 1296}; }
    std::string GetTypeName() const override { return "Texture Gradient"; }
    /// Drops the previous module, then builds a new one over the input.
    void Evaluate(unsigned outplug, Node::Value** inputs) override;
    /// Index 0: a new handle (count 1) on the current module, which may be null; else null.
    TextureHandle* GetOutputTexture(unsigned index) override;

private:
    noisepp::Module* mModule = nullptr;
};
