#pragma once

#include "nodes/ModuleNode.h"
#include "noisepp/modules/MultiplyModule.h"

/// "Texture Multiply": the product of "texture_a" and "texture_b", channel by channel (opacity
/// included).
class TextureMultiplyNode : public CombinerNode<noisepp::MultiplyModule> {
public:
    TextureMultiplyNode() : CombinerNode(CatalogueEntry("TextureMultiplyNode")) {}
};
