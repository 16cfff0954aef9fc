#pragma once

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "host/FileLayout.h"
#include "host/HostTypes.h"

/// A reference-counted picture.
///
/// Colour mode 0 holds four floats per pixel (red, green, blue, opacity); colour mode 1 holds
/// four bytes per pixel in the same order. Rows are stored in order row 0, row 1, ...; row 0
/// is the bottom row (the lowest texture y and the lowest v). Files are written top row first
/// and read back into the same orientation.
///
/// A new image has reference count 0; holders call AddRef and Release, and the image deletes
/// itself when the count drops to zero.
class Image {
public:
    enum ColorMode : unsigned { kFloatRgbo = 0, kByteRgbo = 1 };

    /// A sizeX x sizeY image of the colour mode, copied from `data` when not null (in the
    /// mode's layout), otherwise cleared to zero.
    Image(int sizeX, int sizeY, unsigned colorMode = kFloatRgbo, const float* data = nullptr);
    /// A copy of `source` converted to `colorMode` (bytes scale to 0...1 and back, clamped).
    Image(const Image& source, unsigned colorMode);
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;

    void AddRef();
    /// Drops one reference; deletes the image at zero.
    void Release();
    int GetRefCount() const;

    int GetSizeX() const { return mSizeX; }
    int GetSizeY() const { return mSizeY; }
    unsigned GetColorMode() const { return mColorMode; }
    /// Channels per pixel: 4 in both modes.
    int GetNumChannels() const { return 4; }

    /// The float pixels (mode 0; null in other modes).
    float* GetArray();
    const float* GetConstArray() const;
    /// The byte pixels (mode 1; null in other modes).
    std::uint8_t* GetByteArray();
    const std::uint8_t* GetConstByteArray() const;

    /// Sets every pixel to `color` (four values in the mode's channel order, as floats 0...1).
    void Fill(const float* color);

    /// Where the image sits on the host's canvas.
    void SetPin(int x, int y);
    int GetPinX() const { return mPinX; }
    int GetPinY() const { return mPinY; }

    /// The largest size the host accepts for a new output image (16384 unless set).
    static int GetMaxSizeX();
    static int GetMaxSizeY();
    static void SetMaxSize(int sizeX, int sizeY);

    /// The most pixels ReadFile accepts (8192 x 8192); larger files are refused from their
    /// header, before any pixel is decoded.
    static constexpr std::uint64_t kMaxFilePixels = 8192ull * 8192ull;

    /// Reads a picture file into a new mode-0 image (count 0), converted to four float
    /// channels: one channel gives grey, two grey and opacity, a missing opacity is 1,
    /// integer formats scale to 0...1. Returns null and sets `error` on failure.
    static Image* ReadFile(const std::string& path, std::string* error);
    /// Writes the image by extension: .exr float32 RGBA; .png/.tif 8 bits (16 with bits = 16),
    /// channels clamped to 0...1 and scaled. Replaces the target atomically (see AtomicFile),
    /// so a failed write leaves an existing file intact and no temporary file. False and
    /// `error` naming the file and the cause ("disk full", "permission denied") on failure.
    /// `compression` trades writing time for size, never changing the pixels.
    bool WriteFile(const std::string& path, int bits, std::string* error,
                   const FileCompression& compression = {}) const;
    /// Writes the image as `layout` asks (bits and channels), otherwise as WriteFile above; a
    /// layout the format cannot hold is refused before any file is made.
    bool WriteFile(const std::string& path, const FileLayout& layout, std::string* error) const;

private:
    ~Image() = default;
    bool WriteFile(const std::string& path, const FileLayout& layout, std::string* error,
                   bool bitsOfIntegerFormatsOnly) const;

    /// Takes the pixels zeroed from the system (calloc), which hands large blocks out as
    /// untouched zero pages, and leaves new elements as they are: the pages of a large image
    /// are then first touched by the render threads that fill them, in parallel, instead of
    /// being cleared on one thread before the render.
    template <typename T>
    struct ZeroedAllocator {
        using value_type = T;
        ZeroedAllocator() = default;
        template <typename U>
        ZeroedAllocator(const ZeroedAllocator<U>&) {}
        T* allocate(std::size_t count) {
            if (void* memory = std::calloc(count, sizeof(T)))
                return static_cast<T*>(memory);
            throw std::bad_alloc();
        }
        void deallocate(T* memory, std::size_t) { std::free(memory); }
        template <typename U>
        void construct(U* at) {
            ::new (static_cast<void*>(at)) U;
        }
        template <typename U, typename... Args>
        void construct(U* at, Args&&... args) {
            ::new (static_cast<void*>(at)) U(std::forward<Args>(args)...);
        }
        bool operator==(const ZeroedAllocator&) const { return true; }
    };

    std::atomic<std::int32_t> mRefCount{0};
    int mSizeX;
    int mSizeY;
    unsigned mColorMode;
    int mPinX = 0;
    int mPinY = 0;
    std::vector<float, ZeroedAllocator<float>> mFloats;
    std::vector<std::uint8_t, ZeroedAllocator<std::uint8_t>> mBytes;
};

/// Reads colours out of an image as a one-dimensional gradient along its bottom row.
class ImageRgboSampler {
public:
    ImageRgboSampler() = default;
    /// Samples `image` (retained while set); `sampler` 0 is nearest; `mode` 1 reads colours
    /// with opacity.
    void Set(Image* image, int sampler, int mode);
    ~ImageRgboSampler();
    ImageRgboSampler(const ImageRgboSampler&) = delete;
    ImageRgboSampler& operator=(const ImageRgboSampler&) = delete;

    /// The colour of row `row` (0 here) at column min(W - 1, floor(t * W)), t below 0 giving
    /// column 0; (0, 0, 0, 0) without an image.
    Rgbo GetGradientSample(double t, int row, int reserved) const;

private:
    Image* mImage = nullptr;
    int mSampler = 0;
    int mMode = 0;
};
