#include "kernels/derivative.h"

#include <algorithm>
#include <cmath>

#include "simd_targets.h"

namespace {

using tq::kernels::Derivative;

/// As the rule is written down.
std::int32_t Plain(Derivative kind, const std::uint16_t* at, std::ptrdiff_t step) {
    const auto pel = [&](std::ptrdiff_t k) { return static_cast<double>(at[k * step]); };
    switch (kind) {
        case Derivative::kBackward:
            return static_cast<std::int32_t>(pel(0) - pel(-1));
        case Derivative::kForward:
            return static_cast<std::int32_t>(pel(1) - pel(0));
        case Derivative::kCentral:
            return static_cast<std::int32_t>((pel(1) - pel(-1)) / 2.0 + 0.5);
        case Derivative::kFivePoint:
            return static_cast<std::int32_t>((pel(-2) - 8.0 * pel(-1) + 8.0 * pel(1) - pel(2)) / 12.0 + 0.5);
        default:
            return 0;
    }
}

TEST(Derivatives, EveryKindLengthAndStep) {
    tqtest::ForEachTarget([&] {
        for (std::size_t count = 0; count <= 300; count += count < 70 ? 1 : 77) {
            for (const std::ptrdiff_t step : {std::ptrdiff_t{1}, static_cast<std::ptrdiff_t>(count)}) {
                const auto pels = tqtest::HostilePels(5 * count + 8, static_cast<std::uint32_t>(count));
                const std::uint16_t* const first = pels.data() + 2 * step;
                for (const Derivative kind : {Derivative::kNone, Derivative::kBackward, Derivative::kForward,
                                              Derivative::kCentral, Derivative::kFivePoint}) {
                    tqtest::ExpectRun<std::int32_t>(
                        count, [&](auto* out) { tq::kernels::Derive(kind, first, step, count, out); },
                        [&](std::size_t i) { return Plain(kind, first + i, step); });
                }
            }
        }
    });
}

TEST(Derivatives, MagnitudesAreCappedAndTheLargestIsNot) {
    constexpr std::size_t kMost = 70;
    const auto a = tqtest::HostilePels(kMost, 1), b = tqtest::HostilePels(kMost, 2);
    std::vector<std::int32_t> x, y, magnitudes;
    for (std::size_t i = 0; i < kMost; ++i) {
        x.push_back((i % 2 == 0 ? 3 : -1) * a[i] / 2);
        y.push_back((i % 3 == 0 ? -3 : 1) * b[i] / 2);
        const auto fx = static_cast<float>(x[i]), fy = static_cast<float>(y[i]);
        magnitudes.push_back(static_cast<std::int32_t>(std::sqrt(fx * fx + fy * fy)));
    }
    tqtest::ExpectRuns<std::uint16_t>(
        kMost,
        [&](auto* out, std::size_t count) {
            const std::int32_t found = tq::kernels::Magnitudes(x.data(), y.data(), count, out);
            ASSERT_EQ(found, count == 0 ? 0
                                        : *std::max_element(
                                              magnitudes.begin(),
                                              magnitudes.begin() + static_cast<std::ptrdiff_t>(count)));
        },
        [&](std::size_t i) { return std::min(magnitudes[i], 65535); });
}

}  // namespace
