#include "python/native/ImageArrays.h"

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include "host/Image.h"
#include "host/ImageStreamWriter.h"

namespace py = pybind11;

py::array_t<float> ViewImage(Image* image) {
    image->AddRef();
    py::capsule owner(image, [](void* held) { static_cast<Image*>(held)->Release(); });
    const auto width = static_cast<py::ssize_t>(image->GetSizeX());
    const auto height = static_cast<py::ssize_t>(image->GetSizeY());
    const auto pixel = static_cast<py::ssize_t>(4 * sizeof(float));
    float* top = image->GetArray() + (height > 0 ? (height - 1) * width * 4 : 0);
    return py::array_t<float>({height, width, py::ssize_t{4}},
                              {-width * pixel, pixel, static_cast<py::ssize_t>(sizeof(float))}, top,
                              owner);
}

py::array_t<float> ReadImageFile(const std::string& path) {
    std::string error;
    Image* image = nullptr;
    {
        py::gil_scoped_release unlocked;
        image = Image::ReadFile(path, &error);
    }
    if (image == nullptr)
        throw std::invalid_argument(error);
    return ViewImage(image);
}

Image* ImageFromArray(const py::array_t<float>& pixels, const std::string& what) {
    if (pixels.ndim() != 3 || (pixels.shape(2) != 4 && pixels.shape(2) != 3))
        throw std::invalid_argument(what +
                                    ": expected an array of shape (height, width, 4) or "
                                    "(height, width, 3)");
    const auto height = static_cast<int>(pixels.shape(0));
    const auto width = static_cast<int>(pixels.shape(1));
    const py::ssize_t channels = pixels.shape(2);
    auto in = pixels.unchecked<3>();
    Image* image = new Image(width, height);
    image->AddRef();
    float* out = image->GetArray();
    for (int row = 0; row < height; ++row)
        for (int column = 0; column < width; ++column) {
            float* pixel = out + (static_cast<std::size_t>(height - 1 - row) * width + column) * 4;
            for (py::ssize_t c = 0; c < 4; ++c)
                pixel[c] = c < channels ? in(row, column, c) : 1.0f;
        }
    return image;
}

namespace {

FileCompression ParseCompression(const std::string& path, const std::string& text) {
    FileCompression compression;
    if (!FileCompression::Parse(text, &compression))
        throw std::invalid_argument("cannot write image '" + path +
                                    "': compression must be 0 to 9, none, fast or small, not '" +
                                    text + "'");
    return compression;
}

}  // namespace

void WriteImageFile(const std::string& path, py::array_t<float> pixels, int bits,
                    const std::string& compression) {
    const FileCompression packing = ParseCompression(path, compression);
    Image* image = ImageFromArray(pixels, "cannot write image '" + path + "'");
    std::string error;
    bool written = false;
    {
        py::gil_scoped_release unlocked;
        written = image->WriteFile(path, bits, &error, packing);
    }
    image->Release();
    if (!written)
        throw std::invalid_argument(error);
}

ArrayStreamWriter::ArrayStreamWriter(const std::string& path, int width, int height, int bits,
                                     bool tiled, int tileSide, const std::string& compression)
    : mPath(path) {
    const std::filesystem::path target(path);
    mTemporary = (target.parent_path() /
                  ("." + target.filename().string() + ".tmp-" + std::to_string(getpid())))
                     .string();
    ImageStreamOptions options;
    options.bits = bits;
    options.tiled = tiled;
    options.tileSide = tileSide;
    options.compression = ParseCompression(path, compression);
    std::string error;
    mWriter = ImageStreamWriter::Open(mTemporary, width, height, options, &error, path);
    if (mWriter == nullptr)
        throw std::invalid_argument(error);
}

ArrayStreamWriter::~ArrayStreamWriter() {
    if (mWriter != nullptr) {
        mWriter.reset();
        std::remove(mTemporary.c_str());
    }
}

void ArrayStreamWriter::Write(int x, int y, const py::array_t<float>& pixels) {
    if (mWriter == nullptr)
        throw std::invalid_argument("cannot write image '" + mPath + "': it is closed");
    Image* image = ImageFromArray(pixels, "cannot write image '" + mPath + "'");
    std::string error;
    bool written = false;
    {
        py::gil_scoped_release unlocked;
        written = mWriter->Write({x, y, image->GetSizeX(), image->GetSizeY()}, *image, &error);
    }
    image->Release();
    if (!written)
        throw std::invalid_argument(error);
}

void ArrayStreamWriter::Close() {
    if (mWriter == nullptr)
        return;
    std::string error;
    if (!mWriter->Close(&error))
        throw std::invalid_argument(error);
    mWriter.reset();
    std::error_code failed;
    std::filesystem::rename(mTemporary, mPath, failed);
    if (failed)
        throw std::invalid_argument("cannot write image '" + mPath + "': " + failed.message());
}
