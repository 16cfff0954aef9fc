#pragma once

#include <string>

#include "host/Node.h"
#include "host/RenderOptions.h"
#include "library/NodeCatalogue.h"
#include "nodes/AttributeRow.h"

class Image;

/// A node that renders the texture on its input 0 "texture" into a float RGBO image on its
/// output 0 "image", pinned on the canvas where its "frame" attribute (id 0) says and as large
/// as the frame. The node keeps one reference to its image and gives it up before every
/// evaluation and on a release-outputs event.
class RenderNode : public Node {
public:
    static constexpr unsigned kFrame = 0;

    ~RenderNode() override;

    NodeType GetNodeType() const final { return mEntry.GetNodeType(); }
    std::string GetTypeName() const final { return mEntry.typeName; }
    /// Releases the current image on a release-outputs event (type 11); true for every event.
    bool OnProcessEvent(const NodeEvent& event) override;
    void Evaluate(unsigned outplug, Value** inputs) final;
    /// The current image for index 0 (the node keeps its reference), null otherwise.
    Image* GetOutputImage(unsigned index) final;

protected:
    /// The image's pin and size in pixels, from the frame rounded half down.
    struct PixelFrame {
        int pinX = 0;
        int pinY = 0;
        int width = 0;
        int height = 0;
    };

    /// Declares "frame" and the texture input; the subclass declares the rest.
    explicit RenderNode(const NodeCatalogueEntry& entry);

    /// Renders into a new image (PublishNewImage) while the evaluation flag is set.
    virtual void Render(unsigned outplug, Value** inputs, const PixelFrame& frame) = 0;

    /// False, with the error state set on `outplug`, for a size beyond the host's maximum.
    bool FitsHost(unsigned outplug, const PixelFrame& frame);
    /// Replaces the current image by a new one of this size.
    void PublishNewImage(int width, int height);
    Image* GetImage() const { return mImage; }
    /// The engine's render options (thread count, output size, window); the defaults outside
    /// an engine.
    RenderOptions GetRenderOptions() const;
    /// The host's progress callback of `options` thinned to about a band of lines per call:
    /// `done` lines of `total` go through when they complete a band or the image. Empty when
    /// the host does not listen.
    static std::function<void(int done, int total)> ProgressByBands(const RenderOptions& options,
                                                                    int total);
    /// "Texture.dll <node class>::Evaluate - <what>".
    std::string LogPrefix() const;
    /// Gives up the current image, so that a failed render publishes none.
    void ReleaseImage();

private:
    const NodeCatalogueEntry& mEntry;
    Image* mImage = nullptr;
};
