#include "nodes/TextureBlendNode.h"

#include <cstdint>

namespace {

using Module = noisepp::BlendModule;
using ThisNode = TextureBlendNode;

// The blend functions in the order of their indices; the engine's unnamed seventeenth
// function is deliberately out of the user's reach.
constexpr const char* kModes =
    "normal,multiply,divide,screen,overlay,dodge,burn,hard_light,soft_light,grain_extract,"
    "grain_merge,difference,addition,subtract,darken_only,lighten_only";
constexpr int kModeCount = 16;

void setMode(Module& module, const Node& node, Node::Value** inputs, unsigned id) {
    // A mode text outside the list (only possible when the value is missing) blends normally
    // rather than reaching a function the list does not name.
    const int mode = texture::readChoice(node, inputs, id);
    module.setMode(mode >= 0 && mode < kModeCount ? static_cast<std::uint32_t>(mode) : 0u);
}

const std::vector<ThisNode::Row>& rows() {
    using namespace texture;
    static const std::vector<ThisNode::Row> table = {
        {choice(ThisNode::kMode, "mode", 0, kModes,
                "How the foreground's colours combine with the background's."),
         setMode},
        {number(ThisNode::kOpacity, "opacity", 1.0, 0.0, 1.0, 0.01, 3,
                "Strength of the foreground; 0 shows the background alone."),
         asFloat<&Module::setOpacity>},
        {colour(ThisNode::kColorBg, "color_bg", kOpaqueBlack,
                "Plain background used while tex_bg is empty.")},
        {colour(ThisNode::kColorFg, "color_fg", kOpaqueWhite,
                "Plain foreground used while tex_fg is empty.")},
    };
    return table;
}

}  // namespace

TextureBlendNode::TextureBlendNode()
    : ModuleNode(CatalogueEntry("TextureBlendNode"), rows(),
                 {{"tex_bg", false}, {"tex_fg", false}, {"tex_mask", false}}) {}

void TextureBlendNode::Connect(Module& module, Value** inputs,
                               const std::vector<noisepp::Module*>& sources) {
    const auto standIn = [&](noisepp::Module* source, unsigned colorId,
                             std::unique_ptr<noisepp::ConstantModule>& holder) {
        holder.reset();
        if (source != nullptr)
            return source;
        holder = std::make_unique<noisepp::ConstantModule>();
        holder->setColor(texture::readColor(*this, inputs, colorId));
        return static_cast<noisepp::Module*>(holder.get());
    };
    module.setSourceModule(0, standIn(sources[kBackgroundInput], kColorBg, mBackgroundColor));
    module.setSourceModule(1, standIn(sources[kForegroundInput], kColorFg, mForegroundColor));
    if (sources[kMaskInput] != nullptr)
        module.setSourceModule(2, sources[kMaskInput]);
}
