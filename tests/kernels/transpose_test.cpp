#include "kernels/transpose.h"

#include "simd_targets.h"

namespace {

namespace kernels = tq::kernels;
using Pels = std::vector<std::uint16_t>;

// Every rest of blocks in both directions and more than one tile, upward on either side; the cells between
// the rows of the result stay as they are.
TEST(Transpose, EveryTargetMovesEachPelOnce) {
    constexpr std::ptrdiff_t kGap = 3;
    for (std::ptrdiff_t cols = 1; cols <= 140; cols += cols < 18 ? 1 : 61) {
        for (std::ptrdiff_t rows = 1; rows <= 140; rows += rows < 18 ? 1 : 61) {
            const std::ptrdiff_t inStride = cols + kGap, outStride = rows + kGap;
            const Pels in = tqtest::HostilePels(static_cast<std::size_t>(rows * inStride), 31);
            for (const int upward : {0, 1, 2, 3}) {
                const bool fromLast = upward % 2 != 0, toLast = upward / 2 != 0;
                Pels expected(static_cast<std::size_t>(cols * outStride), 0xA5A5);
                for (std::ptrdiff_t c = 0; c < cols; ++c) {
                    for (std::ptrdiff_t r = 0; r < rows; ++r) {
                        const std::ptrdiff_t from = fromLast ? rows - 1 - r : r,
                                             to = toLast ? cols - 1 - c : c;
                        expected[static_cast<std::size_t>(to * outStride + r)] =
                            in[static_cast<std::size_t>(from * inStride + c)];
                    }
                }
                tqtest::ForEachTarget([&] {
                    Pels out(expected.size(), 0xA5A5);
                    kernels::Transpose(in.data() + (fromLast ? (rows - 1) * inStride : 0),
                                       fromLast ? -inStride : inStride, cols, rows,
                                       out.data() + (toLast ? (cols - 1) * outStride : 0),
                                       toLast ? -outStride : outStride);
                    ASSERT_EQ(out, expected) << cols << " x " << rows;
                });
            }
        }
    }
}

TEST(Transpose, EveryTargetReversesRowsOfAnyLength) {
    const Pels in = tqtest::HostilePels(100, 32);
    tqtest::ForEachTarget([&] {
        for (std::size_t count = 0; count <= in.size(); ++count) {
            tqtest::ExpectRun<std::uint16_t>(
                count,
                [&](auto* out) { kernels::ReverseRow(in.data(), static_cast<std::ptrdiff_t>(count), out); },
                [&](std::size_t i) { return in[count - 1 - i]; });
        }
    });
}

}  // namespace
