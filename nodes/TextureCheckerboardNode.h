#pragma once

#include "nodes/ModuleNode.h"
#include "noisepp/modules/CheckerboardModule.h"

/// "Checkerboard Texture": squares of 0.5 units in the xy plane alternating between two
/// colours.
class TextureCheckerboardNode : public ModuleNode<noisepp::CheckerboardModule> {
public:
    enum AttributeId : unsigned { kColorA = 0, kColorB };

    TextureCheckerboardNode();
};
