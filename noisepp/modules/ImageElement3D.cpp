#include "noisepp/modules/ImageElement3D.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "noisepp/modules/ImageModule.h"

namespace noisepp {
namespace {

// Pixel bounds round half down: a bound exactly between two pixels selects the lower one.
double roundHalfDown(double value) {
    const double lower = std::floor(value);
    return value - lower > 0.5 ? std::ceil(value) : lower;
}

// The covered pixel range of one direction as at most two runs of whole pixels.
struct Runs {
    std::int64_t first[2] = {0, 0};
    std::int64_t last[2] = {0, 0};
    int count = 0;

    // Ends are limited to the image here, so the table is never read outside it. A run that
    // starts at the size itself (a coordinate of exactly 1 on a repeating image) is empty
    // and contributes neither colour nor count; starts below 0 come only from footprints
    // wider than the image on one side and are raised to 0.
    void add(double start, double end, double size) {
        start = std::max(start, 0.0);
        end = std::min(end, size - 1.0);
        if (start > end)
            return;
        first[count] = static_cast<std::int64_t>(start);
        last[count] = static_cast<std::int64_t>(end);
        ++count;
    }
};

// Splits [low, high] (pixel units, already rounded) into runs inside 0 ... size - 1.
Runs splitRuns(double low, double high, double size, bool repeat) {
    Runs runs;
    if (repeat && low < 0.0) {
        runs.add(size + low, size - 1.0, size);
        runs.add(0.0, high, size);
    } else if (repeat && high >= size) {
        runs.add(low, size - 1.0, size);
        runs.add(0.0, high - size, size);
    } else {
        // x = 1.0 on a non-repeating image rounds to the size itself; it means the last pixel.
        runs.add(std::min(low, size - 1.0), high, size);
    }
    return runs;
}

}  // namespace

ImageElement3D::ImageElement3D(std::uint32_t width, std::uint32_t height, const double* table,
                               std::uint32_t flags, double scaleX, double scaleY)
    : mWidth(width),
      mHeight(height),
      mTable(table),
      mFlags(flags),
      mScaleX(scaleX),
      mScaleY(scaleY) {}

TextureColor ImageElement3D::getValue(double x, double y, double /*z*/) const {
    x = x * mScaleX;
    y = y * mScaleY;
    if (mTable == nullptr || mWidth == 0 || mHeight == 0)
        return {0.0f, 0.0f, 0.0f, 1.0f};
    if ((mFlags & ImageModule::kRepeatX) == 0 && (x < 0.0 || x > 1.0))
        return {};
    if ((mFlags & ImageModule::kRepeatY) == 0 && (y < 0.0 || y > 1.0))
        return {};
    return getAreaSample(x, y, 0.0, 0.0, mFlags);
}

TextureColor ImageElement3D::getAreaSample(double x, double y, double footprintWidth,
                                           double footprintHeight, std::uint32_t flags) const {
    if (mTable == nullptr || mWidth == 0 || mHeight == 0)
        return {0.0f, 0.0f, 0.0f, 1.0f};
    const bool repeatX = (flags & ImageModule::kRepeatX) != 0;
    const bool repeatY = (flags & ImageModule::kRepeatY) != 0;
    // Written as "greater than" so that a NaN size counts as 0 like a negative one.
    const double hx = (footprintWidth > 0.0 ? footprintWidth : 0.0) * 0.5;
    const double hy = (footprintHeight > 0.0 ? footprintHeight : 0.0) * 0.5;

    // Only a footprint wholly outside the unit range is brought back into it; one that
    // straddles an edge keeps its place and is split into runs on both sides below.
    if (repeatX && (x + hx < 0.0 || x - hx > 1.0) && (x > 1.0 || x < 0.0))
        x -= std::floor(x);
    if (repeatY && (y + hy < 0.0 || y - hy > 1.0) && (y > 1.0 || y < 0.0))
        y -= std::floor(y);

    const double width = mWidth;
    const double height = mHeight;
    double x0 = width * x - width * hx;
    double x1 = width * x + width * hx;
    double y0 = height * y - height * hy;
    double y1 = height * y + height * hy;
    if (std::isnan(x0) || std::isnan(x1) || std::isnan(y0) || std::isnan(y1))
        return {};
    if (!repeatX && (x1 < 0.0 || x0 > width))
        return {};
    if (!repeatY && (y1 < 0.0 || y0 > height))
        return {};

    // The bounds stay doubles (whole numbers after rounding) until they are limited to the
    // image, so absurd coordinates cannot overflow an integer conversion.
    x0 = roundHalfDown(x0);
    x1 = roundHalfDown(x1);
    y0 = roundHalfDown(y0);
    y1 = roundHalfDown(y1);
    if (x0 < 0.0 && x1 >= width) {
        x0 = 0.0;
        x1 = width - 1.0;
    }
    if (y0 < 0.0 && y1 >= height) {
        y0 = 0.0;
        y1 = height - 1.0;
    }
    // Taken before the footprint is cut to a non-repeating image: opacity fades at the edge.
    const double footprintCount = (y1 - y0 + 1.0) * (x1 - x0 + 1.0);
    if (!repeatX) {
        x0 = std::max(x0, 0.0);
        x1 = std::min(x1, width - 1.0);
    }
    if (!repeatY) {
        y0 = std::max(y0, 0.0);
        y1 = std::min(y1, height - 1.0);
    }

    const Runs columns = splitRuns(x0, x1, width, repeatX);
    const Runs rows = splitRuns(y0, y1, height, repeatY);
    const auto rowStride = static_cast<std::int64_t>(mWidth);
    // T(row, column, channel), with row or column -1 standing for an empty sum.
    const auto table = [&](std::int64_t row, std::int64_t column, int channel) {
        if (row < 0 || column < 0)
            return 0.0;
        return mTable[static_cast<std::size_t>((row * rowStride + column) * 4 + channel)];
    };

    float accumulator[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    std::int64_t covered = 0;
    for (int i = 0; i < columns.count; ++i) {
        const std::int64_t c0 = columns.first[i];
        const std::int64_t c1 = columns.last[i];
        for (int j = 0; j < rows.count; ++j) {
            const std::int64_t r0 = rows.first[j];
            const std::int64_t r1 = rows.last[j];
            for (int channel = 0; channel < 4; ++channel) {
                const double sum = table(r1, c1, channel) - table(r0 - 1, c1, channel) -
                                   table(r1, c0 - 1, channel) + table(r0 - 1, c0 - 1, channel);
                accumulator[channel] += static_cast<float>(sum);
            }
            covered += (c1 - c0 + 1) * (r1 - r0 + 1);
        }
    }
    if (covered == 0)
        return {};

    const float inverseCovered = 1.0f / static_cast<float>(covered);
    return {accumulator[0] * inverseCovered, accumulator[1] * inverseCovered,
            accumulator[2] * inverseCovered, accumulator[3] / static_cast<float>(footprintCount)};
}

}  // namespace noisepp
