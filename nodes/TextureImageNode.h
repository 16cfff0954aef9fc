#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/Node.h"
#include "library/NodeCatalogue.h"

class Image;

namespace noisepp {
class Module;
}

/// "Image Texture": the picture on regular input 0 "image" (an image plug) as a texture
/// spanning the unit square in x and y. Output 0 "texture".
///
/// The node keeps the picture as a summed-area table that its modules refer to; the table
/// survives evaluations without a picture, so unplugging the input keeps the last picture.
/// Unlike other texture nodes it always offers a module: without any picture it is opaque
/// black everywhere. A pipeline compiled from its module must not be evaluated while the node
/// evaluates again.
class TextureImageNode : public Node {
public:
    enum AttributeId : unsigned { kTileX = 0, kTileY };
    enum RegularInputId : unsigned { kImageInput = 0 };

    TextureImageNode();
    ~TextureImageNode() override;

    NodeType GetNodeType() const override {
        return CatalogueEntry("TextureImageNode").GetNodeType();
    }
    std::string GetTypeName() const override { return CatalogueEntry("TextureImageNode").typeName; }
    /// Rebuilds the table when the input carries a picture (or empties it when the host's
    /// evaluation flag is clear), then replaces the current module with a new
    /// noisepp::ImageModule on the table with the tiling of "tile_x" and "tile_y".
    void Evaluate(unsigned outplug, Value** inputs) override;
    /// Index 0: a new handle on the current module (null before the first evaluation).
    TextureHandle* GetOutputTexture(unsigned index) override;

private:
    /// Replaces the table by the running sums of `image` (colour mode 0).
    void BuildTable(const Image& image);

    std::vector<double> mTable;
    std::uint32_t mWidth = 0;
    std::uint32_t mHeight = 0;
    std::unique_ptr<noisepp::Module> mModule;
};
