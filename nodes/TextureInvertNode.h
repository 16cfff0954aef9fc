#pragma once

#include "nodes/ModuleNode.h"
#include "noisepp/modules/InvertModule.h"

/// "Texture Invert": one minus red, green and blue of "texture"; opacity passes through.
class TextureInvertNode : public ModuleNode<noisepp::InvertModule> {
public:
    enum RegularInputId : unsigned { kTextureInput = 0 };

    TextureInvertNode() : ModuleNode(CatalogueEntry("TextureInvertNode"), {}, {{"texture"}}) {}
};
