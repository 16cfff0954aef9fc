#pragma once

#include "nodes/FractalSumNode.h"
#include "noisepp/modules/PerlinModule.h"

/// "Perlin Texture": octaves of smooth gradient noise, the classic cloudy noise.
class TexturePerlinNode : public FractalSumNode<noisepp::PerlinModule> {
public:
    TexturePerlinNode() : FractalSumNode(CatalogueEntry("TexturePerlinNode")) {}
};
