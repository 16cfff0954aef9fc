// Covers: the run forms of the Voronoi element against its one-point colours to the bit, on
// every instruction set of this machine: every shape, random seeds, jitter, displacement and
// ranges, lines that stay in one cell or cross many, lattice boundaries, ties between feature
// points (no jitter), far points and NaN.

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>

#include "TestSupport.h"
#include "noisepp/modules/VoronoiModule.h"

namespace noisepp {
namespace {

using test::expectRunsMatchPoints;
using test::forEachTarget;
using test::PointSet;

PointSet voronoiPoints(std::mt19937& random) {
    PointSet points;
    std::uniform_real_distribution<double> near(-20.0, 20.0);
    for (int i = 0; i < 60; ++i)
        points.add(near(random), near(random), near(random));
    for (double v : {0.0, -0.0, 1.0, -1.0, 0.5, -2.5, 3.0})
        points.add(v, v, -v);
    points.add(std::numeric_limits<double>::quiet_NaN(), 1.0, 2.0);
    points.add(3e9, -1.0, 0.5);
    return points;
}

TEST(LineCellularTest, VoronoiRunsMatchPointsForEveryShape) {
    std::mt19937 random(112233);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (std::int32_t shape : {0, 1, 2, 3, -1}) {
        // Jitter 0 puts every feature point on a lattice corner, where distances tie.
        for (double bias : {1.0, 0.0, 0.37}) {
            VoronoiModule module;
            module.setShape(shape);
            module.setBias(bias);
            module.setSeed(static_cast<std::int32_t>(random()));
            // Without jitter at frequency 1, points on half-unit coordinates are equally far
            // from several corners, so the tie rule decides the cell.
            module.setFrequency(bias == 0.0 ? 1.0 : 0.5 + 3.0 * unit(random));
            module.setDisplacement(2.0 * unit(random) - 0.5);
            module.setRangeLow(0.3 * unit(random));
            module.setRangeHigh(0.7 + 0.3 * unit(random));
            Pipeline3D pipeline;
            const PipelineElement3D& element =
                *pipeline.getElement(module.addToPipeline(&pipeline));
            const PointSet points = voronoiPoints(random);
            SCOPED_TRACE(::testing::Message() << "shape " << shape << ", bias " << bias);
            forEachTarget([&] {
                // Within one cell, across a few cells, across a cell per point, and backwards.
                expectRunsMatchPoints(element, 0.1, 0.2, 0.3, 0.001, 300, points);
                expectRunsMatchPoints(element, -3.0, 1.0, -0.0, 0.05, 130, points);
                expectRunsMatchPoints(element, -7.3, 2.5, 1.5, 1.1, 21, points);
                expectRunsMatchPoints(element, 4.0, -2.0, 0.0, -0.25, 9, points);
                expectRunsMatchPoints(element, 3e9, 1.0, 2.0, 0.125, 17, points);
                expectRunsMatchPoints(element, -2.5, 0.5, 1.5, 0.5, 24, points);
            });
        }
    }
}

}  // namespace
}  // namespace noisepp
