#include "nodes/Texture3DRenderUVPixel.h"

#include <cmath>
#include <cstddef>

#include "host/Image.h"

namespace {

using Matrix3 = double[3][3];

// target = rotation * target, for the rotation by `angle` about axis `axis` (0 x, 1 y, 2 z).
void rotate(Matrix3& target, int axis, double angle) {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    Matrix3 rotation = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
    const int a = (axis + 1) % 3;
    const int b = (axis + 2) % 3;
    // Right-handed: x turns y towards z, y turns z towards x, z turns x towards y.
    rotation[a][a] = c;
    rotation[a][b] = -s;
    rotation[b][a] = s;
    rotation[b][b] = c;
    Matrix3 product;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            product[i][j] = rotation[i][0] * target[0][j] + rotation[i][1] * target[1][j] +
                            rotation[i][2] * target[2][j];
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            target[i][j] = product[i][j];
}

}  // namespace

Texture3DRenderUVPixel::Texture3DRenderUVPixel(const noisepp::Pipeline3D* pipeline,
                                               const noisepp::PipelineElement3D* element,
                                               const Image* translate, const Image* rotate,
                                               const Image* scale, const Ranges& ranges)
    : mPipeline(pipeline),
      mElement(element),
      mRanges(ranges),
      mTranslate(MakeDriver(translate)),
      mRotate(MakeDriver(rotate)),
      mScale(MakeDriver(scale)) {
    for (const Image* image : {translate, rotate, scale})
        if (image != nullptr && image->GetSizeX() > 0 && image->GetSizeY() > 0)
            mImageWidth = image->GetSizeX();
}

Texture3DRenderUVPixel::Driver Texture3DRenderUVPixel::MakeDriver(const Image* image) {
    Driver driver;
    if (image == nullptr)
        return driver;
    driver.pixels = image->GetConstArray();
    driver.channels = image->GetNumChannels();
    if (driver.channels >= 3) {
        driver.axisChannel[1] = 1;
        driver.axisChannel[2] = 2;
    }
    return driver;
}

void Texture3DRenderUVPixel::Prepare() {
    mScratch.assign(mPipeline != nullptr ? mPipeline->getElementCount() : 0, noisepp::Cache{});
}

void Texture3DRenderUVPixel::Steer(const Driver& driver, const Point* range, int x, int y,
                                   double* out) const {
    if (driver.pixels == nullptr) {
        for (int axis = 0; axis < 3; ++axis)
            out[axis] = range[axis].x;
        return;
    }
    const std::size_t base = (static_cast<std::size_t>(mImageWidth) * static_cast<std::size_t>(y) +
                              static_cast<std::size_t>(x)) *
                             static_cast<std::size_t>(driver.channels);
    for (int axis = 0; axis < 3; ++axis) {
        const double v = driver.pixels[base + static_cast<std::size_t>(driver.axisChannel[axis])];
        out[axis] = range[axis].x + v * (range[axis].y - range[axis].x);
    }
}

void Texture3DRenderUVPixel::ShadePixel(int x, int y, const SceneMesh& mesh, const double* matrix,
                                        int triangle, const float* weights, float* result) {
    double translate[3];
    double angle[3];
    double scale[3];
    Steer(mTranslate, mRanges.translate, x, y, translate);
    Steer(mRotate, mRanges.rotate, x, y, angle);
    Steer(mScale, mRanges.scale, x, y, scale);

    // The surface point in world space, blended from the triangle's placed vertices.
    const SceneMesh::Triangle& corners = mesh.triangles[static_cast<std::size_t>(triangle)];
    double point[3] = {0.0, 0.0, 0.0};
    for (int corner = 0; corner < 3; ++corner) {
        const SceneMesh::Vertex& v = mesh.vertices[corners[static_cast<std::size_t>(corner)]];
        const double w = weights[corner];
        for (int i = 0; i < 3; ++i) {
            const double placed =
                v.x * matrix[i] + v.y * matrix[3 + i] + v.z * matrix[6 + i] + matrix[9 + i];
            point[i] = corner == 0 ? w * placed : point[i] + w * placed;
        }
    }

    // Scale first, then the rotations about x, y and z by the negated angles; an angle of zero
    // and an all-ones scale cost nothing.
    Matrix3 texture = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
    const double reciprocal[3] = {1.0 / scale[0], 1.0 / scale[1], 1.0 / scale[2]};
    if (reciprocal[0] != 1.0 || reciprocal[1] != 1.0 || reciprocal[2] != 1.0)
        for (int i = 0; i < 3; ++i)
            texture[i][i] = reciprocal[i];
    for (int axis = 0; axis < 3; ++axis)
        if (angle[axis] != 0.0)
            rotate(texture, axis, -angle[axis]);

    double p[3];
    for (int i = 0; i < 3; ++i)
        p[i] = texture[i][0] * point[0] + texture[i][1] * point[1] + texture[i][2] * point[2] -
               translate[i];

    const noisepp::TextureColor color = mElement->getValue(p[0], p[1], p[2]);
    result[0] = color.red;
    result[1] = color.green;
    result[2] = color.blue;
    result[3] = color.opacity;
}
