#include <algorithm>

#include "kernels/median_network.h"
#include "kernels/median_ranks.h"
#include "simd_targets.h"

namespace {

namespace kernels = tq::kernels;

using Pels = std::vector<std::uint16_t>;

std::uint16_t MiddleOf(Pels window) {
    std::sort(window.begin(), window.end());
    return window[window.size() / 2];
}

/// A network of exchanges orders every input when it orders every input of zeros and ones, which are all
/// tried: the rows of bits below hold each of the 512 windows of nine, and random ones of twenty-five.
template <std::size_t kSide, class Kernel>
void ExpectMiddles(const std::vector<Pels>& rows, Kernel&& kernel) {
    const std::size_t cols = rows[0].size();
    const std::uint16_t* starts[kSide];
    for (std::size_t i = 0; i < kSide; ++i)
        starts[i] = rows[i].data();
    Pels out(cols, 3);
    kernel(starts, cols, out.data());
    for (std::size_t i = 0; i < cols; ++i) {
        if (i + kSide > cols) {
            ASSERT_EQ(out[i], 3) << i << " of " << cols;
            continue;
        }
        Pels window;
        for (const Pels& row : rows)
            window.insert(window.end(), row.begin() + static_cast<std::ptrdiff_t>(i),
                          row.begin() + static_cast<std::ptrdiff_t>(i + kSide));
        ASSERT_EQ(out[i], MiddleOf(window)) << i << " of " << cols;
    }
}

TEST(MedianNetworks, EveryWindowOfNineBitsAndManyOfTwentyFive) {
    std::vector<Pels> nine(3), twentyFive(5);
    for (std::uint32_t bits = 0; bits < 512; ++bits) {
        for (std::uint32_t i = 0; i < 9; ++i)
            nine[i % 3].push_back((bits >> i & 1) != 0 ? 65535 : 0);
    }
    std::mt19937 random(81);
    for (std::uint32_t window = 0; window < 40000; ++window) {
        // Twelve or thirteen ones of 25, where the middle turns.
        Pels bits(25);
        std::fill_n(bits.begin(), 12 + window % 2, std::uint16_t{1});
        for (std::size_t i = 24; i > 0; --i)
            std::swap(bits[i], bits[random() % (i + 1)]);
        for (std::size_t i = 0; i < 25; ++i)
            twentyFive[i % 5].push_back(bits[i]);
    }
    tqtest::ForEachTarget([&] {
        ExpectMiddles<3>(nine, kernels::Median3Row);
        ExpectMiddles<5>(twentyFive, kernels::Median5Row);
    });
}

TEST(MedianNetworks, RowsOfEveryLength) {
    tqtest::ForEachTarget([&] {
        for (std::size_t cols = 1; cols <= 2200; cols += cols < 150 ? 1 : 173) {
            std::vector<Pels> rows;
            for (std::uint32_t i = 0; i < 5; ++i)
                rows.push_back(tqtest::HostilePels(cols, 82 + i));
            ExpectMiddles<5>(rows, kernels::Median5Row);
            rows.resize(3);
            ExpectMiddles<3>(rows, kernels::Median3Row);
        }
    });
}

TEST(RankMedians, WindowsOfBothShapesAndTheWholeTile) {
    struct Case {
        std::size_t cols, rows, width, height;
    };
    tqtest::ForEachTarget([&] {
        kernels::RankBuffers buffers;
        for (const Case& c : {Case{30, 20, 7, 3}, Case{30, 20, 3, 7}, Case{21, 9, 21, 9}, Case{64, 1, 9, 1},
                              Case{1, 64, 1, 9}, Case{16, 4, 1, 1}, Case{40, 40, 15, 15}}) {
            for (const std::uint32_t levels : {65536U, 2U, 1U}) {
                Pels pels = tqtest::HostilePels(c.cols * c.rows, 91);
                for (std::uint16_t& pel : pels)
                    pel = static_cast<std::uint16_t>(pel % levels);
                const std::size_t outCols = c.cols - c.width + 1, outRows = c.rows - c.height + 1;
                Pels out(outCols * outRows), lit(out.size());
                kernels::MedianTile tile{pels.data(), c.cols, c.cols, c.rows, c.width, c.height, false};
                kernels::RankMedians(tile, out.data(), outCols, buffers);
                tile.lit = true;
                kernels::RankMedians(tile, lit.data(), outCols, buffers);
                for (std::size_t at = 0; at < out.size(); ++at) {
                    const std::size_t col = at % outCols, row = at / outCols;
                    Pels window;
                    for (std::size_t y = row; y < row + c.height; ++y) {
                        const auto from = pels.begin() + static_cast<std::ptrdiff_t>(y * c.cols + col);
                        window.insert(window.end(), from, from + static_cast<std::ptrdiff_t>(c.width));
                    }
                    ASSERT_EQ(out[at], MiddleOf(window)) << c.width << " x " << c.height << ": " << at;
                    std::erase(window, 0);
                    const std::uint16_t middle = window.empty() ? std::uint16_t{0} : MiddleOf(window);
                    ASSERT_EQ(lit[at], middle) << c.width << " x " << c.height << ", lit: " << at;
                }
            }
        }
    });
}

}  // namespace
