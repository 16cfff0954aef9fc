#pragma once

#include "nodes/ModuleNode.h"
#include "noisepp/modules/TerraceModule.h"

/// "Texture Terrace" (defined but not offered to the host): wraps "texture" in a terrace
/// stage with no terrace points. Such a stage compiles only once it has at least two points;
/// the node keeps the type so that it can be offered later.
class TextureTerraceNode : public ModuleNode<noisepp::TerraceModule> {
public:
    enum RegularInputId : unsigned { kTextureInput = 0 };

    TextureTerraceNode() : ModuleNode(CatalogueEntry("TextureTerraceNode"), {}, {{"texture"}}) {}
};
