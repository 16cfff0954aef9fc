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
    return pipeline->addElement(this, new ImageElement3D(mWidth, mHeight, mTable, mFlags));
}

void ImageModule::write(OutStream& stream) const {
    stream.writeInt32(static_cast<std::int32_t>(mFlags));
}

void ImageModule::read(InStream& stream) {
    mFlags = static_cast<std::uint32_t>(stream.readInt32());
}

}  // namespace noisepp
