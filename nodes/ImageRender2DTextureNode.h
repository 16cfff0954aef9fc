#pragma once

#include "nodes/RenderNode.h"

/// "Render 2D Texture": samples the texture on its input over a rectangle of the plane
/// z = start_z. "range" is the rectangle's texture-space extent, at least 0.001 on each axis;
/// "seamless" blends the image so that it tiles. Without a texture the image is opaque black.
class ImageRender2DTextureNode : public RenderNode {
public:
    /// After the frame, id 0.
    enum AttributeId : unsigned { kStartX = kFrame + 1, kStartY, kStartZ, kRange, kSeamless };

    ImageRender2DTextureNode();

private:
    void Render(unsigned outplug, Value** inputs, const PixelFrame& frame) override;
};
