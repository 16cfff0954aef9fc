#include "apps/texture-studio/BakeModel.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <limits>

#include <QFileInfo>
#include <QObject>

#include "host/Attribute.h"
#include "host/Engine.h"
#include "host/Node.h"
#include "host/SceneLoader.h"

namespace {

using Vector = std::array<double, 3>;

Vector Place(const std::array<double, 12>& m, const SceneMesh::Vertex& v) {
    return {m[0] * v.x + m[3] * v.y + m[6] * v.z + m[9],
            m[1] * v.x + m[4] * v.y + m[7] * v.z + m[10],
            m[2] * v.x + m[5] * v.y + m[8] * v.z + m[11]};
}

Vector FaceNormal(const Vector& a, const Vector& b, const Vector& c) {
    const Vector u{b[0] - a[0], b[1] - a[1], b[2] - a[2]};
    const Vector w{c[0] - a[0], c[1] - a[1], c[2] - a[2]};
    Vector n{u[1] * w[2] - u[2] * w[1], u[2] * w[0] - u[0] * w[2], u[0] * w[1] - u[1] * w[0]};
    const double length = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
    if (length > 0.0)
        for (double& c2 : n)
            c2 /= length;
    return n;
}

const Attribute* MeshAttribute(const Node& node) {
    for (const auto& attribute : node.GetAttributes())
        if (attribute->GetName() == "mesh")
            return attribute.get();
    return nullptr;
}

void AddSubMesh(const SceneModel::SubMesh& placed, bool secondUvs, BakeModel* model) {
    const SceneMesh& mesh = *placed.mesh;
    const std::vector<SceneMesh::Uv>& uvs = secondUvs ? mesh.secondUvs : mesh.uvs;
    for (const SceneMesh::Triangle& triangle : mesh.triangles) {
        Vector corners[3];
        for (int i = 0; i < 3; ++i)
            corners[i] = Place(placed.matrix, mesh.vertices[triangle[i]]);
        const Vector normal = FaceNormal(corners[0], corners[1], corners[2]);
        for (int i = 0; i < 3; ++i) {
            for (int axis = 0; axis < 3; ++axis) {
                model->positions.push_back(static_cast<float>(corners[i][axis]));
                model->normals.push_back(static_cast<float>(normal[axis]));
            }
            const SceneMesh::Uv uv = triangle[i] < uvs.size() ? uvs[triangle[i]] : SceneMesh::Uv{};
            model->uvs.push_back(static_cast<float>(uv.u));
            model->uvs.push_back(static_cast<float>(uv.v));
        }
    }
}

void Bound(BakeModel* model) {
    float low[3] = {std::numeric_limits<float>::max(), std::numeric_limits<float>::max(),
                    std::numeric_limits<float>::max()};
    float high[3] = {std::numeric_limits<float>::lowest(), std::numeric_limits<float>::lowest(),
                     std::numeric_limits<float>::lowest()};
    for (std::size_t i = 0; i < model->positions.size(); ++i) {
        low[i % 3] = std::min(low[i % 3], model->positions[i]);
        high[i % 3] = std::max(high[i % 3], model->positions[i]);
    }
    float radius = 0.0f;
    for (int axis = 0; axis < 3; ++axis) {
        model->centre[axis] = (low[axis] + high[axis]) / 2;
        radius = std::max(radius, (high[axis] - low[axis]) / 2);
    }
    model->radius = radius > 0.0f ? radius * std::sqrt(3.0f) : 1.0f;
}

}  // namespace

bool BakeModel::FromNode(const Engine& engine, const Node& node, BakeModel* model, QString* error) {
    const QString name = QString::fromStdString(engine.GetNodeId(&node));
    const auto fail = [error](const QString& message) {
        if (error != nullptr)
            *error = message;
        return false;
    };
    const Attribute* attribute = MeshAttribute(node);
    if (attribute == nullptr)
        return fail(QObject::tr("'%1' bakes onto no mesh").arg(name));
    const MeshReference reference = attribute->GetValue().GetMesh();
    const std::vector<std::string>& models = engine.GetSceneModels();
    if (reference.model < 0 || reference.model >= static_cast<int>(models.size()))
        return fail(QObject::tr("'%1' has no mesh chosen (attribute 'mesh'; the document's scene "
                                "holds %2 model(s))")
                        .arg(name)
                        .arg(models.size()));
    const std::string& path = models[static_cast<std::size_t>(reference.model)];
    std::shared_ptr<const SceneModel> scene;
    try {
        scene = SceneLoader::Load(path);
    } catch (const std::exception& problem) {
        return fail(QString::fromStdString(problem.what()));
    }
    const int count = static_cast<int>(scene->subMeshes.size());
    if (reference.submesh >= count)
        return fail(QObject::tr("'%1': model '%2' has %3 sub-mesh(es), not %4")
                        .arg(name, QString::fromStdString(path))
                        .arg(count)
                        .arg(reference.submesh + 1));
    *model = BakeModel();
    for (int i = 0; i < count; ++i)
        if (reference.submesh < 0 || reference.submesh == i)
            AddSubMesh(scene->subMeshes[static_cast<std::size_t>(i)], reference.flag, model);
    Bound(model);
    model->caption = QFileInfo(QString::fromStdString(path)).fileName() +
                     (reference.submesh < 0 ? QObject::tr(", every sub-mesh")
                                            : QObject::tr(", sub-mesh %1").arg(reference.submesh));
    return true;
}
