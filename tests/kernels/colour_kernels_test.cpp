#include <array>
#include <cmath>
#include <limits>

#include "kernels/channel_mix.h"
#include "kernels/chromaticity.h"
#include "simd_targets.h"

namespace {

using namespace tq::kernels;

constexpr std::size_t kPels = 131;

double Value(const ChannelMix& mix, std::size_t k, double a, double b, double c) {
    const double* const m = mix.matrix + 3 * k;
    a *= mix.scales[0];
    b *= mix.scales[1];
    c *= mix.scales[2];
    return (m[0] * a + m[1] * b + m[2] * c) * mix.factor / mix.divisor;
}

int Level(double value, double unit) {
    const double level = value / unit + 0.5;
    return value >= 0.0 && level < 2147483648.0 ? static_cast<int>(std::fmin(level, 65535.0)) : 0;
}

// Sums that wait for their factor, and levels by one sum of products: both must be those of the definition,
// above all next to a half, where a level is decided by the last bit.
TEST(ColourKernels, MixesAreThoseOfTheDefinition) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const auto a = tqtest::HostilePels(kPels, 4), b = tqtest::HostilePels(kPels, 5),
               c = tqtest::HostilePels(kPels, 6);
    const ChannelRuns runs{a.data(), b.data(), c.data(), kPels};
    const ChannelMix mixes[] = {
        {{0.5, 0, 0, 0, 0.5, 0.5, 0.25, 0.25, 1}},
        {{1.5, -0.75, 0.1, -0.5, 1.25, 0.01, 0.3, -0.2, 2.0}, {0.013, 1.0, 0.7}, 0.31, 1.7},
        {{1.5, -0.75, 0.1, -0.5, 1.25, 0.01, 0.3, -0.2, 2.0}, {0.013, 1.0, 0.7}, -0.31, 1.7},
        {{1e200, -1e200, 1, 1e-200, 0, 0, 1e308, 1e308, -1e308}, {1, 1, 0.5}, 1e-30, 1e30},
        {{kInfinity, 1, 0, -kInfinity, 0, 1, 0, 0, 0}},
    };
    tqtest::ForEachTarget([&] {
        for (const ChannelMix& mix : mixes) {
            std::array<double, 3> maxima{0, 0, 0}, expected{0, 0, 0};
            RaiseMaxima(runs, mix, maxima.data());
            for (std::size_t k = 0; k < 3; ++k)
                for (std::size_t i = 0; i < kPels; ++i)
                    expected[k] = std::fmax(expected[k], Value(mix, k, a[i], b[i], c[i]));
            EXPECT_EQ(maxima, expected);
            for (std::size_t i = 0; i < kPels; i += 10) {
                // Units that put pel i next to a half, and one that is usual.
                double units[3];
                for (std::size_t k = 0; k < 3; ++k) {
                    const double half = 40.5 + 6000.0 * static_cast<double>(k);
                    units[k] =
                        i == 0 ? maxima[k] / 65000.0 : std::abs(Value(mix, k, a[i], b[i], c[i])) / half;
                }
                std::array<std::vector<std::uint16_t>, 3> pels;
                for (auto& plane : pels)
                    plane.resize(kPels);
                std::uint16_t* const out[3] = {pels[0].data(), pels[1].data(), pels[2].data()};
                StoreMixed(runs, mix, units, out);
                for (std::size_t k = 0; k < 3; ++k)
                    for (std::size_t j = 0; j < kPels; ++j)
                        ASSERT_EQ(out[k][j], Level(Value(mix, k, a[j], b[j], c[j]), units[k]))
                            << k << ", " << i << ", " << j;
            }
        }
    });
}

TEST(ColourKernels, DifferencesAreThoseOfTheDefinition) {
    auto a = tqtest::HostilePels(1000, 7), b = tqtest::HostilePels(1000, 8), c = tqtest::HostilePels(1000, 9);
    for (std::size_t i = 0; i < a.size(); i += 3)
        a[i] = b[i] = c[i] = static_cast<std::uint16_t>(7919 * i);
    const ChannelRuns runs{a.data(), b.data(), c.data(), a.size()};
    const std::vector<double> x(a.begin(), a.end()), y(b.begin(), b.end()), z(c.begin(), c.end());
    const struct {
        ColourWeights weights;
        ColourReference from;
    } cases[] = {
        {{{1, 0, 0, 0, 1, 0, 0, 0.01, 1}, 0.013, 2.5, 0.7}, {0.2, 0.47, 300.0}},
        // A grey pel is the reference: the distance of the grey ones is rounding and nothing else.
        {{{1, 0, 0, 0, 1, 0, 0, 0, 1}, 1, 1, 0}, {4.0 / 19.0, 9.0 / 19.0, 1.0}},
        {{{-1, 2, 0, 1, -1, 0, 0, 0, 1e300}, 1e-30, 1e30, 1e-30}, {0, 0, 1e-8}},
        {{{1e-310, 0, 0, 0, 1e-310, 0, 0, 0, 1e-310}, 1, 1, 1}, {0, 0, 1e-7}},
    };
    tqtest::ForEachTarget([&] {
        for (const auto& it : cases) {
            const double* const m = it.weights.matrix;
            for (const ChannelValues& row :
                 {ChannelValues(runs), ChannelValues(ChannelRows{x.data(), y.data(), z.data(), x.size()})}) {
                tqtest::ExpectRun<float>(
                    runs.count, [&](float* out) { ColourDifferences(row, it.weights, it.from, out); },
                    [&](std::size_t i) {
                        const double big = m[0] * x[i] + m[1] * y[i] + m[2] * z[i];
                        const double light = m[3] * x[i] + m[4] * y[i] + m[5] * z[i];
                        const auto last = static_cast<float>(m[6] * x[i] + m[7] * y[i] + m[8] * z[i]);
                        const double below = big + 15.0 * light + 3.0 * static_cast<double>(last);
                        const double u = below == 0 ? 0 : 4.0 * big / below,
                                     v = below == 0 ? 0 : 9.0 * light / below;
                        const double from = it.from.luminance;
                        const double dl =
                            from >= kNoLuminance ? (y[i] * it.weights.luxPerGrey - from) / from : 0;
                        const double du = u - it.from.u, dv = v - it.from.v;
                        return std::sqrt((dv * dv + du * du) * it.weights.chromaticity +
                                         dl * dl * it.weights.luminance);
                    });
            }
        }
    });
}

}  // namespace
