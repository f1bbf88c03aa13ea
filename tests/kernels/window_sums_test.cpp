#include "kernels/window_sums.h"

#include <cmath>
#include <utility>

#include "simd_targets.h"

namespace {

namespace kernels = tq::kernels;

TEST(WindowSums, ColumnsAndPrefixesOfEveryLengthAreExactOnEveryTarget) {
    tqtest::ForEachTarget([&] {
        for (std::size_t count = 1; count <= 80; ++count) {
            const auto a = tqtest::HostilePels(count, 2);
            const auto b = tqtest::HostilePels(count, 3);
            std::vector<std::uint32_t> columns(count,
                                               8000U * 65535U - 65535U);  // the tallest column, one pel short
            kernels::AddRow(columns.data(), a.data(), count);
            kernels::ReplaceRow(columns.data(), b.data(), a.data(), count);
            std::vector<double> prefix(count + 1);
            kernels::PrefixSums(columns.data(), count, prefix.data());
            std::vector<std::uint32_t> pelPrefix(count + 1);
            kernels::PrefixSums(b.data(), count, pelPrefix.data());
            std::vector<std::uint16_t> marks(count, 9);
            kernels::MarkNonZero(a.data(), count, marks.data());
            double sum = 0;
            std::uint32_t pelSum = 0;
            for (std::size_t i = 0; i <= count; ++i) {
                ASSERT_EQ(prefix[i], sum) << i << " of " << count;
                ASSERT_EQ(pelPrefix[i], pelSum) << i << " of " << count;
                if (i == count) break;
                ASSERT_EQ(columns[i], 8000U * 65535U - 65535U + b[i]) << i << " of " << count;
                ASSERT_EQ(marks[i], a[i] != 0 ? 1 : 0) << i << " of " << count;
                sum += columns[i];
                pelSum += b[i];
            }
            kernels::SubtractRow(columns.data(), b.data(), count);
            ASSERT_EQ(columns, std::vector<std::uint32_t>(count, 8000U * 65535U - 65535U));
        }
    });
}

TEST(WindowSums, BlockRowsAddUpWithAndWithoutFlushes) {
    constexpr std::size_t kRows = 9;
    constexpr std::size_t kCount = 61;
    std::vector<std::vector<std::uint32_t>> prefixes;
    for (std::size_t r = 0; r < kRows; ++r) {
        const auto pels = tqtest::HostilePels(kCount + 20, static_cast<std::uint32_t>(r));
        prefixes.emplace_back(pels.size() + 1);
        kernels::PrefixSums(pels.data(), pels.size(), prefixes.back().data());
    }
    std::vector<kernels::BlockRow> rows;
    for (std::size_t r = 0; r < kRows; ++r)
        rows.push_back({prefixes[r].data() + 9 + r, prefixes[r].data() + 9 - r});
    tqtest::ForEachTarget([&] {
        for (const std::size_t rowsPerFlush : {std::size_t{1}, std::size_t{4}, std::size_t{100}}) {
            std::vector<double> sums(kCount, 3.0);
            kernels::AddBlockRows(rows.data(), rows.size(), rowsPerFlush, kCount, sums.data());
            for (std::size_t i = 0; i < kCount; ++i) {
                double expected = 3.0;
                for (const auto& row : rows)
                    expected += row.high[i] - row.low[i];
                ASSERT_EQ(sums[i], expected) << i;
            }
        }
    });
}

TEST(WindowSums, ComparisonsQuotientsAndRangesAgreeWithThePlainLoop) {
    tqtest::ForEachTarget([&] {
        for (std::size_t count = 1; count <= 40; ++count) {
            std::vector<double> values(count), bounds(count), out(count);
            std::size_t expected = 0;
            const auto pels = tqtest::HostilePels(count * 2, 7);
            for (std::size_t i = 0; i < count; ++i) {
                values[i] = pels[i];
                bounds[i] = i % 3 == 0 ? values[i] : pels[count + i] + 1.0;
                expected += values[i] >= bounds[i] ? 1 : 0;
            }
            ASSERT_EQ(kernels::CountAtLeast(values.data(), bounds.data(), count), expected);
            kernels::Quotients(values.data(), bounds.data(), count, out.data());
            for (std::size_t i = 0; i < count; ++i) {
                const double quotient = values[i] / bounds[i];
                ASSERT_TRUE(out[i] == quotient || (std::isnan(out[i]) && std::isnan(quotient))) << i;
            }
            for (const auto& [low, high] :
                 {std::pair{1.0, 2.0}, {0.5, 1.0}, {0.0, HUGE_VAL}, {HUGE_VAL, 1.0}}) {
                bool any = false;
                for (std::size_t i = 0; i < count; ++i)
                    any = any || values[i] < low * bounds[i] || values[i] > high * bounds[i];
                ASSERT_EQ(kernels::AnyOutside(values.data(), bounds.data(), count, low, high), any) << count;
            }
            const auto range = kernels::FindRange(values.data(), count);
            ASSERT_EQ(range.min, *std::min_element(values.begin(), values.end()));
            ASSERT_EQ(range.max, *std::max_element(values.begin(), values.end()));
        }
    });
}

}  // namespace
