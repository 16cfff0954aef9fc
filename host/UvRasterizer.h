#pragma once

#include <cstdint>
#include <vector>

#include "host/SceneMesh.h"

/// Finds which triangle covers each sample point of an image laid over UV space; the
/// coverage half of RenderUvScene, kept apart from shading and threads.
///
/// The image spans u and v from 0 to 1; pixel (i, j) holds n x n sample points at the centres
/// of an n x n sub-grid, so with n = 1 the single point is the pixel centre
/// ((i + 0.5) / W, (j + 0.5) / H). UV positions are snapped to a fixed grid of 1/256 of a
/// sample step (coarser only when the UVs reach far outside the unit square), which makes every
/// edge function an exact integer in double precision: a point on an edge shared by two
/// triangles belongs to exactly one of them (top-left rule), whatever the windings. Where UV
/// islands overlap, the triangle drawn last wins.
///
/// Once built, the rasterizer is read-only and may be used by several threads at once.
class UvRasterizer {
public:
    /// A mesh and the UV set to lay out.
    struct Source {
        const SceneMesh* mesh = nullptr;
        const std::vector<SceneMesh::Uv>* uvs = nullptr;
    };

    /// What covers one sample point.
    struct Hit {
        /// Index into the sources; -1 when nothing covers the point.
        int source = -1;
        /// Index into that source mesh's triangles.
        int triangle = 0;
        /// Barycentric weights of the point in the order of the triangle's vertex indices.
        float weights[3] = {0.0f, 0.0f, 0.0f};
    };

    /// Prepares the triangles of every source, in order, for a sizeX x sizeY image with
    /// `samples` x `samples` points per pixel (values below 1 count as 1).
    UvRasterizer(int sizeX, int sizeY, int samples, const std::vector<Source>& sources);

    int GetSamples() const { return mSamples; }
    /// The triangles that can cover something (non-degenerate, finite, inside the image).
    std::size_t GetTriangleCount() const { return mTriangles.size(); }

    /// Resizes `hits` to sizeX x samples entries and fills them for sample row `subRow`
    /// (0 ... samples - 1, bottom to top) of pixel row `row`: entry i * samples + k is sample
    /// column k of pixel column i.
    void CoverSampleRow(int row, int subRow, std::vector<Hit>& hits) const;

private:
    struct Triangle {
        // Snapped corners, counter-clockwise, in grid units: they decide coverage.
        double x[3];
        double y[3];
        double area;
        // The same corners as stored, in sample steps: they give the weights.
        double sampleX[3];
        double sampleY[3];
        double sampleArea;
        double minX, maxX, minY, maxY;
        int source;
        int triangle;
        // Position in the stored triangle of each counter-clockwise corner.
        std::uint8_t corner[3];
    };

    void CoverTriangle(const Triangle& t, double sampleY, std::vector<Hit>& hits) const;
    // Barycentric weights of sample point (x, y), in sample steps, in stored corner order.
    static void Weights(const Triangle& t, double x, double y, float* weights);

    int mSizeX;
    int mSizeY;
    int mSamples;
    // Grid units per sample step.
    double mUnit = 256.0;
    std::vector<Triangle> mTriangles;
    // Triangles (indices into mTriangles, in drawing order) that reach each pixel row:
    // mRowTriangles[mRowStart[j] ... mRowStart[j + 1]).
    std::vector<std::size_t> mRowStart;
    std::vector<std::uint32_t> mRowTriangles;
};
