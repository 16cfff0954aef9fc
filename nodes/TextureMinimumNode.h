#pragma once

#include "nodes/ModuleNode.h"
#include "noisepp/modules/MinimumModule.h"

/// "Texture Minimum": the smaller of "texture_a" and "texture_b", channel by channel (opacity
/// included).
class TextureMinimumNode : public CombinerNode<noisepp::MinimumModule> {
public:
    TextureMinimumNode() : CombinerNode(CatalogueEntry("TextureMinimumNode")) {}
};
