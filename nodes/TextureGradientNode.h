#pragma once

#include "host/GradientNode.h"
#include "nodes/ModuleNode.h"
#include "noisepp/modules/GradientModule.h"

/// "Texture Gradient": maps the grey of "texture" through a colour gradient.
///
/// The gradient comes from the image on the "gradient" input when one is connected: every
/// column of its bottom row becomes a stop, column x of a W-pixel image at x / W. Otherwise
/// it is the node's own gradient (the GradientNode part), which the node's attributes page
/// edits with GradientNode::SetGradient inside an undo step of the engine's state recorder;
/// each change marks the node for re-evaluation. Either way the stops are interpolated as
/// the node's own gradient says (step, linear or smooth).
class TextureGradientNode : public ModuleNode<noisepp::GradientModule>, public GradientNode {
public:
    enum RegularInputId : unsigned { kTextureInput = 0, kGradientInput = 1 };

    TextureGradientNode();
    GradientNode* GetGradientNode() override { return this; }

private:
    /// The stops, from the image on "gradient" or else from the node's own gradient.
    void Complete(noisepp::GradientModule& module, Value** inputs) override;
};
