#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

/// The geometry of one triangle mesh of a model file, as handed to the pixel shaders.
///
/// Vertices are kept as the file stores them (no welding): glTF and PLY keep their indexed
/// vertex lists, while OBJ, which indexes positions and UVs separately, yields three vertices
/// per triangle. Positions are in the mesh's own (object) space; the object-to-world matrix
/// travels separately because one mesh may be placed by several nodes of a model.
struct SceneMesh {
    struct Vertex {
        double x = 0.0;
        double y = 0.0;
        double z = 0.0;
    };
    struct Uv {
        double u = 0.0;
        double v = 0.0;
    };
    /// Three indices into `vertices`.
    using Triangle = std::array<std::uint32_t, 3>;

    /// The mesh's name in the file (may be empty).
    std::string name;
    std::vector<Vertex> vertices;
    /// The first UV set, one entry per vertex; empty when the mesh has none. v = 0 is the
    /// bottom edge of the texture (row 0 of an image).
    std::vector<Uv> uvs;
    /// The second UV set, one entry per vertex; empty when the mesh has none.
    std::vector<Uv> secondUvs;
    std::vector<Triangle> triangles;
};
