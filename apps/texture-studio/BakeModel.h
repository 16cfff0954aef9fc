#pragma once

#include <QString>
#include <vector>

class Engine;
class Node;

/// What the 3D bake view draws for a render node that bakes onto a mesh: the triangles of its
/// mesh in world space, three vertices each, with the UVs its image is laid out by and a
/// normal per face, and the sphere that holds them (for the camera).
struct BakeModel {
    /// x, y, z per vertex.
    std::vector<float> positions;
    /// The face's normal at each vertex, x, y, z.
    std::vector<float> normals;
    /// u, v per vertex; v = 0 is the image's bottom row.
    std::vector<float> uvs;
    float centre[3] = {0.0f, 0.0f, 0.0f};
    float radius = 1.0f;
    /// The model file and the part of it drawn, for the view's caption.
    QString caption;

    int GetVertexCount() const { return static_cast<int>(positions.size() / 3); }

    /// The model of a node with a "mesh" attribute, read from the engine's scene. False with
    /// a message naming the node when it has no such attribute, no mesh is chosen, or the
    /// model cannot be read.
    static bool FromNode(const Engine& engine, const Node& node, BakeModel* model, QString* error);
};
