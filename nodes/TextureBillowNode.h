#pragma once

#include "nodes/FractalSumNode.h"
#include "noisepp/modules/BillowModule.h"

/// "Billow Texture": folded gradient noise octaves, which give billowy, cloud-like shapes.
class TextureBillowNode : public FractalSumNode<noisepp::BillowModule> {
public:
    TextureBillowNode() : FractalSumNode(CatalogueEntry("TextureBillowNode")) {}
};
