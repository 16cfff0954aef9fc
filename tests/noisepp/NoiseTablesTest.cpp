// Covers: the engine's gradient, value and permutation tables equal the reference data files
// entry for entry, and the invariants the noise relies on (unit gradients, padding, levels).

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "noisepp/math/NoiseTables.h"

namespace noisepp {
namespace {

/// Whitespace-separated numbers of every non-comment line of a data file, one row per line.
std::vector<std::vector<double>> readRows(const std::string& name) {
    std::ifstream in(std::filesystem::path(TEXTURE_SHARED_DATA) / name);
    std::vector<std::vector<double>> rows;
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#')
            continue;
        std::istringstream fields(line);
        std::vector<double> row;
        for (double value; fields >> value;)
            row.push_back(value);
        if (!row.empty())
            rows.push_back(row);
    }
    return rows;
}

class NoiseTables : public ::testing::Test {
protected:
    void SetUp() override {
        if (!std::filesystem::is_directory(TEXTURE_SHARED_DATA))
            GTEST_SKIP() << "no shared data folder at " << TEXTURE_SHARED_DATA;
    }
};

TEST_F(NoiseTables, GradientTableMatchesTheDataFileAndHoldsUnitVectors) {
    const auto rows = readRows("gradient_vectors.txt");
    ASSERT_EQ(rows.size(), 256u);
    for (std::size_t i = 0; i < 256; ++i) {
        ASSERT_EQ(rows[i].size(), 3u) << "line " << i;
        const double* g = &kGradientTable[i * 4];
        EXPECT_EQ(g[0], rows[i][0]) << "record " << i;
        EXPECT_EQ(g[1], rows[i][1]) << "record " << i;
        EXPECT_EQ(g[2], rows[i][2]) << "record " << i;
        EXPECT_EQ(g[3], 0.0) << "record " << i;
        EXPECT_NEAR(std::sqrt(g[0] * g[0] + g[1] * g[1] + g[2] * g[2]), 1.0, 1e-6) << i;
    }
}

TEST_F(NoiseTables, ValueTableMatchesTheDataFileAndUsesEveryLevelOnce) {
    const auto rows = readRows("value_table.txt");
    ASSERT_EQ(rows.size(), 256u);
    std::vector<int> levels;
    for (std::size_t i = 0; i < 256; ++i) {
        ASSERT_EQ(rows[i].size(), 2u) << "line " << i;
        EXPECT_EQ(kValueTable[i], rows[i][0]) << "entry " << i;
        const double level = rows[i][1];
        EXPECT_NEAR(kValueTable[i], level / 255.0 * 1.4 - 0.7, 1e-6) << "entry " << i;
        EXPECT_LE(std::fabs(kValueTable[i]), 0.7);
        levels.push_back(static_cast<int>(level));
    }
    std::sort(levels.begin(), levels.end());
    for (int i = 0; i < 256; ++i)
        EXPECT_EQ(levels[i], i);
}

TEST_F(NoiseTables, PermutationTableIsTheDataFilePermutationTwice) {
    std::vector<double> values;
    for (const auto& row : readRows("improved_noise_permutation.txt"))
        values.insert(values.end(), row.begin(), row.end());
    ASSERT_EQ(values.size(), 256u);
    for (std::size_t i = 0; i < 256; ++i) {
        EXPECT_EQ(kPermutationTable[i], static_cast<std::int32_t>(values[i])) << "entry " << i;
        EXPECT_EQ(kPermutationTable[i + 256], kPermutationTable[i]) << "entry " << i;
    }
    std::vector<std::int32_t> sorted(kPermutationTable.begin(), kPermutationTable.begin() + 256);
    std::sort(sorted.begin(), sorted.end());
    for (int i = 0; i < 256; ++i)
        EXPECT_EQ(sorted[i], i);
}

}  // namespace
}  // namespace noisepp
