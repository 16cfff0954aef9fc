#include "nodes/TextureImageNode.h"

#include <cstddef>
#include <memory>
#include <utility>

#include "host/Image.h"
#include "nodes/AttributeRow.h"
#include "nodes/NodeInputs.h"
#include "noisepp/modules/ImageModule.h"

TextureImageNode::TextureImageNode() {
    using namespace texture;
    boolean(kTileX, "tile_x", false, "Repeats the picture along x beyond the unit square.")
        .DeclareOn(*this, mAttributes);
    boolean(kTileY, "tile_y", false, "Repeats the picture along y beyond the unit square.")
        .DeclareOn(*this, mAttributes);
    mRegularInputs.push_back({kImageInput, kImagePlug, "image"});
    mOutputs.push_back({0, kTexturePlug, "texture"});
    UpdateInplugsAndOutplugs();
}

TextureImageNode::~TextureImageNode() = default;

void TextureImageNode::Evaluate(unsigned, Value** inputs) {
    using namespace texture;
    mModule.reset();
    const bool tileX = readBool(*this, inputs, kTileX);
    const bool tileY = readBool(*this, inputs, kTileY);

    if (Image* image = readImage(*this, inputs, kImageInput); image != nullptr) {
        if (!IsEvaluationEnabled()) {
            mWidth = 0;
            mHeight = 0;
            mTable.clear();
        } else if (image->GetColorMode() != Image::kFloatRgbo) {
            Image* converted = new Image(*image, Image::kFloatRgbo);
            converted->AddRef();
            BuildTable(*converted);
            converted->Release();
        } else {
            BuildTable(*image);
        }
    }

    auto module = std::make_unique<noisepp::ImageModule>();
    module->setFlags((tileY ? noisepp::ImageModule::kRepeatY : 0u) |
                     (tileX ? noisepp::ImageModule::kRepeatX : 0u));
    if (!mTable.empty())
        module->setImage(mWidth, mHeight, mTable.data());
    mModule = std::move(module);
}

TextureHandle* TextureImageNode::GetOutputTexture(unsigned index) {
    return index == 0 ? new TextureHandle(mModule.get()) : nullptr;
}

void TextureImageNode::BuildTable(const Image& image) {
    const std::size_t width = static_cast<std::size_t>(image.GetSizeX());
    const std::size_t height = static_cast<std::size_t>(image.GetSizeY());
    const float* pixels = image.GetConstArray();
    mWidth = static_cast<std::uint32_t>(width);
    mHeight = static_cast<std::uint32_t>(height);
    mTable.assign(width * height * 4, 0.0);
    // Each row's running sum plus the entry above: two additions per value, accumulated in
    // double so that large pictures lose no precision to float sums.
    for (std::size_t j = 0; j < height; ++j) {
        double rowSum[4] = {0.0, 0.0, 0.0, 0.0};
        for (std::size_t i = 0; i < width; ++i) {
            const std::size_t at = (j * width + i) * 4;
            for (std::size_t c = 0; c < 4; ++c) {
                rowSum[c] += static_cast<double>(pixels[at + c]);
                mTable[at + c] = j > 0 ? mTable[at - width * 4 + c] + rowSum[c] : rowSum[c];
            }
        }
    }
}
