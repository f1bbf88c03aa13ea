#include "kernels/sharpen.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "simd_targets.h"

namespace {

using Pels = std::vector<std::uint16_t>;

/// By the kernel as it is written down, with a product of its own for every pel.
std::uint16_t Sharpened(const Pels& above, const Pels& row, const Pels& below, std::uint16_t deciding,
                        float weight, std::size_t at) {
    double result = 0.0;
    for (const Pels* line : {&above, &row, &below}) {
        for (std::size_t i = at - 1; i <= at + 1; ++i) {
            const bool centre = line == &row && i == at;
            const float product = static_cast<float>((*line)[i]) * (centre ? weight : -1.0f / 9.0f);
            result += product < 0x1p31f ? std::trunc(static_cast<double>(product)) : -0x1p31;
        }
    }
    return static_cast<std::uint16_t>(std::clamp(result, deciding != 0 ? 1.0 : 0.0, 65535.0));
}

void ExpectSharpened(const Pels& above, const Pels& row, const Pels& below, const Pels& deciding,
                     float weight) {
    const std::size_t count = row.size() - 2;
    SCOPED_TRACE(weight);
    tqtest::ExpectRun<std::uint16_t>(
        count,
        [&](auto* out) {
            tq::kernels::SharpenRow({above.data() + 1, row.data() + 1, below.data() + 1}, deciding.data(),
                                    weight, count, out);
        },
        [&](std::size_t i) { return Sharpened(above, row, below, deciding[i], weight, i + 1); });
}

TEST(Sharpen, EveryTargetLengthAndWeight) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    tqtest::ForEachTarget([&] {
        for (std::size_t cols = 3; cols <= 90; ++cols) {
            for (const float weight :
                 {8.0f / 9.0f, 17.0f / 9.0f, 32768.0f, 32769.5f, 1e30f, kInfinity, kNan}) {
                ExpectSharpened(tqtest::HostilePels(cols, 1), tqtest::HostilePels(cols, 2),
                                tqtest::HostilePels(cols, 3), tqtest::HostilePels(cols, 4), weight);
            }
        }
        // Every grey level beside a dark pel and in its place.
        Pels ramp(65538), dark(65538, 0);
        for (std::size_t i = 0; i < ramp.size(); ++i)
            ramp[i] = static_cast<std::uint16_t>(i);
        ExpectSharpened(ramp, dark, dark, dark, 1.0f);
        ExpectSharpened(dark, ramp, dark, ramp, 17.0f / 9.0f);
        ExpectSharpened(ramp, Pels(65538, 65535), ramp, dark, 8.0f / 9.0f);
    });
}

}  // namespace
