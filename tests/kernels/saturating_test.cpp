#include "kernels/saturating.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "simd_targets.h"

namespace {

TEST(SubtractSaturated, EveryTargetAndLengthGivesTheSameAndStaysInside) {
    constexpr std::uint16_t kLevels[] = {0, 1, 2, 32767, 32768, 65534, 65535};
    constexpr std::uint16_t kGuard = 0xA5A5;
    tqtest::ForEachTarget([&] {
        for (std::size_t count = 0; count <= 150; ++count) {
            std::vector<std::uint16_t> a(count), b(count), out(count + 1, kGuard);
            for (std::size_t i = 0; i < count; ++i) {
                a[i] = kLevels[i % 7];
                b[i] = kLevels[i / 7 % 7];
            }
            tq::kernels::SubtractSaturated(a.data(), b.data(), out.data(), count);
            for (std::size_t i = 0; i < count; ++i) {
                ASSERT_EQ(out[i], a[i] > b[i] ? a[i] - b[i] : 0) << a[i] << " - " << b[i] << " at " << i;
            }
            ASSERT_EQ(out[count], kGuard);
        }
    });
}

}  // namespace
