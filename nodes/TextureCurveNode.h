#pragma once

#include "nodes/ModuleNode.h"
#include "noisepp/modules/CurveModule.h"

/// "Texture Curve" (defined but not offered to the host): wraps "texture" in a curve stage
/// with no control points. Such a stage compiles only once it has at least four points, and
/// even then it is inert; the node keeps the type so that it can be offered later.
class TextureCurveNode : public ModuleNode<noisepp::CurveModule> {
public:
    enum RegularInputId : unsigned { kTextureInput = 0 };

    TextureCurveNode() : ModuleNode(CatalogueEntry("TextureCurveNode"), {}, {{"texture"}}) {}
};
