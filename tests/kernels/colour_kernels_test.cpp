#include <array>
#include <cstring>
#include <limits>

#include "kernels/adaptive_colour.h"
#include "kernels/channel_mix.h"
#include "kernels/chromaticity.h"
#include "simd_targets.h"

namespace {

using namespace tq::kernels;
using tq::FixedPower;

constexpr std::size_t kPels = 131;

/// Everything that the kernels make of runs of one length, as bytes: not-a-numbers compare, too.
std::vector<unsigned char> ResultsOf(std::size_t count, double odd) {
    const auto a = tqtest::HostilePels(kPels, 1), b = tqtest::HostilePels(kPels, 2),
               c = tqtest::HostilePels(kPels, 3);
    std::vector<unsigned char> bytes;
    const auto keep = [&bytes](const auto& values) {
        const auto* const first = reinterpret_cast<const unsigned char*>(values.data());
        bytes.insert(bytes.end(), first, first + values.size() * sizeof values[0]);
    };
    const ChannelRuns runs{a.data(), b.data(), c.data(), count};
    const ChannelMix mix{{1.5, -0.75, 0.1, -0.5, 1.25, odd, 0.3, -0.2, 2.0}, {0.013, 1.0, 0.7}, 0.31, 1.7};
    std::array<double, 3> maxima{0, 5, 0};
    RaiseMaxima(runs, mix, maxima.data());
    keep(maxima);
    std::array<std::vector<std::uint16_t>, 3> pels;
    for (auto& plane : pels)
        plane.assign(kPels, 0xABCD);
    std::uint16_t* const out[3] = {pels[0].data(), pels[1].data(), pels[2].data()};
    const double units[3] = {0.1, 0.013, 1e-9};
    StoreMixed(runs, mix, units, out);
    for (const auto& plane : pels)
        keep(plane);
    ChannelSums sums;
    AddChannelsAbove(runs, mix.matrix, 20000.0, &sums);
    keep(std::array<double, 4>{sums.first, sums.second, sums.third, sums.count});

    const std::vector<double> x(a.begin(), a.end()), y(b.begin(), b.end()), z(c.begin(), c.end());
    const ChannelRows rows{x.data(), y.data(), z.data(), count};
    for (const bool overLuminance : {false, true}) {
        const ChromaticRatio ratio{{1, 0, 0, 0, 1, 0, 0, odd, 1}, 4.0, 15.0, 3.0, 2, overLuminance};
        StoreRatios(rows, ratio, -0.1, 30000.0, out[0]);
        keep(pels[0]);
    }
    const FixedPower power(0.85);
    const Calibration calibrations[] = {{0.2, 0.4, {1, odd, 0, 0, 1, 0, 0, 0, 1}},
                                        {0.0, 0.0, {0, 1, 0, 1, 0, 0, 0, 0, odd}},
                                        {odd, 0.5, {2, 0, 0, 0, 2, 0, 0, 0, 2}}};
    for (const FixedPower* use : {static_cast<const FixedPower*>(nullptr), &power}) {
        const AdaptiveMix adaptive{{1, 0, 0, 0, 1, 0, 0, odd, 1}, {0.013, 1.0, 0.7}, calibrations, 3, use};
        std::vector<double> mixed(3 * kPels);
        double* const into[3] = {mixed.data(), mixed.data() + kPels, mixed.data() + 2 * kPels};
        MixAdaptively(runs, adaptive, into);
        SelectNearest(runs, adaptive, out[1]);
        keep(pels[1]);
        for (double* const row : into) {
            keep(std::array<double, 1>{LargestValue(row, count, 1.0)});
            StoreInUnits(row, count, 0.3, out[2]);
            keep(pels[2]);
        }
    }
    std::vector<float> values(kPels, -1.0f);
    ColourDifferences(rows, {{1, 0, 0, 0, 1, 0, 0, odd, 1}, 0.013, 2.5, 0.7}, {0.2, 0.47, 300.0},
                      values.data());
    keep(values);
    LocalDifferences(rows, {z.data(), x.data(), y.data(), count},
                     {{1, 0, 0, 0, 1, 0, 0, odd, 1}, 0.013, 2.5, 0.7}, values.data());
    keep(values);
    EllipseDistances(rows, {{1, 0, 0, 0, 1, 0, 0, odd, 1}, 0.2f, 0.47f, 1000.0, -300.0, 400.0},
                     values.data());
    keep(values);
    return bytes;
}

// The portable target goes one value at a time; lengths end anywhere in a vector.
TEST(ColourKernels, SameBitsOnEveryTarget) {
    for (const double odd : {0.01, -3.0, 1e300, std::numeric_limits<double>::infinity()}) {
        for (std::size_t count = 0; count <= kPels; count += count < 40 ? 1 : 13) {
            std::vector<unsigned char> first;
            tqtest::ForEachTarget([&] {
                const auto found = ResultsOf(count, odd);
                if (first.empty()) first = found;
                EXPECT_EQ(found, first) << count << ", " << odd;
            });
        }
    }
}

}  // namespace
