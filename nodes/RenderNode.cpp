#include "nodes/RenderNode.h"

#include <algorithm>

#include "host/Engine.h"
#include "host/Image.h"
#include "host/Log.h"
#include "host/RenderOptions.h"
#include "nodes/NodeInputs.h"

namespace {

int toPixels(double value) {
    return static_cast<int>(texture::roundHalfDown(value));
}

}  // namespace

RenderNode::RenderNode(const NodeCatalogueEntry& entry) : mEntry(entry) {
    texture::frame(kFrame, "frame", Frame{0.0, 0.0, 512.0, 512.0}, -8000.0, 8000.0, 1.0, 0,
                   "Where the image is pinned on the canvas and its size in pixels.")
        .Grouped({"position_x", "position_y", "size_x", "size_y"})
        .DeclareOn(*this, mAttributes);
    mRegularInputs.push_back({0, kTexturePlug, "texture", 0, 0});
    mOutputs.push_back({0, kImagePlug, "image", 0});
}

RenderNode::~RenderNode() {
    ReleaseImage();
}

bool RenderNode::OnProcessEvent(const NodeEvent& event) {
    if (event.type == NodeEvent::kReleaseOutputs)
        ReleaseImage();
    return true;
}

Image* RenderNode::GetOutputImage(unsigned index) {
    return index == 0 ? mImage : nullptr;
}

void RenderNode::Evaluate(unsigned outplug, Value** inputs) {
    ReleaseImage();
    if (!IsEvaluationEnabled())
        return;
    Log::Trace("%s - start", LogPrefix().c_str());
    const Frame frame = texture::readFrame(*this, inputs, kFrame);
    const PixelFrame pixels{toPixels(frame.positionX), toPixels(frame.positionY),
                            toPixels(frame.sizeX), toPixels(frame.sizeY)};
    Render(outplug, inputs, pixels);
    if (mImage != nullptr)
        mImage->SetPin(pixels.pinX, pixels.pinY);
}

bool RenderNode::FitsHost(unsigned outplug, const PixelFrame& frame) {
    if (frame.width <= Image::GetMaxSizeX() && frame.height <= Image::GetMaxSizeY())
        return true;
    SetState(outplug, kStateError, "Output image is larger than maximum image size.");
    return false;
}

void RenderNode::PublishNewImage(int width, int height) {
    auto* image = new Image(width, height, Image::kFloatRgbo, nullptr);
    image->AddRef();
    ReleaseImage();
    mImage = image;
}

std::function<void(int, int)> RenderNode::ProgressByBands(const RenderOptions& options, int total) {
    if (!options.progress || total <= 0)
        return {};
    // About 200 calls per image: smooth on a terminal, nothing next to a line of noise.
    const int band = std::max(1, total / 200);
    return [report = options.progress, band](int done, int all) {
        if (done % band == 0 || done == all)
            report(done, all);
    };
}

RenderOptions RenderNode::GetRenderOptions() const {
    return GetEngine() != nullptr ? GetEngine()->GetRenderOptions() : RenderOptions{};
}

std::string RenderNode::LogPrefix() const {
    return "Texture.dll " + std::string(mEntry.nodeClass) + "::Evaluate";
}

void RenderNode::ReleaseImage() {
    if (mImage != nullptr)
        mImage->Release();
    mImage = nullptr;
}
