#include "noisepp/modules/FibersElement3D.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include "noisepp/math/ColorBlend.h"
#include "noisepp/math/NoiseTables.h"
#include "noisepp/modules/CellIndex.h"
#include "noisepp/modules/CellSlabs.h"

namespace noisepp {

namespace {

double unitRange(double v) {
    return v > 0.0 ? (v < 1.0 ? v : 1.0) : 0.0;
}

FibreLayout::Parameters layoutParameters(const FibersElement3D::Settings& settings) {
    FibreLayout::Parameters parameters = settings.layout;
    // Only the smooth shape's fibres curve; box and cylinder fibres are straight prisms.
    parameters.bent = settings.shape != FibersElement3D::kShapeBox &&
                      settings.shape != FibersElement3D::kShapeCylinder;
    return parameters;
}

}  // namespace

FibersElement3D::FibersElement3D(const Pipeline3D& pipeline, std::size_t matrixSource,
                                 const Settings& settings)
    : mMatrix(matrixSource == kNoSource ? nullptr : pipeline.getElement(matrixSource)),
      mScale{settings.scale, settings.scale, settings.scale},
      mShape(settings.shape == kShapeBox || settings.shape == kShapeCylinder ? settings.shape
                                                                             : kShapeSmooth),
      mCore(1.0 - unitRange(settings.fade)),
      mInverseFade(unitRange(settings.fade) > 0.0 ? 1.0 / unitRange(settings.fade) : 0.0),
      mColorMatrix(settings.colorMatrix),
      mColorA(settings.colorA),
      mColorB(settings.colorB),
      mHashSeed(settings.layout.seed & 255u),
      mPermutation(kPermutationTable),
      mLayout(layoutParameters(settings)),
      mCells(settings.scale) {
    if (!settings.periodicity.isPeriodic())
        return;
    const std::array<double, 3> cellSize = {mLayout.cellLength(), 1.0, mLayout.layerThickness()};
    std::array<double, 3> cellFrequency{};
    for (int axis = 0; axis < 3; ++axis)
        cellFrequency[axis] = settings.scale / cellSize[axis];
    mCells = PeriodicLattice(cellFrequency, settings.periodicity, "Fibers Texture");
    for (int axis = 0; axis < 3; ++axis)
        mScale[axis] = mCells.frequency(axis) * cellSize[axis];
}

std::string FibersElement3D::describePeriod(double scale) const {
    std::ostringstream scales, cells;
    const char* separator = "";
    for (int axis = 0; axis < 3; ++axis) {
        if (mCells.cells(axis) == 0)
            continue;
        scales << separator << mScale[axis];
        cells << separator << mCells.cells(axis);
        separator = " x ";
    }
    std::ostringstream text;
    text << scale << " -> " << scales.str() << " (" << cells.str() << " cells)";
    return text.str();
}

void FibersElement3D::Stack::push(const Cover& cover) {
    int position = count;
    if (count == kMaxStack) {
        if (!(cover.height > covers[0].height))
            return;
        // Drop the lowest fibre to make room.
        std::copy(covers.begin() + 1, covers.end(), covers.begin());
        position = kMaxStack - 1;
    } else {
        ++count;
    }
    while (position > 0 && covers[position - 1].height > cover.height) {
        covers[position] = covers[position - 1];
        --position;
    }
    covers[position] = cover;
}

FibersElement3D::Place FibersElement3D::placeOf(double x, double y, double z) const {
    Place place;
    place.x = x * mScale[0];
    place.y = y * mScale[1];
    place.z = z * mScale[2];
    const double thickness = mLayout.layerThickness();
    place.cellX = floorToInt32(place.x / mLayout.cellLength());
    place.cellY = floorToInt32(place.y);
    const std::int32_t ck = floorToInt32(place.z / thickness);
    // No fibre reaches more than half a layer beyond its own, so only the layer above or the
    // one below can matter besides the point's own.
    const bool lowerHalf = place.z - ck * thickness < 0.5 * thickness;
    place.firstLayer = lowerHalf ? wrapAdd(ck, -1) : ck;
    return place;
}

template <class PatternAt, class BucketXAt, class BucketYAt>
FibersElement3D::Stack FibersElement3D::coversOf(const Place& place, PatternAt&& patternAt,
                                                 BucketXAt&& bucketXAt,
                                                 BucketYAt&& bucketYAt) const {
    const double cellLength = mLayout.cellLength();
    const double thickness = mLayout.layerThickness();
    const std::int32_t reachX = mLayout.reachX();
    const std::int32_t reachY = mLayout.reachY();
    Stack stack;
    for (std::int32_t layer = 0; layer < 2; ++layer) {
        const std::int32_t k = wrapAdd(place.firstLayer, layer);
        const double base = k * thickness;
        const double lz = place.z - base;
        for (std::int32_t dj = -reachY; dj <= reachY; ++dj) {
            const std::int32_t j = wrapAdd(place.cellY, dj);
            const double ly = place.y - j;
            const std::int32_t bucketY = bucketYAt(dj, ly);
            for (std::int32_t di = -reachX; di <= reachX; ++di) {
                const std::int32_t i = wrapAdd(place.cellX, di);
                const double lx = place.x - i * cellLength;
                const std::uint32_t pattern = patternAt(BlockCell{layer, dj, di, i, j, k});
                for (const std::uint32_t index :
                     mLayout.candidates(pattern, bucketXAt(di, lx), bucketY)) {
                    const FibreLayout::Fibre& fibre = mLayout.fibre(index);
                    const double dz = lz - fibre.z;
                    if (!(std::abs(dz) < fibre.radius))
                        continue;
                    const double c = coverage(index, lx - fibre.x, ly - fibre.y, dz);
                    if (c > 0.0)
                        stack.push({base + fibre.z, c, index});
                }
            }
        }
    }
    return stack;
}

int FibersElement3D::hidingFibre(const Stack& stack) {
    int first = stack.count - 1;
    while (first >= 0 && stack.covers[first].coverage < 1.0)
        --first;
    return first;
}

TextureColor FibersElement3D::colourOf(const Stack& stack, int first,
                                       const TextureColor& below) const {
    TextureColor colour = first >= 0 ? fibreColour(stack.covers[first].fibre) : below;
    for (int s = first + 1; s < stack.count; ++s)
        colour = blendColors(colour, fibreColour(stack.covers[s].fibre),
                             static_cast<float>(stack.covers[s].coverage));
    return colour;
}

TextureColor FibersElement3D::getValue(double x, double y, double z) const {
    const Place place = placeOf(x, y, z);
    const Stack stack = coversOf(
        place, [this](const BlockCell& cell) { return cellPattern(cell.i, cell.j, cell.k); },
        [this](std::int32_t, double lx) { return mLayout.bucketX(lx); },
        [this](std::int32_t, double ly) { return mLayout.bucketY(ly); });
    // The matrix (which may be a whole texture) is evaluated only when no fibre hides it.
    const int first = hidingFibre(stack);
    if (first < 0 && mMatrix != nullptr)
        return colourOf(stack, first, mMatrix->getValue(x, y, z));
    return colourOf(stack, first, mColorMatrix);
}

void FibersElement3D::evaluateRun(const PointRun& points, TextureColor* out) const {
    const std::int32_t reachX = mLayout.reachX();
    const std::int32_t reachY = mLayout.reachY();
    if (reachX > kRunReachX || reachY > kRunReachY) {
        PipelineElement3D::evaluateRun(points, out);
        return;
    }
    Place place[kRunLength];
    std::int32_t cellX[kRunLength], cellY[kRunLength], cellZ[kRunLength];
    for (std::size_t p = 0; p < points.count; ++p) {
        place[p] = placeOf(points.x[p], points.yAt(p), points.zAt(p));
        cellX[p] = place[p].cellX;
        cellY[p] = place[p].cellY;
        cellZ[p] = place[p].firstLayer;
    }
    // A slab holds the patterns of one x of a block, both layers, rows within each.
    const auto rows = static_cast<std::size_t>(2 * reachY + 1);
    const std::size_t slabSize = 2 * rows;
    CellSlabs<1, kRunPatterns, std::uint32_t> slabs(slabSize,
                                                    static_cast<std::size_t>(2 * reachX + 1));
    std::int32_t firstSlab[kRunLength];
    Stack stacks[kRunLength];
    const auto appendSlab = [&](std::int32_t cx, std::int32_t cj, std::int32_t firstLayer) {
        std::uint32_t* patterns = slabs.nextSlab(0);
        for (std::int32_t layer = 0; layer < 2; ++layer)
            for (std::int32_t dj = -reachY; dj <= reachY; ++dj)
                *patterns++ = cellPattern(cx, wrapAdd(cj, dj), wrapAdd(firstLayer, layer));
        slabs.addSlab();
    };
    // Per point, the bucket columns and rows of its block: each is shared by a whole column or
    // row of cells.
    const auto evaluate = [&](std::size_t begin, std::size_t end) {
        const double cellLength = mLayout.cellLength();
        for (std::size_t p = begin; p < end; ++p) {
            const Place& at = place[p];
            std::int32_t bucketX[2 * kRunReachX + 1], bucketY[2 * kRunReachY + 1];
            for (std::int32_t di = -reachX; di <= reachX; ++di)
                bucketX[di + reachX] = mLayout.bucketX(at.x - wrapAdd(at.cellX, di) * cellLength);
            for (std::int32_t dj = -reachY; dj <= reachY; ++dj)
                bucketY[dj + reachY] = mLayout.bucketY(at.y - wrapAdd(at.cellY, dj));
            const std::uint32_t* block = slabs.column(0) + firstSlab[p] * slabSize;
            const Stack stack = coversOf(
                at,
                [&](const BlockCell& cell) {
                    return block[(cell.column + reachX) * slabSize + cell.layer * rows +
                                 (cell.row + reachY)];
                },
                [&](std::int32_t di, double) { return bucketX[di + reachX]; },
                [&](std::int32_t dj, double) { return bucketY[dj + reachY]; });
            if (mMatrix == nullptr)
                out[p] = colourOf(stack, hidingFibre(stack), mColorMatrix);
            else
                stacks[p] = stack;
        }
    };
    walkBlockSlabs({cellX, cellY, cellZ, points.count}, reachX, slabs, firstSlab, appendSlab,
                   evaluate);
    if (mMatrix == nullptr)
        return;

    // The matrix (which may be a whole texture) is evaluated only where no fibre hides it, for
    // all those points of the run at once.
    int first[kRunLength];
    bool showsMatrix[kRunLength];
    for (std::size_t p = 0; p < points.count; ++p) {
        first[p] = hidingFibre(stacks[p]);
        showsMatrix[p] = first[p] < 0;
    }
    TextureColor below[kRunLength];
    mMatrix->getRunValuesWhere(points, showsMatrix, below);
    for (std::size_t p = 0; p < points.count; ++p)
        out[p] = colourOf(stacks[p], first[p], below[p]);
}

std::uint32_t FibersElement3D::cellPattern(std::int32_t i, std::int32_t j, std::int32_t k) const {
    // The layout of a cell comes from the cell wrapped into the period.
    return patternOf(mCells.wrap(0, i), mCells.wrap(1, j), mCells.wrap(2, k));
}

std::uint32_t FibersElement3D::patternOf(std::int32_t i, std::int32_t j, std::int32_t k) const {
    const auto p = [this](std::uint32_t n) {
        return static_cast<std::uint32_t>(mPermutation[n & 255u]);
    };
    return p(p(p(static_cast<std::uint32_t>(i) + mHashSeed) + static_cast<std::uint32_t>(j)) +
             static_cast<std::uint32_t>(k));
}

double FibersElement3D::coverage(std::uint32_t index, double dx, double dy, double dz) const {
    if (mShape == kShapeSmooth)
        return smoothCoverage(index, dx, dy, dz);

    const FibreLayout::Fibre& fibre = mLayout.fibre(index);
    const double along = dx * fibre.directionX + dy * fibre.directionY;
    const double across = dy * fibre.directionX - dx * fibre.directionY;
    if (!(std::abs(across) < fibre.radius))
        return 0.0;
    // The fibre's length includes its two end caps, each half a width long.
    const double halfLength = std::max(0.0, 0.5 * mLayout.length(index) - fibre.radius);
    const double beyondEnd = std::abs(along) - halfLength;
    if (!(beyondEnd < fibre.radius))
        return 0.0;

    // q is 0 on the fibre's axis and 1 on its surface. The offset along the fibre counts only
    // past its ends.
    double q;
    if (mShape == kShapeBox) {
        q = std::max(std::abs(across), std::abs(dz)) * fibre.inverseRadius;
    } else {
        // Twice the Euclidean cross distance, measured in fibre widths.
        q = 2.0 * std::sqrt(across * across + dz * dz) * (0.5 * fibre.inverseRadius);
    }
    if (beyondEnd > 0.0)
        q = std::max(q, beyondEnd * fibre.inverseRadius);
    return edgeFade(q);
}

double FibersElement3D::smoothCoverage(std::uint32_t index, double dx, double dy, double dz) const {
    // A smooth fibre is round in section, keeps its width over most of its length and tapers
    // to a point at either end; it is bowed sideways along a parabola through its ends.
    const FibreLayout::Fibre& fibre = mLayout.fibre(index);
    const double along = dx * fibre.directionX + dy * fibre.directionY;
    const double s = along / (0.5 * mLayout.length(index));
    if (!(std::abs(s) < 1.0))
        return 0.0;
    const double s2 = s * s;
    const double across = dy * fibre.directionX - dx * fibre.directionY - fibre.bend * (1.0 - s2);
    const double radius = fibre.radius * std::sqrt(1.0 - s2 * s2);
    if (!(std::abs(across) < radius))
        return 0.0;
    return edgeFade(std::sqrt(across * across + dz * dz) / radius);
}

double FibersElement3D::edgeFade(double q) const {
    if (!(q < 1.0))
        return 0.0;
    if (q <= mCore)
        return 1.0;
    const double s = (1.0 - q) * mInverseFade;
    return s * s * (3.0 - 2.0 * s);
}

TextureColor FibersElement3D::fibreColour(std::uint32_t index) const {
    return blendColors(mColorA, mColorB, mLayout.fibre(index).tone);
}

}  // namespace noisepp
