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
      mReach(settings.largeInteraction ? 2 : 1),
      mSeed(static_cast<std::uint32_t>(settings.seed)),
      mPermutation(kPermutationTable) {
    // A blob that may reach two cells away also gets twice the radius.
    const double radiusFactor = settings.largeInteraction ? 2.0 : 1.0;
    mShape.densityThreshold = densityThreshold(settings.density);
    mShape.minRadius = settings.minRadius * radiusFactor;
    mShape.spread = settings.maxRadius * radiusFactor - mShape.minRadius;
}

void BlobsElement3D::drawSlab(std::int32_t cx, std::int32_t iy, std::int32_t iz, BlobDraws& draws,
                              std::size_t at) const {
    const std::uint32_t s = mSeed;
    const auto p = [this](std::uint32_t i) {
        return static_cast<std::uint32_t>(mPermutation[i & 255u]);
    };
    // A blob is drawn from its cell wrapped into the period; its position stays that of the
    // cell itself. The bytes of a corner depend on its wrapped coordinates modulo 256 only,
    // and the upper corner of a row is mostly the lower corner of the next one, so the slab's
    // corners along y and z are hashed once each.
    const int side = 2 * mReach + 1;
    std::uint32_t cornerY[2 * kMaxSide], cornerZ[2 * kMaxSide];
    int lowerY[kMaxSide], lowerZ[kMaxSide], upperY[kMaxSide], upperZ[kMaxSide];
    const auto listCorners = [&](int axis, std::int32_t centre, std::uint32_t* corner, int* lower,
                                 int* upper) {
        int count = 0;
        for (int n = 0; n < side; ++n) {
            const auto c =
                static_cast<std::uint32_t>(mLattice.wrap(axis, wrapAdd(centre, n - mReach)));
            if (count == 0 || ((c - corner[count - 1]) & 255u) != 0)
                corner[count++] = c;
            lower[n] = count - 1;
            corner[count] = c + 1u;
            upper[n] = count++;
        }
        return count;
    };
    const int countY = listCorners(1, iy, cornerY, lowerY, upperY);
    const int countZ = listCorners(2, iz, cornerZ, lowerZ, upperZ);
    // The upper x side of the slab drawn last is this one's lower side when this one is its
    // neighbour along x.
    const auto ux = static_cast<std::uint32_t>(mLattice.wrap(0, cx));
    CornerSide& shared = draws.sides[draws.lastUpperSide];
    const bool lowerShared =
        shared.drawn && shared.y == iy && shared.z == iz && ((ux - shared.x) & 255u) == 0;
    CornerSide* sides[2] = {lowerShared ? &shared : &draws.sides[0],
                            lowerShared ? &draws.sides[1 - draws.lastUpperSide] : &draws.sides[1]};
    for (std::uint32_t c = lowerShared ? 1 : 0; c < 2; ++c) {
        const std::uint32_t a = p(ux + s + c) + s;
        for (int y = 0; y < countY; ++y) {
            const std::uint32_t b = p(a + cornerY[y]) + s;
            for (int z = 0; z < countZ; ++z)
                sides[c]->bytes[y][z] = p(b + cornerZ[z]);
        }
    }
    sides[1]->x = ux + 1u;
    sides[1]->y = iy;
    sides[1]->z = iz;
    sides[1]->drawn = true;
    draws.lastUpperSide = sides[1] == &draws.sides[0] ? 0 : 1;
    const auto bytes = [&](int c, int y, int z) { return sides[c]->bytes[y][z]; };
    for (int k = 0; k < side; ++k) {
        for (int j = 0; j < side; ++j, ++at) {
            const int y[2] = {lowerY[j], upperY[j]};
            const int z[2] = {lowerZ[k], upperZ[k]};
            for (int c = 0; c < 8; ++c)
                draws.corner[c][at] = bytes(c & 1, y[(c >> 1) & 1], z[c >> 2]);
            draws.x[at] = cx;
            draws.y[at] = wrapAdd(iy, j - mReach);
            draws.z[at] = wrapAdd(iz, k - mReach);
        }
    }
}

void BlobsElement3D::makeBlobs(const BlobDraws& draws, std::size_t begin, std::size_t end,
                               const simd::BlobColumns& blobs) const {
    const auto& c = draws.corner;
    simd::makeBlobs({{c[0] + begin, c[1] + begin, c[2] + begin, c[3] + begin, c[4] + begin,
                      c[5] + begin, c[6] + begin, c[7] + begin},
                     draws.x + begin,
                     draws.y + begin,
                     draws.z + begin,
                     end - begin},
                    mShape, blobs);
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
    // The block's slabs in a row, then summed in the order a point visits them: z outermost,
    // x innermost.
    const auto side = static_cast<std::size_t>(2 * mReach + 1);
    const std::size_t slabSize = side * side;
    BlobDraws draws;
    for (std::size_t i = 0; i < side; ++i)
        drawSlab(wrapAdd(fx, static_cast<std::int32_t>(i) - mReach), fy, fz, draws, i * slabSize);
    constexpr std::size_t kMaxBlock = kMaxSide * kMaxSide * kMaxSide;
    double blobX[kMaxBlock], blobY[kMaxBlock], blobZ[kMaxBlock];
    double radius[kMaxBlock], radius2[kMaxBlock];
    makeBlobs(draws, 0, side * slabSize, {blobX, blobY, blobZ, radius, radius2});
    double sum = 0.0;
    for (std::size_t kj = 0; kj < slabSize; ++kj) {
        for (std::size_t n = kj; n < side * slabSize; n += slabSize) {
            const double dx = blobX[n] - X;
            const double dy = blobY[n] - Y;
            const double dz = blobZ[n] - Z;
            const double d2 = dx * dx + dy * dy + dz * dz;
            if (radius2[n] > d2)
                sum += 1.0 - quintic(std::sqrt(d2) / radius[n]);
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
    const auto side = static_cast<std::size_t>(2 * mReach + 1);
    // Blob centres x, y and z, radii and squared radii of the blocks of 28 neighbouring cells
    // at once with large interaction, of 86 without (about 31 KiB).
    CellSlabs<5, kSlabCells> slabs(side * side, side);
    std::int32_t firstSlab[kRunLength];
    // A slab's cells are drawn as it joins the list; the blobs of all new slabs are made
    // together, several cells per instruction, when the points' sums are due (and so before
    // the list drops any slab).
    BlobDraws draws;
    const auto appendSlab = [&](std::int32_t cx, std::int32_t iy, std::int32_t iz) {
        drawSlab(cx, iy, iz, draws, slabs.count() * slabs.slabSize());
        slabs.addSlab();
    };
    // The blobs are summed several points at a time, whatever cells the points lie in.
    const auto evaluate = [&](std::size_t begin, std::size_t end) {
        const std::size_t from = slabs.firstPending() * slabs.slabSize();
        makeBlobs(draws, from, slabs.count() * slabs.slabSize(),
                  {slabs.column(0) + from, slabs.column(1) + from, slabs.column(2) + from,
                   slabs.column(3) + from, slabs.column(4) + from});
        slabs.markWorkedOut();
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
