// Covers: the gradient, value and permutation tables entry for entry, when the reference data
// files are at hand (without them, the recorded colours of LineGraphTest still pin the tables).

#include <gtest/gtest.h>

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

/// Entry for entry against the reference data files, when they are at hand.
class NoiseTablesData : public ::testing::Test {
protected:
    void SetUp() override {
        if (!std::filesystem::is_directory(TEXTURE_SHARED_DATA))
            GTEST_SKIP() << "no shared data folder at " << TEXTURE_SHARED_DATA;
    }
};

TEST_F(NoiseTablesData, MatchTheDataFiles) {
    const auto gradients = readRows("gradient_vectors.txt");
    ASSERT_EQ(gradients.size(), 256u);
    for (std::size_t i = 0; i < 256; ++i) {
        ASSERT_EQ(gradients[i].size(), 3u) << "line " << i;
        for (std::size_t k = 0; k < 3; ++k)
            EXPECT_EQ(kGradientTable[i * 4 + k], gradients[i][k]) << "record " << i;
    }
    const auto values = readRows("value_table.txt");
    ASSERT_EQ(values.size(), 256u);
    for (std::size_t i = 0; i < 256; ++i)
        EXPECT_EQ(kValueTable[i], values[i].at(0)) << "entry " << i;
    std::vector<double> permutation;
    for (const auto& row : readRows("improved_noise_permutation.txt"))
        permutation.insert(permutation.end(), row.begin(), row.end());
    ASSERT_EQ(permutation.size(), 256u);
    for (std::size_t i = 0; i < 256; ++i)
        EXPECT_EQ(kPermutationTable[i], static_cast<std::int32_t>(permutation[i])) << i;
}

}  // namespace
}  // namespace noisepp
