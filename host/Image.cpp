#include "host/Image.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>

namespace {

std::atomic<int> maxSizeX{16384};
std::atomic<int> maxSizeY{16384};

std::size_t pixelCount(int sizeX, int sizeY) {
    if (sizeX < 0 || sizeY < 0)
        throw std::invalid_argument("an image cannot be " + std::to_string(sizeX) + " x " +
                                    std::to_string(sizeY) + " pixels");
    const auto x = static_cast<std::size_t>(sizeX);
    const auto y = static_cast<std::size_t>(sizeY);
    if (x != 0 && y > std::numeric_limits<std::size_t>::max() / 4 / x)
        throw std::length_error("an image of " + std::to_string(sizeX) + " x " +
                                std::to_string(sizeY) + " pixels does not fit in memory");
    return x * y;
}

std::uint8_t toByte(float value) {
    if (!(value > 0.0f))
        return 0;  // also NaN
    if (value >= 1.0f)
        return 255;
    return static_cast<std::uint8_t>(std::lround(value * 255.0f));
}

}  // namespace

Image::Image(int sizeX, int sizeY, unsigned colorMode, const float* data)
    : mSizeX(sizeX), mSizeY(sizeY), mColorMode(colorMode) {
    const std::size_t values = pixelCount(sizeX, sizeY) * 4;
    if (colorMode == kFloatRgbo) {
        mFloats.resize(values);  // zero from the allocator
        if (data != nullptr)
            std::copy(data, data + values, mFloats.begin());
    } else if (colorMode == kByteRgbo) {
        mBytes.resize(values);
        // In byte mode `data` points at the bytes, whatever its declared type.
        if (data != nullptr)
            std::memcpy(mBytes.data(), data, values);
    } else {
        throw std::invalid_argument("unknown image colour mode " + std::to_string(colorMode));
    }
}

Image::Image(const Image& source, unsigned colorMode)
    : Image(source.mSizeX, source.mSizeY, colorMode, nullptr) {
    mPinX = source.mPinX;
    mPinY = source.mPinY;
    if (source.mColorMode == kFloatRgbo && colorMode == kFloatRgbo) {
        mFloats = source.mFloats;
    } else if (source.mColorMode == kByteRgbo && colorMode == kByteRgbo) {
        mBytes = source.mBytes;
    } else if (colorMode == kFloatRgbo) {
        std::transform(source.mBytes.begin(), source.mBytes.end(), mFloats.begin(),
                       [](std::uint8_t b) { return static_cast<float>(b) / 255.0f; });
    } else {
        std::transform(source.mFloats.begin(), source.mFloats.end(), mBytes.begin(), toByte);
    }
}

void Image::AddRef() {
    mRefCount.fetch_add(1, std::memory_order_relaxed);
}

void Image::Release() {
    // A release of an image nobody retained (count 0) also deletes it.
    if (mRefCount.fetch_sub(1, std::memory_order_acq_rel) <= 1)
        delete this;
}

int Image::GetRefCount() const {
    return mRefCount.load(std::memory_order_relaxed);
}

float* Image::GetArray() {
    return mColorMode == kFloatRgbo ? mFloats.data() : nullptr;
}

const float* Image::GetConstArray() const {
    return mColorMode == kFloatRgbo ? mFloats.data() : nullptr;
}

std::uint8_t* Image::GetByteArray() {
    return mColorMode == kByteRgbo ? mBytes.data() : nullptr;
}

const std::uint8_t* Image::GetConstByteArray() const {
    return mColorMode == kByteRgbo ? mBytes.data() : nullptr;
}

void Image::Fill(const float* color) {
    if (mColorMode == kFloatRgbo) {
        for (std::size_t i = 0; i < mFloats.size(); i += 4)
            std::copy(color, color + 4, &mFloats[i]);
    } else {
        const std::uint8_t bytes[4] = {toByte(color[0]), toByte(color[1]), toByte(color[2]),
                                       toByte(color[3])};
        for (std::size_t i = 0; i < mBytes.size(); i += 4)
            std::copy(bytes, bytes + 4, &mBytes[i]);
    }
}

void Image::SetPin(int x, int y) {
    mPinX = x;
    mPinY = y;
}

int Image::GetMaxSizeX() {
    return maxSizeX.load(std::memory_order_relaxed);
}

int Image::GetMaxSizeY() {
    return maxSizeY.load(std::memory_order_relaxed);
}

void Image::SetMaxSize(int sizeX, int sizeY) {
    if (sizeX < 1 || sizeY < 1)
        throw std::invalid_argument("the maximum image size must be at least 1 x 1, not " +
                                    std::to_string(sizeX) + " x " + std::to_string(sizeY));
    maxSizeX.store(sizeX, std::memory_order_relaxed);
    maxSizeY.store(sizeY, std::memory_order_relaxed);
}

void ImageRgboSampler::Set(Image* image, int sampler, int mode) {
    if (image != nullptr)
        image->AddRef();
    if (mImage != nullptr)
        mImage->Release();
    mImage = image;
    mSampler = sampler;
    mMode = mode;
}

ImageRgboSampler::~ImageRgboSampler() {
    if (mImage != nullptr)
        mImage->Release();
}

Rgbo ImageRgboSampler::GetGradientSample(double t, int row, int reserved) const {
    (void)reserved;
    if (mImage == nullptr || mImage->GetSizeX() <= 0 || mImage->GetSizeY() <= 0)
        return Rgbo{0.0, 0.0, 0.0, 0.0};
    const int width = mImage->GetSizeX();
    // Nearest column; t below 0 (and NaN) clamps to the first, t at or beyond 1 to the last.
    const double scaled = std::floor(t * width);
    const int column = scaled >= 0.0 ? static_cast<int>(std::min<double>(width - 1, scaled)) : 0;
    const int y = std::clamp(row, 0, mImage->GetSizeY() - 1);
    const std::size_t at = (static_cast<std::size_t>(y) * width + column) * 4;
    Rgbo color;
    if (mImage->GetColorMode() == Image::kFloatRgbo) {
        const float* p = mImage->GetConstArray() + at;
        color = {p[0], p[1], p[2], p[3]};
    } else {
        const std::uint8_t* p = mImage->GetConstByteArray() + at;
        color = {p[0] / 255.0, p[1] / 255.0, p[2] / 255.0, p[3] / 255.0};
    }
    if (mMode != 1)
        color.opacity = 1.0;
    return color;
}
