#include "nodes/ImageRender3DTextureNode.h"

#include <memory>

#include "host/Engine.h"
#include "host/Image.h"
#include "host/Log.h"
#include "host/RenderUvScene.h"
#include "nodes/NodeInputs.h"
#include "nodes/Texture3DRenderUVPixelFactory.h"
#include "noisepp/core/Module.h"
#include "noisepp/utils/ProcessorCount.h"

namespace {

int roundToInt(double value) {
    return static_cast<int>(texture::roundHalfDown(value));
}

struct DrivingInput {
    ImageRender3DTextureNode::RegularInputId input;
    const char* name;
};

constexpr DrivingInput kDrivingInputs[3] = {
    {ImageRender3DTextureNode::kTranslateInput, "Translate"},
    {ImageRender3DTextureNode::kRotateInput, "Rotate"},
    {ImageRender3DTextureNode::kScaleInput, "Scale"},
};

}  // namespace

ImageRender3DTextureNode::ImageRender3DTextureNode() {
    mAttributes.push_back(std::make_unique<Attribute>(
        this, kFrame, "frame", Frame{0.0, 0.0, 512.0, 512.0}, -8000.0, 8000.0, 1.0, 0));
    mAttributes.push_back(std::make_unique<Attribute>(this, kMesh, "mesh", MeshReference{}));
    const char* const axes[3] = {"x", "y", "z"};
    for (unsigned axis = 0; axis < 3; ++axis)
        mAttributes.push_back(std::make_unique<Attribute>(
            this, kTranslateX + axis, std::string("translate_") + axes[axis], Point{0.0, 0.0},
            -10000.0, 10000.0, 1.0, 3));
    for (unsigned axis = 0; axis < 3; ++axis)
        mAttributes.push_back(std::make_unique<Attribute>(this, kRotateX + axis,
                                                          std::string("rotate_") + axes[axis],
                                                          Point{0.0, 0.0}, -360.0, 360.0, 1.0, 3));
    for (unsigned axis = 0; axis < 3; ++axis)
        mAttributes.push_back(
            std::make_unique<Attribute>(this, kScaleX + axis, std::string("scale_") + axes[axis],
                                        Point{1.0, 1.0}, -10000.0, 10000.0, 1.0, 3));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kSamples, "samples", 1.0, 0.0, 16.0, 1.0, 0));
    mAttributes.push_back(
        std::make_unique<Attribute>(this, kPrefilter, "prefilter", 5.0, 0.0, 128.0, 1.0, 0));
    AddCombinedFramePositionSizeAttribute(kFrame, "position_x", "position_y", "size_x", "size_y");

    mRegularInputs.push_back({kTextureInput, kTexturePlug, "texture", 0, 0});
    mRegularInputs.push_back({kTranslateInput, kImagePlug, "translate", 0, 0});
    mRegularInputs.push_back({kRotateInput, kImagePlug, "rotate", 0, 0});
    mRegularInputs.push_back({kScaleInput, kImagePlug, "scale", 0, 0});
    mOutputs.push_back({0, kImagePlug, "image", 0});
    UpdateInplugsAndOutplugs();

    // The scene's models live in the process-wide engine, whichever engine holds this node.
    Engine::Get()->RegisterDelegateEventHandler(
        Delegate2<unsigned int, unsigned int>(this, &ImageRender3DTextureNode::OnEngineEvent));
}

ImageRender3DTextureNode::~ImageRender3DTextureNode() {
    Engine::Get()->UnregisterDelegateEventHandler(
        Delegate2<unsigned int, unsigned int>(this, &ImageRender3DTextureNode::OnEngineEvent));
    mScene.reset();
    ReleaseImage();
}

NodeType ImageRender3DTextureNode::GetNodeType() const {
    return NodeType{10, 304, 5};
}

std::string ImageRender3DTextureNode::GetTypeName() const {
    return "Render 3D Texture";
}

bool ImageRender3DTextureNode::OnProcessEvent(const NodeEvent& event) {
    if (event.type == NodeEvent::kReleaseOutputs)
        ReleaseImage();
    return true;
}

Image* ImageRender3DTextureNode::GetOutputImage(unsigned index) {
    return index == 0 ? mImage : nullptr;
}

void ImageRender3DTextureNode::OnEngineEvent(unsigned int code, unsigned int parameter) {
    (void)parameter;
    switch (code) {
        case Engine::kSceneModelsChanged:
        case Engine::kSceneModelReloaded:
        case Engine::kSceneReplaced:
            mSceneDirty = true;
            ProcessEvent(NodeEvent::kOutputChanged, 0);
            break;
        case Engine::kSceneViewChanged:
            ProcessEvent(NodeEvent::kOutputChanged, 0);
            break;
        default:
            break;
    }
}

void ImageRender3DTextureNode::ReleaseImage() {
    if (mImage != nullptr)
        mImage->Release();
    mImage = nullptr;
}

void ImageRender3DTextureNode::PublishNewImage(int width, int height) {
    auto* image = new Image(width, height, Image::kFloatRgbo, nullptr);
    image->AddRef();
    ReleaseImage();
    mImage = image;
}

void ImageRender3DTextureNode::Evaluate(unsigned outplug, Value** inputs) {
    ReleaseImage();
    if (!IsEvaluationEnabled())
        return;
    Log::Trace("Texture.dll ImageRender3DTextureNode::Evaluate - start");

    const Frame frame = texture::readFrame(*this, inputs, kFrame);
    const int pinX = roundToInt(frame.positionX);
    const int pinY = roundToInt(frame.positionY);
    const int width = roundToInt(frame.sizeX);
    const int height = roundToInt(frame.sizeY);
    Texture3DRenderUVPixel::Ranges ranges;
    for (unsigned axis = 0; axis < 3; ++axis) {
        ranges.translate[axis] = texture::readPoint(*this, inputs, kTranslateX + axis);
        ranges.rotate[axis] = texture::readPoint(*this, inputs, kRotateX + axis);
        ranges.scale[axis] = texture::readPoint(*this, inputs, kScaleX + axis);
    }
    const int samples = roundToInt(texture::readNumber(*this, inputs, kSamples));
    const int prefilter = roundToInt(texture::readNumber(*this, inputs, kPrefilter));
    const MeshReference mesh = texture::readMesh(*this, inputs, kMesh);

    // A driving image of another size than the output cannot be read per pixel: warn and
    // render with the range's first values instead.
    const Image* driving[3] = {nullptr, nullptr, nullptr};
    for (int i = 0; i < 3; ++i) {
        const Image* image = texture::readImage(*this, inputs, kDrivingInputs[i].input);
        if (image == nullptr)
            continue;
        if (image->GetSizeX() != width || image->GetSizeY() != height) {
            const std::string message =
                std::string(kDrivingInputs[i].name) + " image size doesn't match Texture output.";
            SetState(outplug, kStateWarning, message);
            Log::Warning("ImageRender3DTextureNode::Evaluate. %s", message.c_str());
            continue;
        }
        driving[i] = image;
    }

    if (width > Image::GetMaxSizeX() || height > Image::GetMaxSizeY()) {
        SetState(outplug, kStateError, "Output image is larger than maximum image size.");
        return;
    }

    const texture::TextureInput texture(*this, inputs, kTextureInput);
    PublishNewImage(width, height);
    if (texture.module() != nullptr) {
        const std::unique_ptr<noisepp::Pipeline3D> pipeline = noisepp::utils::createPipeline();
        const noisepp::PipelineElement3D* element =
            pipeline->getElement(texture.module()->addToPipeline(pipeline.get()));

        // The flag is taken before the scene is read, so that a change of the models while it
        // loads still counts next time.
        if (mSceneDirty.exchange(false))
            mScene.reset();
        if (mScene == nullptr || mScene->GetSizeX() != width || mScene->GetSizeY() != height ||
            mSceneMesh != mesh) {
            mScene.reset();
            mScene = std::make_unique<RenderUvScene>(width, height, mesh.model, mesh.submesh,
                                                     mesh.flag ? 1 : 0);
            mSceneMesh = mesh;
        }

        // A fresh image for the render; a scene without a mesh paints it opaque black.
        PublishNewImage(width, height);
        Log::Trace("Texture.dll ImageRender3DTextureNode::Evaluate - started render uv scene");
        for (Point& angle : ranges.rotate)
            angle = Point{angle.x * DEG_TO_RAD, angle.y * DEG_TO_RAD};
        Texture3DRenderUVPixelFactory factory(pipeline.get(), element, driving[0], driving[1],
                                              driving[2], ranges);
        // One process-wide processor count governs every render thread of the engine.
        mScene->SetThreadCount(static_cast<int>(noisepp::utils::getProcessorCount()));
        Timer timer;
        timer.StartTimer();
        mScene->Render(mImage, &factory, samples, prefilter);
        Log::Info("Texture.dll ImageRender3DTextureNode::Evaluate - Render uv scene: %d ms",
                  timer.StopTimer());
    }

    mImage->SetPin(pinX, pinY);
    Log::Trace("Texture.dll ImageRender3DTextureNode::Evaluate - finish");
}
