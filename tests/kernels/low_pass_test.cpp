#include "kernels/low_pass.h"

#include <algorithm>

#include "core/numerics.h"
#include "simd_targets.h"

namespace {

using Rows = std::vector<std::vector<std::uint16_t>>;

std::int32_t PlainResult(const Rows& rows, std::size_t left) {
    std::int32_t sum = 0;
    for (std::size_t row = 0; row < 5; ++row) {
        for (std::size_t col = 0; col < 5; ++col) {
            const bool inner = row % 4 != 0 && col % 4 != 0;
            const std::int32_t weight = row == 2 && col == 2 ? 12 : inner ? 4 : 1;
            sum += weight * rows[row][left + col];
        }
    }
    return sum;
}

// With the largest and the smallest result at places of their own, the ends of the row among them.
TEST(LowPass, EveryTargetAndLengthWeighsTheNeighbourhood) {
    for (std::size_t cols = 5; cols <= 600; cols += cols < 90 ? 1 : 83) {
        Rows rows;
        for (std::uint32_t row = 0; row < 5; ++row)
            rows.push_back(tqtest::HostilePels(cols, row));
        const std::uint16_t* const pels[] = {rows[0].data(), rows[1].data(), rows[2].data(), rows[3].data(),
                                             rows[4].data()};
        std::vector<std::int32_t> plain(cols - 4);
        for (std::size_t i = 0; i < plain.size(); ++i)
            plain[i] = PlainResult(rows, i);
        const auto [low, high] = std::ranges::minmax(plain);
        tqtest::ForEachTarget([&, low = low, high = high] {
            std::vector<std::int32_t> columns(2 * cols), results(cols - 4);
            const auto range = tq::kernels::LowPassRow(pels, cols, columns.data(), results.data());
            ASSERT_EQ(results, plain) << cols;
            ASSERT_EQ(range.low, low) << cols;
            ASSERT_EQ(range.high, high) << cols;
            for (const double scale : {32000.0 / (high - low + 1), 1.0, -1.0, 1e300}) {
                tqtest::ExpectRun<std::uint16_t>(
                    plain.size(),
                    [&](auto* out) {
                        tq::kernels::ScaleResults(results.data(), low, scale, out, plain.size());
                    },
                    [&](std::size_t i) {
                        return tq::ClampToPel(tq::TruncToInt32(scale * (plain[i] - low)));
                    });
            }
        });
    }
}

}  // namespace
