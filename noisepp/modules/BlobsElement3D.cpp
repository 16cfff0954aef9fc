#include "noisepp/modules/BlobsElement3D.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "noisepp/math/ColorBlend.h"
#include "noisepp/math/NoiseTables.h"
#include "noisepp/modules/CellIndex.h"
#include "noisepp/modules/CellSlabs.h"
#include "noisepp/simd/BlobKernel.h"

namespace noisepp {

namespace {

// Bit masks that pick and recombine bits of a cell's eight corner bytes into its blob's
// offsets, radius and presence (m0 ... m25).
constexpr std::array<std::uint32_t, 26> m = {1,   2,  4,   8,   16, 32,  64,  128, 3,
                                             12,  48, 192, 129, 66, 36,  24,  5,   10,
                                             160, 80, 15,  240, 60, 195, 204, 51};
constexpr double kInverse255 = 0.00392156862745098;
/// The radius of a cell without a blob: no distance is below it.
constexpr double kNoBlob = std::numeric_limits<double>::quiet_NaN();

/// density x 255 rounded to a whole number, an exact half going down. Presence bytes are
/// 0..255, so a threshold beyond the 32-bit range saturates instead of wrapping: a huge density
/// still means a blob in every cell, and not a number means none.
std::int32_t densityThreshold(double density) {
    const double x = density * 255.0;
    const double r = std::floor(x);
    const double rounded = x - r > 0.5 ? std::ceil(x) : r;
    if (!(rounded > -2147483648.0))
        return std::numeric_limits<std::int32_t>::min();
    if (rounded > 2147483647.0)
        return std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(rounded);
}

/// Blob centres x, y and z, radii and squared radii of the blocks of 28 neighbouring cells at
/// once with large interaction, of 84 without (about 31 KiB).
using BlobSlabList = CellSlabs<5, 32 * 25>;

/// 6r^5 - 15r^4 + 10r^3, evaluated term by term as written.
double quintic(double r) {
    const double r3 = r * r * r;
    const double r4 = r3 * r;
    const double r5 = r4 * r;
    return 6.0 * r5 - 15.0 * r4 + 10.0 * r3;
}

}  // namespace

BlobsElement3D::BlobsElement3D(const Settings& settings)
    : mLattice(settings.lattice),
      mColorA(settings.colorA),
      mColorB(settings.colorB),
      mDensityThreshold(densityThreshold(settings.density)),
      mReach(settings.largeInteraction ? 2 : 1),
      mSeed(static_cast<std::uint32_t>(settings.seed)),
      mPermutation(kPermutationTable) {
    // A blob that may reach two cells away also gets twice the radius.
    const double radiusFactor = settings.largeInteraction ? 2.0 : 1.0;
    mMinRadius = settings.minRadius * radiusFactor;
    mSpread = settings.maxRadius * radiusFactor - mMinRadius;
}

BlobsElement3D::Blob BlobsElement3D::blobAt(std::int32_t cx, std::int32_t cy,
                                            std::int32_t cz) const {
    const std::uint32_t s = mSeed;
    const auto p = [this](std::uint32_t i) {
        return static_cast<std::uint32_t>(mPermutation[i & 255u]);
    };
    // A blob's centre, radius and presence come from its cell wrapped into the period; its
    // position stays that of the cell itself.
    const auto ux = static_cast<std::uint32_t>(mLattice.wrap(0, cx));
    const auto uy = static_cast<std::uint32_t>(mLattice.wrap(1, cy));
    const auto uz = static_cast<std::uint32_t>(mLattice.wrap(2, cz));

    const std::uint32_t a0 = p(ux + s) + s;
    const std::uint32_t a1 = p(ux + s + 1u) + s;
    const std::uint32_t b00 = p(a0 + uy) + s;
    const std::uint32_t b10 = p(a1 + uy) + s;
    const std::uint32_t b01 = p(a0 + uy + 1u) + s;
    const std::uint32_t b11 = p(a1 + uy + 1u) + s;
    const std::uint32_t h000 = p(b00 + uz);
    const std::uint32_t h100 = p(b10 + uz);
    const std::uint32_t h010 = p(b01 + uz);
    const std::uint32_t h110 = p(b11 + uz);
    const std::uint32_t h001 = p(b00 + uz + 1u);
    const std::uint32_t h101 = p(b10 + uz + 1u);
    const std::uint32_t h011 = p(b01 + uz + 1u);
    const std::uint32_t h111 = p(b11 + uz + 1u);

    const std::uint32_t presence = (h101 & m[3]) + (h011 & m[4]) + (h111 & m[2]) + (h001 & m[5]) +
                                   (h110 & m[6]) + (h010 & m[0]) + (h100 & m[1]) + (h000 & m[7]);
    if (static_cast<std::int32_t>(presence) >= mDensityThreshold)
        return {0.0, 0.0, 0.0, kNoBlob, kNoBlob};

    const std::uint32_t qx =
        (((h111 & m[8]) + (h101 & m[9]) + (h110 & m[11]) + (h100 & m[10])) & m[21]) +
        (((h000 & m[8]) + (h011 & m[11]) + (h001 & m[10]) + (h010 & m[9])) & m[20]);
    const std::uint32_t qy =
        (((h111 & m[12]) + (h011 & m[13]) + (h110 & m[15]) + (h010 & m[14])) & m[23]) +
        (((h101 & m[15]) + (h001 & m[14]) + (h100 & m[13]) + (h000 & m[12])) & m[22]);
    const std::uint32_t qz =
        (((h101 & m[19]) + (h111 & m[16]) + (h011 & m[17]) + (h001 & m[18])) & m[25]) +
        (((h110 & m[19]) + (h010 & m[18]) + (h100 & m[17]) + (h000 & m[16])) & m[24]);
    const std::uint32_t qr = (h111 & m[3]) + (h011 & m[5]) + (h101 & m[4]) + (h001 & m[1]) +
                             (h110 & m[0]) + (h010 & m[2]) + (h100 & m[7]) + (h000 & m[6]);

    const double radius = qr * kInverse255 * mSpread + mMinRadius;
    return {cx + qx * kInverse255, cy + qy * kInverse255, cz + qz * kInverse255, radius,
            radius * radius};
}

TextureColor BlobsElement3D::colourOf(double sum) const {
    return blendColors(mColorA, mColorB, static_cast<float>(std::min(1.0, sum)));
}

TextureColor BlobsElement3D::getValue(double x, double y, double z) const {
    const double X = x * mLattice.frequency(0);
    const double Y = y * mLattice.frequency(1);
    const double Z = z * mLattice.frequency(2);
    const std::int32_t fx = floorToInt32(X);
    const std::int32_t fy = floorToInt32(Y);
    const std::int32_t fz = floorToInt32(Z);
    double sum = 0.0;
    for (std::int32_t k = -mReach; k <= mReach; ++k) {
        for (std::int32_t j = -mReach; j <= mReach; ++j) {
            for (std::int32_t i = -mReach; i <= mReach; ++i) {
                const Blob b = blobAt(wrapAdd(fx, i), wrapAdd(fy, j), wrapAdd(fz, k));
                const double dx = b.x - X;
                const double dy = b.y - Y;
                const double dz = b.z - Z;
                const double d2 = dx * dx + dy * dy + dz * dz;
                if (b.radius2 > d2)
                    sum += 1.0 - quintic(std::sqrt(d2) / b.radius);
            }
        }
    }
    return colourOf(sum);
}

void BlobsElement3D::evaluateRun(const PointRun& points, TextureColor* out) const {
    double x[kRunLength], y[kRunLength], z[kRunLength];
    std::int32_t cellX[kRunLength], cellY[kRunLength], cellZ[kRunLength];
    for (std::size_t i = 0; i < points.count; ++i) {
        x[i] = points.x[i] * mLattice.frequency(0);
        y[i] = points.yAt(i) * mLattice.frequency(1);
        z[i] = points.zAt(i) * mLattice.frequency(2);
        cellX[i] = floorToInt32(x[i]);
        cellY[i] = floorToInt32(y[i]);
        cellZ[i] = floorToInt32(z[i]);
    }
    // A slab holds the cells of one x, z outer and y inner, as a point visits them.
    const auto side = static_cast<std::size_t>(2 * mReach + 1);
    BlobSlabList slabs(side * side, side);
    std::int32_t firstSlab[kRunLength];
    const auto appendSlab = [&](std::int32_t cx, std::int32_t iy, std::int32_t iz) {
        double* centreX = slabs.nextSlab(0);
        double* centreY = slabs.nextSlab(1);
        double* centreZ = slabs.nextSlab(2);
        double* radius = slabs.nextSlab(3);
        double* radius2 = slabs.nextSlab(4);
        std::size_t n = 0;
        for (std::int32_t k = -mReach; k <= mReach; ++k) {
            for (std::int32_t j = -mReach; j <= mReach; ++j, ++n) {
                const Blob b = blobAt(cx, wrapAdd(iy, j), wrapAdd(iz, k));
                centreX[n] = b.x;
                centreY[n] = b.y;
                centreZ[n] = b.z;
                radius[n] = b.radius;
                radius2[n] = b.radius2;
            }
        }
        slabs.addSlab();
    };
    // The blobs are summed several points at a time, whatever cells the points lie in.
    const auto evaluate = [&](std::size_t begin, std::size_t end) {
        double sum[kRunLength];
        simd::sumBlobs({slabs.column(0), slabs.column(1), slabs.column(2), slabs.column(3),
                        slabs.column(4), slabs.slabSize(), slabs.blockSlabs()},
                       {x + begin, y + begin, z + begin, firstSlab + begin, end - begin}, sum);
        for (std::size_t p = begin; p < end; ++p)
            out[p] = colourOf(sum[p - begin]);
    };
    walkBlockSlabs({cellX, cellY, cellZ, points.count}, mReach, slabs, firstSlab, appendSlab,
                   evaluate);
}

}  // namespace noisepp
