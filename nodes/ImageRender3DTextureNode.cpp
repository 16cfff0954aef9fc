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

ImageRender3DTextureNode::ImageRender3DTextureNode()
    : RenderNode(CatalogueEntry("ImageRender3DTextureNode")) {
    using namespace texture;
    mesh(kMesh, "mesh", "The mesh of the document's scene whose UV layout the image follows.")
        .DeclareOn(*this, mAttributes);
    // Each range is (value at intensity 0, value at intensity 1) of its driving image.
    const AttributeDeclaration ranges[] = {
        point(kTranslateX, "translate_x", Point{0.0, 0.0}, -10000.0, 10000.0, 1.0, 3,
              "Moves the texture along x before it is painted on the mesh."),
        point(kTranslateY, "translate_y", Point{0.0, 0.0}, -10000.0, 10000.0, 1.0, 3,
              "Moves the texture along y before it is painted on the mesh."),
        point(kTranslateZ, "translate_z", Point{0.0, 0.0}, -10000.0, 10000.0, 1.0, 3,
              "Moves the texture along z before it is painted on the mesh."),
        point(kRotateX, "rotate_x", Point{0.0, 0.0}, -360.0, 360.0, 1.0, 3,
              "Turns the texture about the x axis, in degrees."),
        point(kRotateY, "rotate_y", Point{0.0, 0.0}, -360.0, 360.0, 1.0, 3,
              "Turns the texture about the y axis, in degrees."),
        point(kRotateZ, "rotate_z", Point{0.0, 0.0}, -360.0, 360.0, 1.0, 3,
              "Turns the texture about the z axis, in degrees."),
        point(kScaleX, "scale_x", Point{1.0, 1.0}, -10000.0, 10000.0, 1.0, 3,
              "Scales the mesh's coordinates along x; higher values give finer detail."),
        point(kScaleY, "scale_y", Point{1.0, 1.0}, -10000.0, 10000.0, 1.0, 3,
              "Scales the mesh's coordinates along y."),
        point(kScaleZ, "scale_z", Point{1.0, 1.0}, -10000.0, 10000.0, 1.0, 3,
              "Scales the mesh's coordinates along z."),
        number(kSamples, "samples", 1.0, 0.0, 16.0, 1.0, 0,
               "Samples per pixel edge; higher values smooth jagged triangle edges."),
        number(kPrefilter, "prefilter", 5.0, 0.0, 128.0, 1.0, 0,
               "Pixels the paint spreads beyond the UV islands, hiding seams."),
    };
    for (const AttributeDeclaration& row : ranges)
        row.DeclareOn(*this, mAttributes);

    mRegularInputs.push_back({kTranslateInput, kImagePlug, "translate", 0, 0});
    mRegularInputs.push_back({kRotateInput, kImagePlug, "rotate", 0, 0});
    mRegularInputs.push_back({kScaleInput, kImagePlug, "scale", 0, 0});
    UpdateInplugsAndOutplugs();

    // The scene's models live in the process-wide engine, whichever engine holds this node.
    Engine::Get()->RegisterDelegateEventHandler(
        Delegate2<unsigned int, unsigned int>(this, &ImageRender3DTextureNode::OnEngineEvent));
}

ImageRender3DTextureNode::~ImageRender3DTextureNode() {
    Engine::Get()->UnregisterDelegateEventHandler(
        Delegate2<unsigned int, unsigned int>(this, &ImageRender3DTextureNode::OnEngineEvent));
    mScene.reset();
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

void ImageRender3DTextureNode::Render(unsigned outplug, Value** inputs, const PixelFrame& frame) {
    const int width = frame.width;
    const int height = frame.height;
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

    if (!FitsHost(outplug, frame))
        return;

    const texture::TextureInput texture(*this, inputs, kTextureInput);
    PublishNewImage(width, height);
    if (texture.module() != nullptr) {
        // The UV renderer's threads follow the same count as the pipeline's.
        const std::size_t threads = noisepp::utils::resolveThreadCount(GetRenderOptions().threads);
        const std::unique_ptr<noisepp::Pipeline3D> pipeline =
            noisepp::utils::createPipeline(threads);
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
        Log::Trace("%s - started render uv scene", LogPrefix().c_str());
        for (Point& angle : ranges.rotate)
            angle = Point{angle.x * DEG_TO_RAD, angle.y * DEG_TO_RAD};
        Texture3DRenderUVPixelFactory factory(pipeline.get(), element, driving[0], driving[1],
                                              driving[2], ranges);
        const RenderOptions options = GetRenderOptions();
        mScene->SetThreadCount(static_cast<int>(threads));
        mScene->SetProgress(ProgressByBands(options, height));
        mScene->SetStopRequest(options.cancelled);
        Timer timer;
        timer.StartTimer();
        try {
            mScene->Render(GetImage(), &factory, samples, prefilter);
        } catch (const RenderUvScene::Stopped&) {
            // The host asked to stop; it renders the node again when it needs the image.
            Log::Info("%s - Render stopped after %d ms", LogPrefix().c_str(), timer.StopTimer());
            ReleaseImage();
            return;
        }
        Log::Info("%s - Render uv scene: %d ms", LogPrefix().c_str(), timer.StopTimer());
    }

    Log::Trace("%s - finish", LogPrefix().c_str());
}
