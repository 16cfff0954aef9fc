#include "nodes/TextureBlendNode.h"

#include <cstdint>

#include "nodes/NodeInputs.h"
#include "noisepp/modules/BlendModule.h"
#include "noisepp/modules/ConstantModule.h"

namespace {

// The blend functions in the order of their indices; the engine's unnamed seventeenth
// function is deliberately out of the user's reach.
constexpr const char* kModes =
    "normal,multiply,divide,screen,overlay,dodge,burn,hard_light,soft_light,grain_extract,"
    "grain_merge,difference,addition,subtract,darken_only,lighten_only";
constexpr int kModeCount = 16;

}  // namespace

TextureBlendNode::TextureBlendNode() {
    mAttributes.push_back(std::make_unique<Attribute>(this, kMode, "mode", 0, kModes));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kOpacity, "opacity", 1.0, 0.0, 1.0, 0.01, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kColorBg, "color_bg", Rgbo{0.0, 0.0, 0.0, 1.0}));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kColorFg, "color_fg", Rgbo{1.0, 1.0, 1.0, 1.0}));
    mRegularInputs.push_back({kBackgroundInput, kTexturePlug, "tex_bg"});
    mRegularInputs.push_back({kForegroundInput, kTexturePlug, "tex_fg"});
    mRegularInputs.push_back({kMaskInput, kTexturePlug, "tex_mask"});
    mOutputs.push_back({0, kTexturePlug, "texture"});
    UpdateInplugsAndOutplugs();
}

TextureBlendNode::~TextureBlendNode() {
    delete mModule;
}

void TextureBlendNode::Evaluate(unsigned /*outplug*/, Node::Value** inputs) {
    // Downstream trees point at the old module; it goes whatever happens next, and the
    // stand-in colours go with it.
    delete mModule;
    mModule = nullptr;
    mBackgroundColor.reset();
    mForegroundColor.reset();
    if (!IsEvaluationEnabled())
        return;

    const texture::TextureInput background(*this, inputs, kBackgroundInput);
    const texture::TextureInput foreground(*this, inputs, kForegroundInput);
    const texture::TextureInput mask(*this, inputs, kMaskInput);

    const auto standIn = [&](unsigned colorId) {
        auto constant = std::make_unique<noisepp::ConstantModule>();
        constant->setColor(texture::readColor(*this, inputs, colorId));
        return constant;
    };
    if (background.module() == nullptr)
        mBackgroundColor = standIn(kColorBg);
    if (foreground.module() == nullptr)
        mForegroundColor = standIn(kColorFg);

    auto module = std::make_unique<noisepp::BlendModule>();
    // A mode text outside the list (only possible when the value is missing) blends normally
    // rather than reaching a function the list does not name.
    const int mode = texture::readChoice(*this, inputs, kMode);
    module->setMode(mode >= 0 && mode < kModeCount ? static_cast<std::uint32_t>(mode) : 0u);
    module->setOpacity(texture::readNumberAsFloat(*this, inputs, kOpacity));
    module->setSourceModule(0, mBackgroundColor ? mBackgroundColor.get() : background.module());
    module->setSourceModule(1, mForegroundColor ? mForegroundColor.get() : foreground.module());
    if (mask.module() != nullptr)
        module->setSourceModule(2, mask.module());
    mModule = module.release();
}

TextureHandle* TextureBlendNode::GetOutputTexture(unsigned index) {
    return index == 0 ? new TextureHandle(mModule) : nullptr;
}
