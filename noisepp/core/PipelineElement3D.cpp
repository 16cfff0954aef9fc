#include "noisepp/core/PipelineElement3D.h"

#include <algorithm>

namespace noisepp {

double PipelineElement3D::getLine(double x, double y, double z, double xStep, std::size_t count,
                                  TextureColor* out) const {
    double xs[kRunLength];
    for (std::size_t done = 0; done < count;) {
        const std::size_t run = std::min(kRunLength, count - done);
        for (std::size_t i = 0; i < run; ++i) {
            xs[i] = x;
            x = x + xStep;
        }
        evaluateRun(PointRun::row(xs, y, z, run), out + done);
        done += run;
    }
    return x;
}

void PipelineElement3D::getRowValues(const double* x, double y, double z, std::size_t count,
                                     TextureColor* out) const {
    getRunValues(PointRun::row(x, y, z, count), out);
}

void PipelineElement3D::getValues(const double* x, const double* y, const double* z,
                                  std::size_t count, TextureColor* out) const {
    getRunValues(PointRun::points(x, y, z, count), out);
}

void PipelineElement3D::getRunValues(const PointRun& points, TextureColor* out) const {
    for (std::size_t done = 0; done < points.count; done += kRunLength)
        evaluateRun(points.slice(done, std::min(kRunLength, points.count - done)), out + done);
}

void PipelineElement3D::getRunValuesWhere(const PointRun& points, const bool* wanted,
                                          TextureColor* out) const {
    std::size_t index[kRunLength];
    std::size_t m = 0;
    for (std::size_t i = 0; i < points.count; ++i) {
        if (wanted[i])
            index[m++] = i;
    }
    if (m == points.count) {
        getRunValues(points, out);
        return;
    }
    if (m == 0)
        return;
    double x[kRunLength], y[kRunLength], z[kRunLength];
    TextureColor picked[kRunLength];
    for (std::size_t k = 0; k < m; ++k) {
        x[k] = points.x[index[k]];
        y[k] = points.yAt(index[k]);
        z[k] = points.zAt(index[k]);
    }
    getRunValues(points.isRow() ? PointRun::row(x, points.rowY, points.rowZ, m)
                                : PointRun::points(x, y, z, m),
                 picked);
    for (std::size_t k = 0; k < m; ++k)
        out[index[k]] = picked[k];
}

void PipelineElement3D::evaluateRun(const PointRun& points, TextureColor* out) const {
    for (std::size_t i = 0; i < points.count; ++i)
        out[i] = getValue(points.x[i], points.yAt(i), points.zAt(i));
}

}  // namespace noisepp
