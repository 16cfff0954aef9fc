#pragma once

#include "nodes/ModuleNode.h"
#include "noisepp/modules/AdditionModule.h"

/// "Texture Addition": the channel-by-channel sum of "texture_a" and "texture_b", every
/// channel (opacity included) clamped to 0 ... 1.
class TextureAdditionNode : public CombinerNode<noisepp::AdditionModule> {
public:
    TextureAdditionNode() : CombinerNode(CatalogueEntry("TextureAdditionNode")) {}
};
