#pragma once

#include <pybind11/numpy.h>

#include <memory>
#include <string>

class Image;

/// Host images as numpy arrays of shape (height, width, 4), float32, row 0 at the top.
///
/// The host keeps row 0 at the bottom; a view with a negative row stride turns it over
/// without a copy.

/// A view on `image`'s own pixels (colour mode 0) that holds one reference to the image for
/// as long as the array, or any view of it, lives.
pybind11::array_t<float> ViewImage(Image* image);

/// Reads a picture file, converted to four float channels as the "Image File" node reads it.
/// Throws std::invalid_argument with the host's message ("cannot read image 'a.png': ...").
pybind11::array_t<float> ReadImageFile(const std::string& path);

/// A new image (one reference for the caller) holding a (height, width, 4) or (height, width,
/// 3) array turned the host's way up; a missing opacity is 1. Throws std::invalid_argument
/// naming `what` for another shape.
Image* ImageFromArray(const pybind11::array_t<float>& pixels, const std::string& what);

/// Writes a (height, width, 4) or (height, width, 3) array, row 0 at the top, by the file's
/// extension as the command writes images (.exr float, .png/.tif 8 or 16 bits, `compression`
/// as the command's --compression), atomically. Throws std::invalid_argument for a bad shape,
/// a compression the format does not take or a failed write.
void WriteImageFile(const std::string& path, pybind11::array_t<float> pixels, int bits,
                    const std::string& compression);

class ImageStreamWriter;

/// A picture file written from blocks of pixels as they arrive, without the whole image ever
/// in memory: tiled OpenEXR or TIFF files take each tile at once. The file appears under its
/// name only when complete (it is written beside it and renamed on close).
class ArrayStreamWriter {
public:
    /// Throws std::invalid_argument when the file cannot be created.
    ArrayStreamWriter(const std::string& path, int width, int height, int bits, bool tiled,
                      int tileSide, const std::string& compression);
    ~ArrayStreamWriter();
    /// Writes a block whose top-left pixel is (x, y), rows counted from the top.
    void Write(int x, int y, const pybind11::array_t<float>& pixels);
    /// Completes the file; throws std::invalid_argument when pixels are missing.
    void Close();

private:
    std::string mPath;
    std::string mTemporary;
    std::unique_ptr<ImageStreamWriter> mWriter;
};
