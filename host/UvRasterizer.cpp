#include "host/UvRasterizer.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

// Coordinate differences stay within 2^26 grid units, so each product of two differences is
// an integer below 2^52 and an edge function (a difference of two products) is exact.
constexpr double kExactRange = 67108864.0;  // 2^26
constexpr int kFinestUnitBits = 8;

// Twice the signed area of (a, b, p): positive when p lies left of a -> b.
double edge(double ax, double ay, double bx, double by, double px, double py) {
    return (bx - ax) * (py - ay) - (by - ay) * (px - ax);
}

// Triangles are counter-clockwise here, so each lies left of its edges. A point exactly on an
// edge belongs to the triangle when that puts the triangle at larger u (the edge runs towards
// smaller v) or, for a horizontal edge, at smaller v (the edge runs towards smaller u). The
// neighbour across the edge travels it the other way, so exactly one of the two takes the point.
bool ownsEdge(double dx, double dy) {
    return dy < 0.0 || (dy == 0.0 && dx < 0.0);
}

struct Extent {
    double minX, maxX, minY, maxY;
};

}  // namespace

UvRasterizer::UvRasterizer(int sizeX, int sizeY, int samples, const std::vector<Source>& sources)
    : mSizeX(std::max(0, sizeX)), mSizeY(std::max(0, sizeY)), mSamples(std::max(1, samples)) {
    const double columns = static_cast<double>(mSizeX) * mSamples;
    const double rows = static_cast<double>(mSizeY) * mSamples;

    // First pass, in sample steps: keep triangles that are finite and reach the image, and
    // measure how far they spread so that the grid can be as fine as exactness allows.
    struct Candidate {
        int source;
        int triangle;
        double x[3];
        double y[3];
    };
    std::vector<Candidate> candidates;
    Extent spread{0.0, columns, 0.0, rows};
    for (std::size_t s = 0; s < sources.size(); ++s) {
        const SceneMesh& mesh = *sources[s].mesh;
        const std::vector<SceneMesh::Uv>& uvs = *sources[s].uvs;
        for (std::size_t t = 0; t < mesh.triangles.size(); ++t) {
            Candidate c{static_cast<int>(s), static_cast<int>(t), {}, {}};
            bool finite = true;
            for (int k = 0; k < 3; ++k) {
                const std::uint32_t vertex = mesh.triangles[t][k];
                const SceneMesh::Uv uv =
                    vertex < uvs.size() ? uvs[vertex] : SceneMesh::Uv{NAN, NAN};
                c.x[k] = uv.u * columns;
                c.y[k] = uv.v * rows;
                finite = finite && std::isfinite(c.x[k]) && std::isfinite(c.y[k]);
            }
            if (!finite) {
                continue;
            }
            const Extent e{std::min({c.x[0], c.x[1], c.x[2]}), std::max({c.x[0], c.x[1], c.x[2]}),
                           std::min({c.y[0], c.y[1], c.y[2]}), std::max({c.y[0], c.y[1], c.y[2]})};
            if (e.maxX < -1.0 || e.minX > columns + 1.0 || e.maxY < -1.0 || e.minY > rows + 1.0) {
                continue;
            }
            spread = {std::min(spread.minX, e.minX), std::max(spread.maxX, e.maxX),
                      std::min(spread.minY, e.minY), std::max(spread.maxY, e.maxY)};
            candidates.push_back(c);
        }
    }
    const double range = std::max(spread.maxX - spread.minX, spread.maxY - spread.minY) + 2.0;
    int bits = kFinestUnitBits;
    while (bits > 1 && std::ldexp(range, bits) > kExactRange) {
        --bits;
    }
    mUnit = std::ldexp(1.0, bits);

    // Second pass: snap, orient counter-clockwise, drop what covers no sample point.
    std::vector<std::pair<int, int>> rowSpans;  // first and last pixel row of each triangle
    for (const Candidate& c : candidates) {
        Triangle t{};
        t.source = c.source;
        t.triangle = c.triangle;
        double x[3];
        double y[3];
        for (int k = 0; k < 3; ++k) {
            x[k] = std::nearbyint(c.x[k] * mUnit);
            y[k] = std::nearbyint(c.y[k] * mUnit);
        }
        double area = edge(x[0], y[0], x[1], y[1], x[2], y[2]);
        if (area == 0.0) {
            continue;
        }
        const std::uint8_t order[2][3] = {{0, 1, 2}, {0, 2, 1}};
        const std::uint8_t* corner = order[area < 0.0 ? 1 : 0];
        for (int k = 0; k < 3; ++k) {
            t.corner[k] = corner[k];
            t.x[k] = x[corner[k]];
            t.y[k] = y[corner[k]];
            t.sampleX[k] = c.x[corner[k]];
            t.sampleY[k] = c.y[corner[k]];
        }
        t.area = std::abs(area);
        t.sampleArea = edge(t.sampleX[0], t.sampleY[0], t.sampleX[1], t.sampleY[1], t.sampleX[2],
                            t.sampleY[2]);
        t.minX = std::min({x[0], x[1], x[2]});
        t.maxX = std::max({x[0], x[1], x[2]});
        t.minY = std::min({y[0], y[1], y[2]});
        t.maxY = std::max({y[0], y[1], y[2]});
        // Sample centres sit at (k + 0.5) grid steps; find the ones inside the bounding box.
        const double firstColumn = std::max(0.0, std::ceil(t.minX / mUnit - 0.5));
        const double lastColumn = std::min(columns - 1.0, std::floor(t.maxX / mUnit - 0.5));
        const double firstRow = std::max(0.0, std::ceil(t.minY / mUnit - 0.5));
        const double lastRow = std::min(rows - 1.0, std::floor(t.maxY / mUnit - 0.5));
        if (firstColumn > lastColumn || firstRow > lastRow) {
            continue;
        }
        rowSpans.emplace_back(static_cast<int>(firstRow) / mSamples,
                              static_cast<int>(lastRow) / mSamples);
        mTriangles.push_back(t);
    }

    // Bucket triangles by pixel row, keeping drawing order inside each bucket.
    mRowStart.assign(static_cast<std::size_t>(mSizeY) + 1, 0);
    for (const auto& [first, last] : rowSpans) {
        for (int row = first; row <= last; ++row) {
            ++mRowStart[static_cast<std::size_t>(row) + 1];
        }
    }
    for (std::size_t row = 0; row < static_cast<std::size_t>(mSizeY); ++row) {
        mRowStart[row + 1] += mRowStart[row];
    }
    mRowTriangles.resize(mRowStart.back());
    std::vector<std::size_t> fill(mRowStart.begin(), mRowStart.end() - 1);
    for (std::size_t t = 0; t < rowSpans.size(); ++t) {
        for (int row = rowSpans[t].first; row <= rowSpans[t].second; ++row) {
            mRowTriangles[fill[static_cast<std::size_t>(row)]++] = static_cast<std::uint32_t>(t);
        }
    }
}

void UvRasterizer::CoverSampleRow(int row, int subRow, std::vector<Hit>& hits) const {
    hits.assign(static_cast<std::size_t>(mSizeX) * mSamples, Hit{});
    if (row < 0 || row >= mSizeY) {
        return;
    }
    const double sampleY = (static_cast<double>(row) * mSamples + subRow + 0.5) * mUnit;
    const std::size_t end = mRowStart[static_cast<std::size_t>(row) + 1];
    for (std::size_t k = mRowStart[static_cast<std::size_t>(row)]; k < end; ++k) {
        const Triangle& t = mTriangles[mRowTriangles[k]];
        if (sampleY >= t.minY && sampleY <= t.maxY) {
            CoverTriangle(t, sampleY, hits);
        }
    }
}

void UvRasterizer::Weights(const Triangle& t, double x, double y, float* weights) {
    // Snapping moved the corners by up to half a grid unit; weighting with the stored corners
    // keeps the surface point as accurate as double allows. A sample that snapping let in
    // just outside the stored triangle gets its weights clamped onto the nearest edge.
    double w[3];
    double sum = 0.0;
    for (int k = 0; k < 3; ++k) {
        const int a = (k + 1) % 3;
        const int b = (k + 2) % 3;
        w[k] =
            t.sampleArea != 0.0
                ? std::max(0.0, edge(t.sampleX[a], t.sampleY[a], t.sampleX[b], t.sampleY[b], x, y) /
                                    t.sampleArea)
                : 1.0;
        sum += w[k];
    }
    for (int k = 0; k < 3; ++k) {
        weights[t.corner[k]] = static_cast<float>(sum > 0.0 ? w[k] / sum : 1.0 / 3.0);
    }
}

void UvRasterizer::CoverTriangle(const Triangle& t, double sampleY, std::vector<Hit>& hits) const {
    // Narrow the columns with the edges' crossings of this sample row. The crossings are
    // rounded, so one column of margin goes each way; the exact test below decides.
    double low = t.minX;
    double high = t.maxX;
    for (int k = 0; k < 3; ++k) {
        const int a = (k + 1) % 3;
        const int b = (k + 2) % 3;
        const double dy = t.y[b] - t.y[a];
        if (dy == 0.0) {
            continue;
        }
        const double crossing = t.x[a] + (t.x[b] - t.x[a]) * (sampleY - t.y[a]) / dy;
        if (dy > 0.0) {
            high = std::min(high, crossing);
        } else {
            low = std::max(low, crossing);
        }
    }
    const double columns = static_cast<double>(mSizeX) * mSamples;
    const double first = std::max(0.0, std::ceil(low / mUnit - 0.5) - 1.0);
    const double last = std::min(columns - 1.0, std::floor(high / mUnit - 0.5) + 1.0);
    if (first > last) {
        return;
    }

    bool owns[3];
    for (int k = 0; k < 3; ++k) {
        const int a = (k + 1) % 3;
        const int b = (k + 2) % 3;
        owns[k] = ownsEdge(t.x[b] - t.x[a], t.y[b] - t.y[a]);
    }
    for (int column = static_cast<int>(first); column <= static_cast<int>(last); ++column) {
        const double sampleX = (column + 0.5) * mUnit;
        double e[3];
        bool inside = true;
        for (int k = 0; k < 3 && inside; ++k) {
            const int a = (k + 1) % 3;
            const int b = (k + 2) % 3;
            e[k] = edge(t.x[a], t.y[a], t.x[b], t.y[b], sampleX, sampleY);
            inside = e[k] > 0.0 || (e[k] == 0.0 && owns[k]);
        }
        if (!inside) {
            continue;
        }
        Hit& hit = hits[static_cast<std::size_t>(column)];
        hit.source = t.source;
        hit.triangle = t.triangle;
        Weights(t, column + 0.5, sampleY / mUnit, hit.weights);
    }
}
