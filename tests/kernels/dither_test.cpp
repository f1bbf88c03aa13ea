#include "kernels/dither.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "simd_targets.h"

namespace {

TEST(DitherToBytes, EveryInstructionSetGivesTheSameBytes) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const std::size_t count : {0u, 1u, 15u, 16u, 17u, 1003u}) {
        const std::vector<std::uint16_t> pels = tqtest::HostilePels(count, 3);
        for (const double factor : {1.0 / 257.0, 1.0, -0.5, 1e-9, 1e300, kInfinity, std::nan("")}) {
            std::vector<std::uint16_t> expected(count);
            std::uint32_t state = 0xFFFFFFF0u;
            for (std::size_t i = 0; i < count; ++i) {
                state = state * 214013u + 2531011u;
                const double value = pels[i] * factor + (state >> 16 & 0x7FFF) / 32768.0;
                expected[i] = value > 0.0 ? static_cast<std::uint16_t>(value < 255.0 ? value : 255.0)
                                          : std::uint16_t{0};
            }
            tqtest::ForEachTarget([&] {
                std::vector<std::uint16_t> bytes(count);
                tq::kernels::DitherToBytes(pels.data(), factor, 0xFFFFFFF0u, bytes.data(), count);
                EXPECT_EQ(bytes, expected) << count << " pels, factor " << factor;
            });
        }
    }
}

}  // namespace
