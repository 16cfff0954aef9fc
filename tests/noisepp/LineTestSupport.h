#pragma once

// Helpers of the line tests: run a check once per instruction set this machine offers, and
// compare the run forms of an element with its one-point colours to the bit.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "hwy/targets.h"
#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"

namespace noisepp::test {

/// Calls check() once for every instruction set compiled in and supported here, with only that
/// one allowed, and restores the normal choice afterwards.
template <class Check>
void forEachTarget(Check check) {
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        SCOPED_TRACE(std::string("instruction set ") + hwy::TargetName(target));
        check();
    }
    hwy::SetSupportedTargetsForTest(0);
}

inline bool sameBits(const TextureColor& a, const TextureColor& b) {
    return std::memcmp(&a, &b, sizeof(TextureColor)) == 0;
}

inline std::string describe(const TextureColor& c) {
    std::ostringstream text;
    text.precision(9);
    text << "(" << c.red << ", " << c.green << ", " << c.blue << ", " << c.opacity << ")";
    return text.str();
}

/// Points for the run forms: x per point, y and z per point.
struct PointSet {
    std::vector<double> x, y, z;
    void add(double px, double py, double pz) {
        x.push_back(px);
        y.push_back(py);
        z.push_back(pz);
    }
    std::size_t size() const { return x.size(); }
};

/// Expects every run form of `element` to give getValue's colour bit for bit: the line from
/// (x, y, z) advancing by xStep, the same points as a row, and `points` as arbitrary points.
/// Reports at most the first mismatch of each form.
inline void expectRunsMatchPoints(const PipelineElement3D& element, double x, double y, double z,
                                  double xStep, std::size_t count, const PointSet& points) {
    std::vector<TextureColor> line(count);
    const double end = element.getLine(x, y, z, xStep, count, line.data());
    std::vector<double> xs(count);
    double px = x;
    for (std::size_t i = 0; i < count; ++i) {
        xs[i] = px;
        px = px + xStep;
    }
    EXPECT_EQ(std::memcmp(&end, &px, sizeof(double)), 0) << "x after the line";
    std::vector<TextureColor> row(count);
    element.getRowValues(xs.data(), y, z, count, row.data());
    for (std::size_t i = 0; i < count; ++i) {
        const TextureColor expected = element.getValue(xs[i], y, z);
        if (!sameBits(line[i], expected) || !sameBits(row[i], expected)) {
            ADD_FAILURE() << "line point " << i << " at (" << xs[i] << ", " << y << ", " << z
                          << "): one point " << describe(expected) << ", line " << describe(line[i])
                          << ", row " << describe(row[i]);
            break;
        }
    }
    std::vector<TextureColor> many(points.size());
    element.getValues(points.x.data(), points.y.data(), points.z.data(), points.size(),
                      many.data());
    for (std::size_t i = 0; i < points.size(); ++i) {
        const TextureColor expected = element.getValue(points.x[i], points.y[i], points.z[i]);
        if (!sameBits(many[i], expected)) {
            ADD_FAILURE() << "point " << i << " at (" << points.x[i] << ", " << points.y[i] << ", "
                          << points.z[i] << "): one point " << describe(expected) << ", run "
                          << describe(many[i]);
            break;
        }
    }
}

}  // namespace noisepp::test
