#pragma once

#include "nodes/ModuleNode.h"
#include "noisepp/modules/JoinModule.h"

/// "Texture Join" (defined but not offered to the host): packs the grey of "tex_red",
/// "tex_green" and "tex_blue" into red, green and blue, opacity 1. Its "red", "green" and
/// "blue" numbers reach the texture and are stored with it but do not change its colours.
/// Offers no texture unless all three inputs do.
class TextureJoinNode : public ModuleNode<noisepp::JoinModule> {
public:
    enum AttributeId : unsigned { kRed = 0, kGreen, kBlue };
    enum RegularInputId : unsigned { kRedInput = 0, kGreenInput, kBlueInput };

    TextureJoinNode();
};
