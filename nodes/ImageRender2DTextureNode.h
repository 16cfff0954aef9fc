#pragma once

#include <string>

#include "host/Node.h"

class Image;

/// "Render 2D Texture": samples the texture on its input over a rectangle of the plane
/// z = start_z and publishes the result as a float RGBO image pinned on the canvas.
///
/// Attributes: "frame" (pin position and image size in pixels, rounded half down), "start_x",
/// "start_y", "start_z" (the texture-space corner), "range" (the texture-space extent, at least
/// 0.001 on each axis) and "seamless" (blend so that the image tiles). Regular input 0
/// "texture"; output 0 "image". Without a texture the image is opaque black; an image larger
/// than the host's maximum size is refused with an error state.
class ImageRender2DTextureNode : public Node {
public:
    enum AttributeId : unsigned {
        kFrame = 0,
        kStartX = 1,
        kStartY = 2,
        kStartZ = 3,
        kRange = 4,
        kSeamless = 5,
    };

    ImageRender2DTextureNode();
    ~ImageRender2DTextureNode() override;

    NodeType GetNodeType() const override;
    std::string GetTypeName() const override;
    /// Releases the current image on a release-outputs event (type 11); true for every event.
    bool OnProcessEvent(const NodeEvent& event) override;
    void Evaluate(unsigned outplug, Value** inputs) override;
    /// The current image for index 0 (the node keeps its reference), null otherwise.
    Image* GetOutputImage(unsigned index) override;

private:
    void ReleaseImage();

    Image* mImage = nullptr;
};
