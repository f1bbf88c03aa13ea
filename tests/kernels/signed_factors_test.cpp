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
    const auto pels = tqtest::HostilePels(70, 1), stored = tqtest::HostilePels(70, 2);
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const double unit : {1.0 / 32000, -1.0 / 32000, 1e-3, 1.0, 1e300, kInfinity, std::nan(""), 0.0}) {
        SCOPED_TRACE(unit);
        // From every alignment and of every length at the end of a vector.
        tqtest::ForEachTarget([&] {
            for (std::size_t from = 0; from < 70; ++from) {
                const std::size_t count = 70 - from;
                tqtest::ExpectRun<std::uint16_t>(
                    count,
                    [&](auto* out) {
                        tq::kernels::ScaleBySigned(&pels[from], &stored[from], unit, count, out);
                    },
                    [&](std::size_t i) {
                        const std::uint16_t bits = stored[from + i];
                        const double factor = bits == 65535 ? 1.0 : static_cast<std::int16_t>(bits) * unit;
                        const double value = pels[from + i] * factor + 0.5;
                        return std::isnan(value) ? 0.0 : std::clamp(value, 0.0, 65535.0);
                    });
            }
        });
    }
}

}  // namespace
