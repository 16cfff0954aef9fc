// Covers: the Blobs density threshold (an exact half rounds down, the limits, not a number).
// Blob placement, radii and seeds are recorded with every module's colours in LineGraphTest.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "noisepp/modules/BlobsElement3D.h"
#include "noisepp/modules/BlobsModule.h"

namespace noisepp {
namespace {


const TextureColor kA{0.0f, 0.25f, 0.5f, 1.0f};
const TextureColor kB{1.0f, 0.75f, 0.0f, 0.5f};

std::int32_t thresholdFor(double density) {
    BlobsElement3D::Settings s{kA, kB, 0.0, 1.0, density, false, 0, PeriodicLattice(1.0)};
    return BlobsElement3D(s).getDensityThreshold();
}

TEST(Blobs, DensityThresholdRoundsAnExactHalfDown) {
    EXPECT_EQ(thresholdFor(0.0), 0);
    EXPECT_EQ(thresholdFor(0.5), 127);  // 127.5
    EXPECT_EQ(thresholdFor(127.6 / 255.0), 128);
    EXPECT_EQ(thresholdFor(1.0), 255);
    EXPECT_EQ(thresholdFor(255.0), 65025);  // the module default: every cell
    EXPECT_EQ(thresholdFor(1e300), std::numeric_limits<std::int32_t>::max());
    EXPECT_LE(thresholdFor(std::nan("")), 0) << "not a number means no blobs";
}

}  // namespace
}  // namespace noisepp
