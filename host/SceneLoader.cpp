#include "host/SceneLoader.h"

#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <assimp/Importer.hpp>
#include <cstdint>
#include <filesystem>
#include <map>
#include <mutex>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace {

namespace fs = std::filesystem;

using Matrix = std::array<double, 12>;

struct CacheEntry {
    fs::file_time_type time;
    std::uintmax_t size = 0;
    std::shared_ptr<const SceneModel> model;
};

std::mutex& cacheMutex() {
    static std::mutex mutex;
    return mutex;
}

std::map<std::string, CacheEntry>& cache() {
    static std::map<std::string, CacheEntry> entries;
    return entries;
}

[[noreturn]] void fail(const std::string& path, const std::string& reason) {
    throw std::runtime_error("cannot read model '" + path + "': " + reason);
}

// The node's local transform in the column layout of SceneModel::SubMesh, widened to double
// before any arithmetic so that deep hierarchies accumulate in double precision.
Matrix toMatrix(const aiMatrix4x4& m) {
    return {m.a1, m.b1, m.c1, m.a2, m.b2, m.c2, m.a3, m.b3, m.c3, m.a4, m.b4, m.c4};
}

Matrix multiply(const Matrix& parent, const Matrix& local) {
    Matrix out{};
    for (int column = 0; column < 4; ++column) {
        for (int row = 0; row < 3; ++row) {
            double sum = parent[row] * local[column * 3] + parent[3 + row] * local[column * 3 + 1] +
                         parent[6 + row] * local[column * 3 + 2];
            if (column == 3) {
                sum += parent[9 + row];
            }
            out[column * 3 + row] = sum;
        }
    }
    return out;
}

std::vector<SceneMesh::Uv> readUvs(const aiMesh& mesh, unsigned set) {
    std::vector<SceneMesh::Uv> uvs;
    if (set >= AI_MAX_NUMBER_OF_TEXTURECOORDS || mesh.mTextureCoords[set] == nullptr) {
        return uvs;
    }
    uvs.reserve(mesh.mNumVertices);
    for (unsigned i = 0; i < mesh.mNumVertices; ++i) {
        const aiVector3D& uv = mesh.mTextureCoords[set][i];
        uvs.push_back({uv.x, uv.y});
    }
    return uvs;
}

// Null when the mesh has no triangle (only points or lines).
std::shared_ptr<const SceneMesh> convertMesh(const aiMesh& source, const std::string& path) {
    auto mesh = std::make_shared<SceneMesh>();
    mesh->name = source.mName.C_Str();
    mesh->vertices.reserve(source.mNumVertices);
    for (unsigned i = 0; i < source.mNumVertices; ++i) {
        const aiVector3D& p = source.mVertices[i];
        mesh->vertices.push_back({p.x, p.y, p.z});
    }
    mesh->uvs = readUvs(source, 0);
    mesh->secondUvs = readUvs(source, 1);
    for (unsigned f = 0; f < source.mNumFaces; ++f) {
        const aiFace& face = source.mFaces[f];
        if (face.mNumIndices != 3) {
            continue;
        }
        SceneMesh::Triangle triangle{face.mIndices[0], face.mIndices[1], face.mIndices[2]};
        for (std::uint32_t index : triangle) {
            if (index >= source.mNumVertices) {
                fail(path, "mesh '" + mesh->name + "' refers to vertex " + std::to_string(index) +
                               " of " + std::to_string(source.mNumVertices));
            }
        }
        mesh->triangles.push_back(triangle);
    }
    if (mesh->triangles.empty()) {
        return nullptr;
    }
    return mesh;
}

void collectSubMeshes(const aiNode& node, const Matrix& parent,
                      const std::vector<std::shared_ptr<const SceneMesh>>& meshes,
                      std::vector<SceneModel::SubMesh>& out) {
    const Matrix world = multiply(parent, toMatrix(node.mTransformation));
    for (unsigned i = 0; i < node.mNumMeshes; ++i) {
        const unsigned index = node.mMeshes[i];
        if (index < meshes.size() && meshes[index]) {
            out.push_back({meshes[index], world, node.mName.C_Str()});
        }
    }
    for (unsigned i = 0; i < node.mNumChildren; ++i) {
        collectSubMeshes(*node.mChildren[i], world, meshes, out);
    }
}

std::shared_ptr<const SceneModel> readModel(const std::string& path) {
    Assimp::Importer importer;
    // Sorting by primitive type moves points and lines into meshes of their own, which
    // convertMesh then drops: they have no area to bake.
    const aiScene* scene = importer.ReadFile(path, aiProcess_Triangulate | aiProcess_SortByPType);
    if (scene == nullptr) {
        const std::string reason = importer.GetErrorString();
        fail(path, reason.empty() ? "the mesh library could not parse it" : reason);
    }
    std::vector<std::shared_ptr<const SceneMesh>> meshes;
    for (unsigned i = 0; i < scene->mNumMeshes; ++i) {
        meshes.push_back(convertMesh(*scene->mMeshes[i], path));
    }
    auto model = std::make_shared<SceneModel>();
    model->path = path;
    if (scene->mRootNode != nullptr) {
        collectSubMeshes(*scene->mRootNode, SceneModel::SubMesh{}.matrix, meshes, model->subMeshes);
    }
    if (model->subMeshes.empty()) {
        fail(path, "it holds no triangle mesh");
    }
    return model;
}

}  // namespace

std::shared_ptr<const SceneModel> SceneLoader::Load(const std::string& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (!fs::exists(status)) {
        fail(path, "no such file");
    }
    if (fs::is_directory(status)) {
        fail(path, "it is a folder");
    }
    const fs::file_time_type time = fs::last_write_time(path, error);
    const std::uintmax_t size = fs::file_size(path, error);
    if (error) {
        fail(path, error.message());
    }

    // Reading under the lock keeps two threads from parsing the same file twice; models are
    // read rarely enough that serialising different files costs nothing noticeable.
    std::lock_guard<std::mutex> lock(cacheMutex());
    auto found = cache().find(path);
    if (found != cache().end() && found->second.time == time && found->second.size == size) {
        return found->second.model;
    }
    std::shared_ptr<const SceneModel> model = readModel(path);
    cache()[path] = CacheEntry{time, size, model};
    return model;
}

void SceneLoader::ClearCache() {
    std::lock_guard<std::mutex> lock(cacheMutex());
    cache().clear();
}
