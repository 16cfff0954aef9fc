// Image::ReadFile and Image::WriteFile: picture files through the image library.

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "host/AtomicFile.h"
#include "host/FileEncoding.h"
#include "host/Image.h"
#include "host/ImageLibraryError.h"
#include "host/PngOutput.h"

namespace {

namespace fs = std::filesystem;

std::string lowerExtension(const std::string& path) {
    std::string extension = fs::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension;
}

bool fail(std::string* error, const std::string& message) {
    if (error != nullptr)
        *error = message;
    return false;
}

}  // namespace

Image* Image::ReadFile(const std::string& path, std::string* error) {
    std::error_code code;
    if (!fs::exists(path, code)) {
        fail(error, "cannot read image '" + path + "': no such file");
        return nullptr;
    }
    // Keep colour and opacity exactly as stored: without this hint the library premultiplies
    // colour by opacity for formats that store them apart (PNG, TIFF).
    OIIO::ImageSpec config;
    config.attribute("oiio:UnassociatedAlpha", 1);
    auto input = OIIO::ImageInput::open(path, &config);
    if (!input) {
        fail(error, "cannot read image '" + path + "': " + ImageLibraryError({}));
        return nullptr;
    }
    const OIIO::ImageSpec& spec = input->spec();
    if (spec.deep || spec.depth > 1) {
        fail(error, "cannot read image '" + path + "': deep and volume images are not supported");
        return nullptr;
    }
    const int width = spec.width;
    const int height = spec.height;
    const int channels = spec.nchannels;
    if (width <= 0 || height <= 0 || channels <= 0) {
        fail(error, "cannot read image '" + path + "': the file holds no pixels");
        return nullptr;
    }
    const auto declared = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
    if (declared > Image::kMaxFilePixels) {
        fail(error, "cannot read image '" + path + "': " + std::to_string(width) + " x " +
                        std::to_string(height) + " pixels is more than the limit of " +
                        std::to_string(Image::kMaxFilePixels) + " (8192 x 8192)");
        return nullptr;
    }
    if (channels > 16) {
        fail(error, "cannot read image '" + path + "': " + std::to_string(channels) +
                        " channels is more than the limit of 16");
        return nullptr;
    }
    std::vector<float> pixels(static_cast<std::size_t>(width) * height * channels);
    // Integer formats arrive scaled to 0...1.
    if (!input->read_image(0, 0, 0, channels, OIIO::TypeDesc::FLOAT, pixels.data())) {
        fail(error, "cannot read image '" + path + "': " + ImageLibraryError(input->geterror()));
        return nullptr;
    }
    input->close();

    int red = 0, green = 0, blue = 0, opacity = -1;
    if (channels == 2) {
        opacity = 1;  // grey and opacity
    } else if (channels >= 3) {
        green = 1;
        blue = 2;
        if (channels >= 4)
            opacity = spec.alpha_channel >= 0 ? spec.alpha_channel : 3;
    }
    auto* image = new Image(width, height, kFloatRgbo, nullptr);
    float* out = image->GetArray();
    for (int fileRow = 0; fileRow < height; ++fileRow) {
        // Files store the top row first; row 0 of an image is the bottom row.
        const int row = height - 1 - fileRow;
        for (int x = 0; x < width; ++x) {
            const float* in = &pixels[(static_cast<std::size_t>(fileRow) * width + x) * channels];
            float* pixel = &out[(static_cast<std::size_t>(row) * width + x) * 4];
            pixel[0] = in[red];
            pixel[1] = in[green];
            pixel[2] = in[blue];
            pixel[3] = opacity >= 0 ? in[opacity] : 1.0f;
        }
    }
    return image;
}

bool Image::WriteFile(const std::string& path, int bits, std::string* error,
                      const FileCompression& compression) const {
    FileLayout layout;
    layout.bits = bits;
    layout.compression = compression;
    return WriteFile(path, layout, error, true);
}

bool Image::WriteFile(const std::string& path, const FileLayout& layout, std::string* error) const {
    return WriteFile(path, layout, error, false);
}

bool Image::WriteFile(const std::string& path, const FileLayout& layout, std::string* error,
                      bool bitsOfIntegerFormatsOnly) const {
    const std::string where = "cannot write image '" + path + "': ";
    if (mSizeX <= 0 || mSizeY <= 0)
        return fail(error, where + "the image is empty (" + std::to_string(mSizeX) + " x " +
                               std::to_string(mSizeY) + " pixels)");
    auto output = PngOutput::WriterFor(path);
    if (!output) {
        const std::string extension = lowerExtension(path);
        ImageLibraryError({});
        return fail(error, where + (extension.empty()
                                        ? std::string("the name has no extension to pick a format")
                                        : "no image format is known for '" + extension + "'"));
    }

    const std::string format = output->format_name();
    FileLayout resolved = layout;
    if (bitsOfIntegerFormatsOnly && (format == "openexr" || format == "hdr"))
        resolved.bits = 0;
    FileEncoding encoding;
    std::string why;
    if (!FileEncoding::Resolve(format, output->supports("alpha"), resolved, &encoding, &why))
        return fail(error, where + why);
    const OIIO::ImageSpec spec = encoding.Spec(mSizeX, mSizeY);

    // Top row first, each pixel as the file stores it.
    const Image* source = this;
    Image* converted = nullptr;
    if (mColorMode != kFloatRgbo)
        source = converted = new Image(*this, kFloatRgbo);
    const float* in = source->GetConstArray();
    const std::size_t pixelBytes = encoding.PixelBytes();
    std::vector<unsigned char> bytes(static_cast<std::size_t>(mSizeX) * mSizeY * pixelBytes);
    unsigned char* out = bytes.data();
    for (int fileRow = 0; fileRow < mSizeY; ++fileRow) {
        const float* pixel = &in[static_cast<std::size_t>(mSizeY - 1 - fileRow) * mSizeX * 4];
        for (int x = 0; x < mSizeX; ++x, pixel += 4, out += pixelBytes)
            encoding.Encode(pixel, out);
    }
    if (converted != nullptr)
        converted->Release();
    const void* data = bytes.data();
    const OIIO::TypeDesc dataType = encoding.DataType();

    // Formats that can encode into memory do, and the bytes go to the disk through checked
    // calls: the image library neither sees the disk filling up nor can end the process over
    // it. The others write a temporary file that is flushed and checked before the rename.
    try {
        if (output->supports("ioproxy")) {
            std::vector<unsigned char> encoded;
            OIIO::Filesystem::IOVecOutput memory(encoded);
            if (!output->set_ioproxy(&memory) || !output->open(path, spec) ||
                !output->write_image(dataType, data) || !output->close())
                return fail(error, where + ImageLibraryError(output->geterror()));
            AtomicFile::Write(path, std::string_view(reinterpret_cast<const char*>(encoded.data()),
                                                     encoded.size()));
        } else {
            AtomicFile file(path);
            if (!output->open(file.GetTemporaryPath(), spec) ||
                !output->write_image(dataType, data) || !output->close())
                return fail(error, where + ImageLibraryError(output->geterror()));
            file.Commit();
        }
    } catch (const FileError& e) {
        return fail(error, e.what());
    }
    return true;
}
