#include "kernels/window_means.h"

#include <algorithm>
#include <cmath>

#include "kernels/sobel.h"
#include "simd_targets.h"

namespace {

namespace kernels = tq::kernels;

using Pels = std::vector<std::uint16_t>;

/// Nines of pels that put every sum near a quotient's edge: small numbers at the top of the range.
Pels NearlyWhite(std::size_t count, std::uint32_t seed) {
    Pels pels = tqtest::HostilePels(count, seed);
    for (std::uint16_t& pel : pels)
        pel = static_cast<std::uint16_t>(pel % 7 == 0 ? 0 : 65535 - pel % 5);
    return pels;
}

// Each length has other ends of vectors and tiles; the wide form takes the same sums as doubles.
TEST(WindowMeans, BothWidthsAgreeWithTheDivisionOnEveryTarget) {
    tqtest::ForEachTarget([&] {
        for (const std::size_t width : {std::size_t{1}, std::size_t{3}, std::size_t{181}}) {
            for (std::size_t count = 1; count <= 70; ++count) {
                // Column sums of 181 rows, the tallest of the narrow form.
                const Pels pels = count % 2 == 0 ? tqtest::HostilePels(count + width - 1, 71)
                                                 : NearlyWhite(count + width - 1, 72);
                std::vector<std::uint32_t> columns, marks;
                std::vector<double> wide(1), wideMarks(1);
                for (const std::uint16_t pel : pels) {
                    columns.push_back(pel * 181U);
                    marks.push_back(pel == 0 ? 0 : 181);
                    wide.push_back(wide.back() + columns.back());
                    wideMarks.push_back(wideMarks.back() + marks.back());
                }
                std::vector<std::uint32_t> prefix(columns.size() + 1), markPrefix(prefix.size());
                kernels::WrappingPrefixSums(columns.data(), columns.size(), prefix.data());
                kernels::WrappingPrefixSums(marks.data(), marks.size(), markPrefix.data());
                const double area = 181.0 * static_cast<double>(width);
                Pels narrowMeans(count), wideMeans(count), narrowLit(count), wideLit(count);
                kernels::WindowMeans(prefix.data(), width, count, area, narrowMeans.data());
                kernels::WindowMeans(wide.data(), width, count, area, wideMeans.data());
                kernels::LitWindowMeans(prefix.data(), markPrefix.data(), width, count, pels.data(),
                                        narrowLit.data());
                kernels::LitWindowMeans(wide.data(), wideMarks.data(), width, count, pels.data(),
                                        wideLit.data());
                for (std::size_t i = 0; i < count; ++i) {
                    const double sum = wide[i + width] - wide[i];
                    const auto mean = static_cast<std::uint16_t>(sum / area + 0.5);
                    ASSERT_EQ(narrowMeans[i], mean) << i << " of " << count;
                    ASSERT_EQ(wideMeans[i], mean) << i << " of " << count;
                    const double number = wideMarks[i + width] - wideMarks[i];
                    const std::uint16_t lit =
                        pels[i] == 0 ? std::uint16_t{0} : static_cast<std::uint16_t>(sum / number + 0.5);
                    ASSERT_EQ(narrowLit[i], lit) << i << " of " << count;
                    ASSERT_EQ(wideLit[i], lit) << i << " of " << count;
                }
            }
        }
    });
}

TEST(RowsOfThree, SmoothingAndSobelAgreeWithThePlainLoopOnEveryTarget) {
    tqtest::ForEachTarget([&] {
        for (std::size_t cols = 1; cols <= 2200; cols += cols < 150 ? 1 : 173) {
            for (const auto make : {&tqtest::HostilePels, &NearlyWhite}) {
                const Pels rows[3] = {make(cols, 73), make(cols, 74), make(cols, 75)};
                Pels smooth(cols, 7), lit(cols, 7), sobel(cols, 7);
                kernels::SmoothRow(rows[0].data(), rows[1].data(), rows[2].data(), cols, smooth.data());
                kernels::SmoothLitRow(rows[0].data(), rows[1].data(), rows[2].data(), cols, lit.data());
                const std::int32_t largest =
                    kernels::SobelRow(rows[0].data(), rows[1].data(), rows[2].data(), cols, sobel.data());
                std::int32_t expectedLargest = 0;
                for (std::size_t i = 1; i + 1 < cols; ++i) {
                    std::uint32_t sum = 0, number = 0;
                    for (const Pels& row : rows) {
                        for (std::size_t at = i - 1; at <= i + 1; ++at) {
                            sum += row[at];
                            number += row[at] != 0 ? 1 : 0;
                        }
                    }
                    ASSERT_EQ(smooth[i], sum / 9) << i << " of " << cols;
                    ASSERT_EQ(lit[i], rows[1][i] == 0 ? 0 : sum / number) << i << " of " << cols;
                    const auto across = [&](std::size_t row) { return rows[row][i + 1] - rows[row][i - 1]; };
                    const auto down = [&](std::size_t at) { return rows[2][at] - rows[0][at]; };
                    const auto x = static_cast<float>(across(0) + 2 * across(1) + across(2));
                    const auto y = static_cast<float>(down(i - 1) + 2 * down(i) + down(i + 1));
                    const auto magnitude = static_cast<std::int32_t>(std::sqrt(x * x + y * y));
                    expectedLargest = std::max(expectedLargest, magnitude);
                    ASSERT_EQ(sobel[i], std::min(magnitude, 65535)) << i << " of " << cols;
                }
                ASSERT_EQ(largest, expectedLargest) << cols;
                // The first and the last column are the caller's.
                for (const Pels* out : {&smooth, &lit, &sobel}) {
                    ASSERT_EQ(out->front(), 7);
                    ASSERT_EQ(out->back(), 7);
                }
            }
        }
    });
}

}  // namespace
