#include "noisepp/modules/ImageModule.h"

#include "noisepp/core/Exception.h"
#include "noisepp/core/Stream.h"
#include "noisepp/modules/ImageElement3D.h"

namespace noisepp {

ImageModule::ImageModule() : Module(0) {}

void ImageModule::setImage(std::uint32_t width, std::uint32_t height, const double* table) {
    NOISEPP_REQUIRE(table == nullptr || (width > 0 && height > 0), "(width, height)");
    mWidth = width;
    mHeight = height;
    mTable = table;
}

void ImageModule::clearImage() {
    mWidth = 0;
    mHeight = 0;
    mTable = nullptr;
}

std::size_t ImageModule::addToPipeline(Pipeline3D* pipeline) const {
    const auto& period = pipeline->getPeriodicity().period;
    constexpr const char* kNode = "Image Texture";
    if (period[0] > 0.0 && (mFlags & kRepeatX) == 0)
        throw NotPeriodicException(kNode, "the picture does not repeat along x; turn tile_x on");
    if (period[1] > 0.0 && (mFlags & kRepeatY) == 0)
        throw NotPeriodicException(kNode, "the picture does not repeat along y; turn tile_y on");
    // The image covers one unit square: a repeating texture fits whole copies in its period.
    const PeriodicLattice copies = compileLattice(1.0, *pipeline, kNode);
    return pipeline->addElement(this, new ImageElement3D(mWidth, mHeight, mTable, mFlags,
                                                         copies.frequency(0), copies.frequency(1)));
}

void ImageModule::write(OutStream& stream) const {
    stream.writeInt32(static_cast<std::int32_t>(mFlags));
}

void ImageModule::read(InStream& stream) {
    mFlags = static_cast<std::uint32_t>(stream.readInt32());
}

}  // namespace noisepp
