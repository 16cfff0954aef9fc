#pragma once

#include <atomic>
#include <memory>

#include "nodes/RenderNode.h"

class RenderUvScene;

/// "Render 3D Texture": paints the texture on its input onto a mesh of the document's scene
/// and publishes the result laid out by the mesh's UVs, as a float RGBO image pinned on the
/// canvas.
///
/// Each surface point is taken into texture space by the scale, rotate (degrees) and
/// translate attributes. Each of them is a range (value at intensity 0, value at intensity 1):
/// its first value applies everywhere unless the matching image input ("translate", "rotate",
/// "scale", of the output's size) steers it per pixel. "samples" and "prefilter" go to the
/// host's UV renderer (supersampling and edge padding). Without a texture the image is left
/// as created; without a mesh it is opaque black. The loaded scene is kept between
/// evaluations until the size, the mesh or the document's models change.
class ImageRender3DTextureNode : public RenderNode {
public:
    /// After the frame, id 0; each axis triple is consecutive.
    enum AttributeId : unsigned {
        kMesh = kFrame + 1,
        kTranslateX,
        kTranslateY,
        kTranslateZ,
        kRotateX,
        kRotateY,
        kRotateZ,
        kScaleX,
        kScaleY,
        kScaleZ,
        kSamples,
        kPrefilter,
    };
    enum RegularInputId : unsigned {
        kTextureInput = 0,
        kTranslateInput = 1,
        kRotateInput = 2,
        kScaleInput = 3,
    };

    ImageRender3DTextureNode();
    /// Stops listening to the engine and drops the scene.
    ~ImageRender3DTextureNode() override;

private:
    void Render(unsigned outplug, Value** inputs, const PixelFrame& frame) override;
    /// Engine events: the scene's models changed, a model was reloaded or the scene was
    /// replaced (the cached scene is stale), or the scene view changed; each reports this
    /// node's output as changed.
    void OnEngineEvent(unsigned int code, unsigned int parameter);
    std::atomic<bool> mSceneDirty{true};
    std::unique_ptr<RenderUvScene> mScene;
    MeshReference mSceneMesh;
};
