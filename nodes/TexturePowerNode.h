#pragma once

#include "nodes/ModuleNode.h"
#include "noisepp/modules/PowerModule.h"

/// "Texture Power": "texture_a" raised to the power of "texture_b", channel by channel
/// (opacity included).
class TexturePowerNode : public CombinerNode<noisepp::PowerModule> {
public:
    TexturePowerNode() : CombinerNode(CatalogueEntry("TexturePowerNode")) {}
};
