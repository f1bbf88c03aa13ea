#include "kernels/dither.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "simd_targets.h"

namespace {

TEST(DitherToBytes, EveryInstructionSetGivesTheSameBytes) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr std::uint32_t kSeed = 0xFFFFFFF0u;
    const tqtest::Pels pels = tqtest::HostilePels(130, 3);
    for (const double factor : {1.0 / 257.0, 1.0, -0.5, 1e-9, 1e300, kInfinity, std::nan("")}) {
        SCOPED_TRACE(factor);
        std::vector<double> values;
        std::uint32_t state = kSeed;
        for (const std::uint16_t pel : pels) {
            state = state * 214013u + 2531011u;
            values.push_back(pel * factor + (state >> 16 & 0x7FFF) / 32768.0);
        }
        tqtest::ExpectRuns<std::uint16_t>(
            pels.size(),
            [&](auto* out, std::size_t count) {
                tq::kernels::DitherToBytes(pels.data(), factor, kSeed, out, count);
            },
            [&](std::size_t i) { return values[i] > 0.0 ? std::min(values[i], 255.0) : 0.0; });
    }
}

}  // namespace
