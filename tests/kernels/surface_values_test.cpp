#include "kernels/surface_values.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "simd_targets.h"

namespace {

using namespace tq::kernels;

TEST(SurfaceValues, EveryTargetNarrowsAndEncodesAsThePlainLoopsDo) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr double kMost = std::numeric_limits<float>::max();
    const double corners[] = {0.0,   -0.25,     1.0,     -1.0,   -9998.0,    -9998.5,     -9999.0,
                              1e-50, -1e-50,    1e39,    -1e39,  kInfinity,  0.1,         123.456,
                              3e38,  1.0000001, -9997.9, 7777.7, -kInfinity, std::nan("")};
    std::vector<double> values;
    for (int i = 0; i < 203; ++i)
        values.push_back(i % 3 == 0 ? corners[i / 3 % std::size(corners)] : (i - 100) * 0.37);
    for (const double least : {0.0, -kMost}) {
        std::vector<float> narrow(values.size());
        const auto narrowed = [&](std::size_t i) {
            return static_cast<float>(std::clamp(std::isnan(values[i]) ? 0.0 : values[i], least, kMost));
        };
        tqtest::ExpectRuns<float>(
            values.size(),
            [&](float* out, std::size_t count) { NarrowValues(values.data(), least, count, out); }, narrowed);
        float largest = 0.0f;
        for (std::size_t i = 0; i < values.size(); ++i) {
            narrow[i] = narrowed(i);
            if (narrow[i] > -9998.0f) largest = std::max(largest, std::abs(narrow[i]));
        }
        tqtest::ForEachTarget(
            [&] { EXPECT_EQ(LargestAbove(narrow.data(), -9998.0f, narrow.size()), largest); });
        for (const double scale : {1.0, 1e4, static_cast<double>(largest), 1e-30}) {
            tqtest::ExpectRuns<tq::Pel>(
                values.size(),
                [&](tq::Pel* out, std::size_t count) {
                    EncodeValues(narrow.data(), {32000.0, scale, -9998.0f, 9}, count, out);
                },
                [&](std::size_t i) {
                    if (narrow[i] < -9998.0f) return 9;
                    const double scaled = narrow[i] * 32000.0 / scale;
                    return std::abs(scaled) < 2147483648.0 ? static_cast<std::int32_t>(scaled) & 0xFFFF : 0;
                });
        }
    }
}

}  // namespace
