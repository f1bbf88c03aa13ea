#include "kernels/running_averages.h"

#include "simd_targets.h"

namespace {

namespace kernels = tq::kernels;

// Sums start beyond 2^24, so that every addition rounds and only the right order gives the right bits.
TEST(RunningAverages, EveryTargetAddsInTheOrderOfTheLine) {
    constexpr std::size_t kRows = 11;
    tqtest::ForEachTarget([&] {
        for (std::size_t cols = 1; cols <= 70; ++cols) {
            const auto pels = tqtest::HostilePels(kRows * cols, 8);
            for (std::size_t rows = 1; rows <= kRows; ++rows) {
                std::vector<float> sums(cols, 16777218.0f);
                kernels::AddRowsInOrder(pels.data(), rows, cols, sums.data());
                for (std::size_t col = 0; col < cols; ++col) {
                    volatile float expected = 16777218.0f;
                    for (std::size_t row = 0; row < rows; ++row)
                        expected = expected + static_cast<float>(pels[row * cols + col]);
                    ASSERT_EQ(sums[col], expected) << cols << " x " << rows << ", column " << col;
                }
            }
        }
    });
    constexpr std::size_t kCols = 3001;
    const auto pels = tqtest::HostilePels(kRows * kCols, 9);
    for (std::size_t rows = 1; rows <= kernels::kRowsTogether; ++rows) {
        std::vector<float> sums(rows + 1, -1.0f);
        kernels::SumRowsInOrder(pels.data(), rows, kCols, sums.data());
        for (std::size_t row = 0; row < rows; ++row) {
            volatile float expected = 0;
            for (std::size_t col = 0; col < kCols; ++col)
                expected = expected + static_cast<float>(pels[row * kCols + col]);
            ASSERT_EQ(sums[row], expected) << row << " of " << rows;
        }
        ASSERT_EQ(sums[rows], -1.0f);
    }
}

}  // namespace
