#include "noisepp/modules/FibersElement3D.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include "noisepp/math/ColorBlend.h"
#include "noisepp/math/NoiseTables.h"
#include "noisepp/modules/CellIndex.h"

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

TextureColor FibersElement3D::getValue(double x, double y, double z) const {
    const double px = x * mScale[0];
    const double py = y * mScale[1];
    const double pz = z * mScale[2];
    const double cellLength = mLayout.cellLength();
    const double thickness = mLayout.layerThickness();
    const std::int32_t ci = floorToInt32(px / cellLength);
    const std::int32_t cj = floorToInt32(py);
    const std::int32_t ck = floorToInt32(pz / thickness);
    // No fibre reaches more than half a layer beyond its own, so only the layer above or the
    // one below can matter besides the point's own.
    const bool lowerHalf = pz - ck * thickness < 0.5 * thickness;
    const std::int32_t firstLayer = lowerHalf ? wrapAdd(ck, -1) : ck;
    const std::int32_t reachX = mLayout.reachX();
    const std::int32_t reachY = mLayout.reachY();

    Stack stack;
    for (std::int32_t layer = 0; layer < 2; ++layer) {
        const std::int32_t k = wrapAdd(firstLayer, layer);
        const double base = k * thickness;
        const double lz = pz - base;
        for (std::int32_t dj = -reachY; dj <= reachY; ++dj) {
            const std::int32_t j = wrapAdd(cj, dj);
            const double ly = py - j;
            for (std::int32_t di = -reachX; di <= reachX; ++di) {
                const std::int32_t i = wrapAdd(ci, di);
                const double lx = px - i * cellLength;
                // The layout of a cell comes from the cell wrapped into the period.
                const std::uint32_t pattern =
                    patternOf(mCells.wrap(0, i), mCells.wrap(1, j), mCells.wrap(2, k));
                for (const std::uint32_t index : mLayout.candidates(pattern, lx, ly)) {
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

    // Start from the highest fibre that hides everything below it; the matrix (which may be a
    // whole texture) is evaluated only when no fibre does.
    int first = stack.count - 1;
    while (first >= 0 && stack.covers[first].coverage < 1.0)
        --first;
    TextureColor colour;
    if (first >= 0) {
        colour = fibreColour(stack.covers[first].fibre);
    } else {
        colour = mMatrix != nullptr ? mMatrix->getValue(x, y, z) : mColorMatrix;
    }
    for (int s = first + 1; s < stack.count; ++s)
        colour = blendColors(colour, fibreColour(stack.covers[s].fibre),
                             static_cast<float>(stack.covers[s].coverage));
    return colour;
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
