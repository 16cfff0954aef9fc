#include "nodes/ImageRender2DTextureNode.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

#include "host/Image.h"
#include "host/Log.h"
#include "nodes/NodeInputs.h"
#include "noisepp/core/TextureColor.h"
#include "noisepp/utils/PlaneBuilder.h"

namespace {

constexpr unsigned kTextureInput = 0;

// The single-precision 0.1 widened to double, so that the spinner steps match the values the
// node narrows its start coordinates to.
constexpr double kStartStep = static_cast<double>(0.1f);

// Keeps the builder's bounds strictly ordered whatever range the user enters.
constexpr float kMinimumRange = 0.001f;

int toPixels(double value) {
    return static_cast<int>(texture::roundHalfDown(value));
}

}  // namespace

ImageRender2DTextureNode::ImageRender2DTextureNode() {
    mAttributes.push_back(std::make_unique<Attribute>(
        this, kFrame, "frame", Frame{0.0, 0.0, 512.0, 512.0}, -8000.0, 8000.0, 1.0, 0));
    mAttributes.push_back(std::make_unique<Attribute>(this, kStartX, "start_x", 0.0, -10000.0,
                                                      10000.0, kStartStep, 2));
    mAttributes.push_back(std::make_unique<Attribute>(this, kStartY, "start_y", 0.0, -10000.0,
                                                      10000.0, kStartStep, 2));
    mAttributes.push_back(std::make_unique<Attribute>(this, kStartZ, "start_z", 0.0, -10000.0,
                                                      10000.0, kStartStep, 2));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kRange, "range", Point{1.0, 1.0}, 0.0, 8000.0, 1.0, 2));
    mAttributes.push_back(std::make_unique<Attribute>(this, kSeamless, "seamless", false));
    AddCombinedFramePositionSizeAttribute(kFrame, "position_x", "position_y", "size_x", "size_y");
    AddCombinedPointAttribute(kRange, "range_x", "range_y");
    mRegularInputs.push_back({kTextureInput, kTexturePlug, "texture", 0, 0});
    mOutputs.push_back({0, kImagePlug, "image", 0});
    UpdateInplugsAndOutplugs();
}

ImageRender2DTextureNode::~ImageRender2DTextureNode() {
    ReleaseImage();
}

NodeType ImageRender2DTextureNode::GetNodeType() const {
    return NodeType{10, 304, 0};
}

std::string ImageRender2DTextureNode::GetTypeName() const {
    return "Render 2D Texture";
}

bool ImageRender2DTextureNode::OnProcessEvent(const NodeEvent& event) {
    if (event.type == NodeEvent::kReleaseOutputs)
        ReleaseImage();
    return true;
}

Image* ImageRender2DTextureNode::GetOutputImage(unsigned index) {
    return index == 0 ? mImage : nullptr;
}

void ImageRender2DTextureNode::ReleaseImage() {
    if (mImage != nullptr)
        mImage->Release();
    mImage = nullptr;
}

void ImageRender2DTextureNode::Evaluate(unsigned outplug, Value** inputs) {
    ReleaseImage();
    if (!IsEvaluationEnabled())
        return;
    Log::Trace("Texture.dll ImageRender2DTextureNode::Evaluate - start");

    const Frame frame = texture::readFrame(*this, inputs, kFrame);
    const auto startX = static_cast<float>(texture::readNumber(*this, inputs, kStartX));
    const auto startY = static_cast<float>(texture::readNumber(*this, inputs, kStartY));
    const auto startZ = static_cast<float>(texture::readNumber(*this, inputs, kStartZ));
    const Point range = texture::readPoint(*this, inputs, kRange);
    const auto rangeX = static_cast<float>(range.x);
    const auto rangeY = static_cast<float>(range.y);
    const bool seamless = texture::readBool(*this, inputs, kSeamless);

    const int pinX = toPixels(frame.positionX);
    const int pinY = toPixels(frame.positionY);
    const int width = toPixels(frame.sizeX);
    const int height = toPixels(frame.sizeY);
    if (width > Image::GetMaxSizeX() || height > Image::GetMaxSizeY()) {
        SetState(outplug, kStateError, "Output image is larger than maximum image size.");
        return;
    }

    const texture::TextureInput texture(*this, inputs, kTextureInput);
    mImage = new Image(width, height, Image::kFloatRgbo, nullptr);
    mImage->AddRef();
    Timer timer;
    timer.StartTimer();

    if (texture.module() == nullptr) {
        const float opaqueBlack[4] = {0.0f, 0.0f, 0.0f, 1.0f};
        mImage->Fill(opaqueBlack);
    } else {
        const std::size_t pixels =
            static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
        // At least one entry, so that an empty size is reported as such by the builder rather
        // than as a missing destination.
        std::vector<noisepp::TextureColor> buffer(std::max<std::size_t>(pixels, 1));
        noisepp::utils::PlaneBuilder builder;
        builder.setModule(texture.module());
        builder.setDestination(buffer.data());
        builder.setSize(width, height);
        const float upperX = startX + std::max(kMinimumRange, rangeX);
        const float upperY = startY + std::max(kMinimumRange, rangeY);
        builder.setBounds(startX, startY, upperX, upperY);
        builder.setZValue(startZ);
        builder.setSeamless(seamless);
        builder.build();

        float* pixel = mImage->GetArray();
        const int channels = mImage->GetNumChannels();
        for (std::size_t i = 0; i < pixels; ++i, pixel += channels) {
            pixel[0] = buffer[i].red;
            pixel[1] = buffer[i].green;
            pixel[2] = buffer[i].blue;
            pixel[3] = buffer[i].opacity;
        }
    }

    mImage->SetPin(pinX, pinY);
    Log::Info("Texture.dll ImageRender2DTextureNode::Evaluate - Render image: %d ms",
              timer.StopTimer());
}
