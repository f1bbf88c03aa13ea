#include "kernels/signed_factors.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "simd_targets.h"

namespace {

TEST(SignedFactors, EveryTargetScalesAsThePlainLoopDoes) {
    const auto pels = tqtest::HostilePels(531, 1), stored = tqtest::HostilePels(531, 2);
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const double unit : {1.0 / 32000, -1.0 / 32000, 1e-3, 1.0, 1e300, kInfinity, std::nan(""), 0.0}) {
        std::vector<std::uint16_t> expected(pels.size());
        for (std::size_t i = 0; i < pels.size(); ++i) {
            const double factor = stored[i] == 65535 ? 1.0 : static_cast<std::int16_t>(stored[i]) * unit;
            const double value = pels[i] * factor + 0.5;
            expected[i] =
                static_cast<std::uint16_t>(std::isnan(value) ? 0.0 : std::clamp(value, 0.0, 65535.0));
        }
        // From every alignment and of every length at the end of a vector.
        for (std::size_t from = 0; from < 16; ++from) {
            const std::size_t count = pels.size() - 17;
            tqtest::ForEachTarget([&] {
                std::vector<std::uint16_t> out(count + 1, 7);
                tq::kernels::ScaleBySigned(&pels[from], &stored[from], unit, count - from, out.data());
                ASSERT_TRUE(std::equal(out.begin(), out.begin() + static_cast<std::ptrdiff_t>(count - from),
                                       expected.begin() + static_cast<std::ptrdiff_t>(from)))
                    << unit;
                ASSERT_EQ(out[count - from], 7);
            });
        }
    }
}

}  // namespace
