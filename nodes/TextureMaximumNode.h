#pragma once

#include "nodes/ModuleNode.h"
#include "noisepp/modules/MaximumModule.h"

/// "Texture Maximum": the larger of "texture_a" and "texture_b", channel by channel (opacity
/// included).
class TextureMaximumNode : public CombinerNode<noisepp::MaximumModule> {
public:
    TextureMaximumNode() : CombinerNode(CatalogueEntry("TextureMaximumNode")) {}
};
