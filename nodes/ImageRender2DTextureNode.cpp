#include "nodes/ImageRender2DTextureNode.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <type_traits>

#include "host/Image.h"
#include "host/Log.h"
#include "nodes/NodeInputs.h"
#include "noisepp/core/TextureColor.h"
#include "noisepp/utils/BuilderCallback.h"
#include "noisepp/utils/PlaneBuilder.h"

namespace {

constexpr unsigned kTextureInput = 0;

// The single-precision 0.1 widened to double, so that the spinner steps match the values the
// node narrows its start coordinates to.
constexpr double kStartStep = static_cast<double>(0.1f);

// Keeps the builder's bounds strictly ordered whatever range the user enters.
constexpr float kMinimumRange = 0.001f;

// Passes the builder's finished lines on to the host: each line as a final row of the image
// (for hosts that write while later rows render) and the count of lines done (for progress);
// and asks the host whether to stop.
class LineReporter : public noisepp::utils::BuilderCallback {
public:
    LineReporter(const Image& image, const RenderOptions& options,
                 std::function<void(int, int)> progress, int total)
        : mImage(image),
          mRowFinished(options.rowFinished),
          mCancelled(options.cancelled),
          mProgress(std::move(progress)),
          mTotal(total) {}

    bool stopRequested() override { return mCancelled && mCancelled(); }

    void progress(int linesDone) override {
        if (mProgress)
            mProgress(linesDone, mTotal);
    }
    void lineFinished(const noisepp::TextureColor* row) override {
        if (!mRowFinished)
            return;
        const auto* first = reinterpret_cast<const noisepp::TextureColor*>(mImage.GetConstArray());
        const auto line = static_cast<int>((row - first) / mImage.GetSizeX());
        mRowFinished(mImage, mImage.GetSizeY() - 1 - line);  // image rows count from the bottom
    }

private:
    const Image& mImage;
    const std::function<void(const Image&, int)>& mRowFinished;
    const std::function<bool()>& mCancelled;
    std::function<void(int, int)> mProgress;
    int mTotal;
};

}  // namespace

ImageRender2DTextureNode::ImageRender2DTextureNode()
    : RenderNode(CatalogueEntry("ImageRender2DTextureNode")) {
    using namespace texture;
    number(kStartX, "start_x", 0.0, -10000.0, 10000.0, kStartStep, 2,
           "Texture-space x of the image's left edge.")
        .DeclareOn(*this, mAttributes);
    number(kStartY, "start_y", 0.0, -10000.0, 10000.0, kStartStep, 2,
           "Texture-space y of the image's top edge.")
        .DeclareOn(*this, mAttributes);
    number(kStartZ, "start_z", 0.0, -10000.0, 10000.0, kStartStep, 2,
           "Depth of the slice through the texture; change it for a related variation.")
        .DeclareOn(*this, mAttributes);
    point(kRange, "range", Point{1.0, 1.0}, 0.0, 8000.0, 1.0, 2,
          "Texture-space width and height the image covers; larger values zoom out.")
        .Grouped({"range_x", "range_y"})
        .DeclareOn(*this, mAttributes);
    boolean(kSeamless, "seamless", false, "Blends the edges so that the image tiles seamlessly.")
        .DeclareOn(*this, mAttributes);
    UpdateInplugsAndOutplugs();
}

void ImageRender2DTextureNode::Render(unsigned outplug, Value** inputs, const PixelFrame& frame) {
    const auto startX = static_cast<float>(texture::readNumber(*this, inputs, kStartX));
    const auto startY = static_cast<float>(texture::readNumber(*this, inputs, kStartY));
    const auto startZ = static_cast<float>(texture::readNumber(*this, inputs, kStartZ));
    const Point range = texture::readPoint(*this, inputs, kRange);
    const auto rangeX = static_cast<float>(range.x);
    const auto rangeY = static_cast<float>(range.y);
    const bool seamless = texture::readBool(*this, inputs, kSeamless);
    // A host may ask for the texture rectangle at another size than the frame's, and for a
    // window of that image only (renders beyond the frame's limit, exact tiles).
    const RenderOptions options = GetRenderOptions();
    PixelFrame whole = frame;
    if (options.width > 0 && options.height > 0) {
        whole.width = options.width;
        whole.height = options.height;
    }
    if (!FitsHost(outplug, whole))
        return;
    RenderOptions::Window window = options.window;
    if (window.IsEmpty())
        window = {0, 0, whole.width, whole.height};
    if (window.x0 < 0 || window.y0 < 0 || window.x1 > whole.width || window.y1 > whole.height) {
        SetState(outplug, kStateError,
                 "The render window lies outside the " + std::to_string(whole.width) + " x " +
                     std::to_string(whole.height) + " image.");
        return;
    }

    const texture::TextureInput texture(*this, inputs, kTextureInput);
    PublishNewImage(window.Width(), window.Height());
    Image* image = GetImage();
    Timer timer;
    timer.StartTimer();

    if (texture.module() == nullptr) {
        const float opaqueBlack[4] = {0.0f, 0.0f, 0.0f, 1.0f};
        image->Fill(opaqueBlack);
    } else {
        const std::size_t pixels =
            static_cast<std::size_t>(window.Width()) * static_cast<std::size_t>(window.Height());
        // The builder writes straight into the image: its pixels are four floats in the
        // colour's order, rows bottom-up like the plane's lines, so no serial copy follows the
        // parallel render. An empty image still gets a destination, so that the builder reports
        // the empty size rather than a missing destination.
        static_assert(sizeof(noisepp::TextureColor) == 4 * sizeof(float) &&
                      std::is_standard_layout_v<noisepp::TextureColor>);
        noisepp::TextureColor empty;
        noisepp::TextureColor* destination =
            pixels > 0 ? reinterpret_cast<noisepp::TextureColor*>(image->GetArray()) : &empty;
        noisepp::utils::PlaneBuilder builder;
        builder.setModule(texture.module());
        builder.setDestination(destination);
        builder.setSize(whole.width, whole.height);
        // The window counts rows from the top; the plane's lines, like the image's rows, from
        // the bottom.
        if (whole.width > 0 && whole.height > 0)
            builder.setWindow(window.x0, whole.height - window.y1, window.x1,
                              whole.height - window.y0);
        const float upperX = startX + std::max(kMinimumRange, rangeX);
        const float upperY = startY + std::max(kMinimumRange, rangeY);
        builder.setBounds(startX, startY, upperX, upperY);
        builder.setZValue(startZ);
        builder.setSeamless(seamless);
        builder.setPeriodic(options.tileable);
        builder.setThreadCount(options.threads);
        auto progress = ProgressByBands(options, window.Height());
        if ((options.rowFinished || options.cancelled || progress) && pixels > 0)
            builder.setCallback(
                new LineReporter(*image, options, std::move(progress), window.Height()));
        try {
            builder.build();
        } catch (const noisepp::NotPeriodicException& e) {
            SetState(outplug, kStateError, std::string("Cannot render tileable: ") + e.what());
            ReleaseImage();
            return;
        } catch (const noisepp::BuildStoppedException&) {
            // The host asked to stop; it renders the node again when it needs the image.
            Log::Info("%s - Render stopped after %d ms", LogPrefix().c_str(), timer.StopTimer());
            ReleaseImage();
            return;
        }
        for (const std::string& note : builder.getNotes())
            Log::Info("%s - Tileable: %s", LogPrefix().c_str(), note.c_str());
    }
    Log::Info("%s - Render image: %d ms", LogPrefix().c_str(), timer.StopTimer());
}
