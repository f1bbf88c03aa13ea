#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "core/numerics.h"
#include "kernels/first_moments.h"
#include "kernels/line_mask.h"
#include "kernels/relative_difference.h"
#include "kernels/window_moments.h"
#include "simd_targets.h"

namespace {

namespace kernels = tq::kernels;

TEST(FirstMoments, EveryTargetLengthAndThresholdIsExact) {
    auto pels = tqtest::HostilePels(8000, 1);
    std::fill_n(pels.begin() + 100, 6000, std::uint16_t{65535});  // fills every narrow accumulator
    tqtest::ForEachTarget([&] {
        for (const std::size_t count : {0, 1, 7, 31, 32, 33, 64, 100, 129, 4000, 8000}) {
            for (const int atLeast : {0, 1, 32768, 65535}) {
                std::uint64_t weight = 0, moment = 0, ones = 0, positions = 0;
                for (std::size_t i = 0; i < count; ++i) {
                    if (pels[i] < atLeast) continue;
                    weight += pels[i];
                    moment += std::uint64_t{pels[i]} * i;
                    ++ones;
                    positions += i;
                }
                const auto bound = static_cast<std::uint16_t>(atLeast);
                const auto grey = kernels::GreyMoments(pels.data(), count, bound);
                const auto one = kernels::CountMoments(pels.data(), count, bound);
                ASSERT_EQ(grey.weight, weight) << count;
                ASSERT_EQ(grey.moment, moment) << count;
                ASSERT_EQ(one.weight, ones) << count;
                ASSERT_EQ(one.moment, positions) << count;
            }
        }
    });
}

TEST(FirstMoments, ValuesGiveTheSameBitsOnEveryTarget) {
    const auto pels = tqtest::HostilePels(203, 2);
    std::vector<double> values(pels.begin(), pels.end());
    for (double& value : values)
        value /= 7.0;
    values[5] = std::nan("");
    tqtest::ForEachTarget([&] {
        for (std::size_t count = 0; count <= values.size(); ++count) {
            const double bound = 32768.0 / 7.0;
            double w[8] = {}, m[8] = {};
            std::uint64_t ones = 0, positions = 0;
            for (std::size_t i = 0; i < count; ++i) {
                if (values[i] > bound) ++ones, positions += i;
                if (!(values[i] >= bound)) continue;
                w[i % 8] += values[i];
                m[i % 8] += static_cast<double>(i) * values[i];
            }
            const auto pairs = [](const double* s) {
                return ((s[0] + s[1]) + (s[2] + s[3])) + ((s[4] + s[5]) + (s[6] + s[7]));
            };
            const auto found = kernels::ValueMomentsOf(values.data(), count, bound);
            ASSERT_EQ(found.weight, pairs(w)) << count;
            ASSERT_EQ(found.moment, pairs(m)) << count;
            const auto above = kernels::CountMoments(values.data(), count, bound);
            ASSERT_EQ(above.weight, ones) << count;
            ASSERT_EQ(above.moment, positions) << count;
        }
    });
}

TEST(RelativeDifference, GuardedQuotientsEqualTheTrueOnes) {
    const auto reference = tqtest::HostilePels(1003, 3);
    auto test = tqtest::HostilePels(1003, 4);
    for (std::size_t i = 0; i < 300; ++i)
        test[i] = reference[i];
    constexpr double kTiny = 1e-40, kHuge = 1e38;
    for (const double referenceLux : {1.0, 0.37, -2.0, 0.0, kTiny}) {
        for (const double testLux : {1.0, 0.5, kHuge}) {
            const kernels::LuxRuns runs{reference.data(), test.data(), reference.size(), referenceLux,
                                        testLux};
            const auto difference = [&](std::size_t i) {
                const double r = reference[i] * referenceLux;
                return std::abs(test[i] * testLux - r) / r;
            };
            // A scale that puts many levels next to an integer, one that a host gets, and the end of the
            // line.
            for (const double scale : {1.0 / 64000, 0.4999 / 3, 1e-9, HUGE_VAL}) {
                if (std::isfinite(scale) && (referenceLux == 0.0 || testLux == kHuge)) continue;
                tqtest::ForEachTarget([&] {
                    double largest = 0.125;
                    std::vector<std::uint16_t> out(reference.size());
                    kernels::ScaledDifferences(runs, scale, out.data());
                    for (std::size_t i = 0; i < out.size(); ++i) {
                        const double d = difference(i);
                        if (d > largest) largest = d;
                        if (std::isfinite(scale) && std::isinf(d)) continue;
                        ASSERT_EQ(out[i], tq::WrapToPel(tq::TruncToInt32(d / scale + 0.4999))) << i;
                    }
                    ASSERT_EQ(kernels::LargestDifference(runs, 0.125), largest);
                });
            }
        }
    }
}

// Moments of windows are measured through the exported function, and its digests hold for every target. Here
// are the ends of what becomes of them.
TEST(WindowMoments, LevelsWrapAndVanishAlikeOnEveryTarget) {
    std::vector<float> values;
    for (int i = 0; i < 67; ++i)
        values.push_back(std::ldexp(1.3f, i % 40) + static_cast<float>(i));
    values[11] = HUGE_VALF;
    for (const float scale : {1.0f, 0.3f, 1e-44f, 0.0f, HUGE_VALF}) {
        SCOPED_TRACE(scale);
        tqtest::ExpectRuns<std::uint16_t>(
            values.size(),
            [&](auto* out, std::size_t count) { kernels::ScaledPels(values.data(), count, scale, out); },
            [&](std::size_t i) {
                return tq::WrapToPel(tq::TruncToInt32(static_cast<double>(values[i] / scale)));
            });
    }
}

TEST(LineMask, EveryTargetAndLength) {
    constexpr std::size_t kWidth = 150;
    const auto top = tqtest::HostilePels(kWidth, 11), middle = tqtest::HostilePels(kWidth, 12),
               bottom = tqtest::HostilePels(kWidth, 13);
    const std::uint16_t *t = top.data() + 1, *m = middle.data() + 1, *b = bottom.data() + 1;
    tqtest::ExpectRuns<std::uint16_t>(
        kWidth - 2,
        [&](auto* out, std::size_t count) {
            kernels::LineResponses(t, m, b, {t + 1, m, b - 1}, count, out);
        },
        [&](std::size_t i) {
            const int on = t[i + 1] + m[i] + *(b + i - 1);
            const int off = *(t + i - 1) + t[i] + *(m + i - 1) + m[i + 1] + b[i] + b[i + 1];
            return std::min(std::abs(2 * on - off), 65535);
        });
}

}  // namespace
