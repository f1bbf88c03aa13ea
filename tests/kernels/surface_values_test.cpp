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
    for (std::size_t count : {std::size_t{0}, std::size_t{1}, std::size_t{13}, values.size()}) {
        for (const double least : {0.0, -kMost}) {
            std::vector<float> expected(count);
            float largest = 0.0f;
            for (std::size_t i = 0; i < count; ++i) {
                const double value = std::isnan(values[i]) ? 0.0 : values[i];
                expected[i] = static_cast<float>(std::clamp(value, least, kMost));
                if (expected[i] > -9998.0f) largest = std::max(largest, std::abs(expected[i]));
            }
            for (const double scale : {1.0, 1e4, static_cast<double>(largest), 1e-30}) {
                std::vector<tq::Pel> pels(count);
                for (std::size_t i = 0; i < count; ++i) {
                    const double scaled = expected[i] * 32000.0 / scale;
                    const bool fits = std::abs(scaled) < 2147483648.0;
                    const auto whole = fits ? static_cast<std::int32_t>(scaled) : 0;
                    pels[i] = expected[i] < -9998.0f ? tq::Pel{9} : static_cast<tq::Pel>(whole & 0xFFFF);
                }
                tqtest::ForEachTarget([&] {
                    std::vector<float> narrow(count);
                    NarrowValues(values.data(), least, count, narrow.data());
                    ASSERT_EQ(narrow, expected);
                    ASSERT_EQ(LargestAbove(narrow.data(), -9998.0f, count), largest);
                    std::vector<tq::Pel> out(count);
                    EncodeValues(narrow.data(), {32000.0, scale, -9998.0f, 9}, count, out.data());
                    ASSERT_EQ(out, pels) << scale;
                });
            }
        }
    }
}

}  // namespace
