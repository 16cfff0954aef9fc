#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "host/SceneMesh.h"

/// A model file read into triangle meshes placed in the world.
struct SceneModel {
    /// One placement of a mesh: a node of the file's hierarchy that draws the mesh.
    struct SubMesh {
        /// Shared by every sub-mesh that places the same mesh.
        std::shared_ptr<const SceneMesh> mesh;
        /// Object-to-world: twelve doubles, column after column (x axis, y axis, z axis,
        /// translation), the node's transform accumulated from the root of the hierarchy.
        std::array<double, 12> matrix{1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};
        /// The name of the node that places the mesh (may be empty).
        std::string nodeName;
    };

    /// The file the model was read from, as given to SceneLoader::Load.
    std::string path;
    /// Every triangle mesh placement, in depth-first order of the node hierarchy (children in
    /// file order, a node's meshes in file order). Meshes holding only points or lines are left
    /// out.
    std::vector<SubMesh> subMeshes;
};

/// Reads model files (OBJ, glTF, PLY, FBX and whatever else the mesh library reads) into
/// triangulated SceneModels, and keeps what it read.
///
/// Models are cached by path: a second Load of a file whose modification time and size are
/// unchanged returns the same model without reading the file again. The cache is shared by
/// the whole process and safe to use from several threads.
class SceneLoader {
public:
    /// The model in `path`. Throws std::runtime_error naming the file when it does not exist,
    /// is a folder, cannot be parsed, or holds no triangle mesh.
    static std::shared_ptr<const SceneModel> Load(const std::string& path);

    /// Forgets every cached model (models still in use stay alive with their users).
    static void ClearCache();
};
