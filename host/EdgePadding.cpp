#include "host/EdgePadding.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr int kNeighbours[8][2] = {{-1, -1}, {0, -1}, {1, -1}, {-1, 0},
                                   {1, 0},   {-1, 1}, {0, 1},  {1, 1}};

}  // namespace

void EdgePadding::Apply(float* pixels, int sizeX, int sizeY, std::vector<std::uint8_t>& covered,
                        int passes) {
    if (sizeX <= 0 || sizeY <= 0 || passes <= 0) {
        return;
    }
    const auto index = [sizeX](int x, int y) {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(sizeX) +
               static_cast<std::size_t>(x);
    };
    // Only pixels next to the newest covered ones can change in the next pass, so each pass
    // visits that frontier instead of the whole image.
    std::vector<std::size_t> frontier;
    std::vector<std::uint8_t> queued(covered.size(), 0);
    const auto queueNeighbours = [&](int x, int y) {
        for (const auto& offset : kNeighbours) {
            const int nx = x + offset[0];
            const int ny = y + offset[1];
            if (nx < 0 || ny < 0 || nx >= sizeX || ny >= sizeY) {
                continue;
            }
            const std::size_t n = index(nx, ny);
            if (!covered[n] && !queued[n]) {
                queued[n] = 1;
                frontier.push_back(n);
            }
        }
    };
    for (int y = 0; y < sizeY; ++y) {
        for (int x = 0; x < sizeX; ++x) {
            if (covered[index(x, y)]) {
                queueNeighbours(x, y);
            }
        }
    }

    struct Fill {
        std::size_t pixel;
        float color[4];
    };
    std::vector<Fill> fills;
    for (int pass = 0; pass < passes && !frontier.empty(); ++pass) {
        // A fixed summation order keeps the result independent of how the frontier was found.
        std::sort(frontier.begin(), frontier.end());
        fills.clear();
        for (std::size_t p : frontier) {
            const int x = static_cast<int>(p % static_cast<std::size_t>(sizeX));
            const int y = static_cast<int>(p / static_cast<std::size_t>(sizeX));
            double sum[4] = {0.0, 0.0, 0.0, 0.0};
            int count = 0;
            for (const auto& offset : kNeighbours) {
                const int nx = x + offset[0];
                const int ny = y + offset[1];
                if (nx < 0 || ny < 0 || nx >= sizeX || ny >= sizeY || !covered[index(nx, ny)]) {
                    continue;
                }
                const float* source = pixels + index(nx, ny) * 4;
                for (int c = 0; c < 4; ++c) {
                    sum[c] += source[c];
                }
                ++count;
            }
            Fill fill{p, {}};
            for (int c = 0; c < 4; ++c) {
                fill.color[c] = static_cast<float>(sum[c] / count);
            }
            fills.push_back(fill);
        }
        frontier.clear();
        for (const Fill& fill : fills) {
            std::copy(fill.color, fill.color + 4, pixels + fill.pixel * 4);
            covered[fill.pixel] = 1;
            queued[fill.pixel] = 0;
        }
        for (const Fill& fill : fills) {
            queueNeighbours(static_cast<int>(fill.pixel % static_cast<std::size_t>(sizeX)),
                            static_cast<int>(fill.pixel / static_cast<std::size_t>(sizeX)));
        }
    }
}
