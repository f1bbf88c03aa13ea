#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "colour/channels.h"
#include "core/guard.h"
#include "core/numerics.h"
#include "core/rectangle.h"
#include "measure/region_shapes.h"
#include "platform/new_array.h"
#include "tqimage/colour_averages.h"

namespace tq {
namespace {

constexpr std::int32_t kBadBins = -7;
constexpr NewArrayCodes kNewArrayCodes{-8, -9, -10, -11};

/// More bins than a pel has values would stay empty.
constexpr std::int32_t kMostBins = kLargestPel + 1;

enum Space : std::int32_t { kRaw, kXyz, kXyY, kUvY, kSpaces };

/// The bins of one figure: equal shares of low .. high, in the host's array.
class Bins {
  public:
    Bins(double low, double high, std::uint32_t* counts, std::int32_t bins) noexcept
        : low_(low), span_(high - low), bins_(bins), counts_(counts) {}

    /// Values outside the limits, and what is no number, belong to no bin.
    void Count(double value) noexcept {
        const double bin = (value - low_) * bins_ / span_;
        if (value >= low_ && bin < bins_) ++counts_[TruncToInt32(bin)];
    }

  private:
    double low_;
    double span_;
    std::int32_t bins_;
    std::uint32_t* counts_;
};

/// The three figures of a pel in a space.
Xyz FiguresOf(std::int32_t space, const ColourMatrix& m, Pel a, Pel b, Pel c) noexcept {
    if (space == kRaw) return {static_cast<double>(a), static_cast<double>(b), static_cast<double>(c)};
    const Xyz at = Transform(m, a, b, c);
    if (space == kXyz) return at;
    const Chromaticity chromaticity = space == kXyY ? ToXy(at) : ToUv(at);
    return {chromaticity.first, chromaticity.second, at.y};
}

bool AreLimits(const float* limits) noexcept {
    if (limits == nullptr) return false;
    for (int k = 0; k < 3; ++k) {
        const float low = limits[2 * k];
        const float high = limits[2 * k + 1];
        if (!std::isfinite(low) || !std::isfinite(high) || !(low < high)) return false;
    }
    return true;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqGetColorHistograms(SAFEARRAY** out, const TqImage* first, const TqImage* second,
                                          const TqImage* third, std::int32_t space, std::int32_t threshold,
                                          std::int32_t left, std::int32_t top, std::int32_t right,
                                          std::int32_t bottom, std::int32_t bins, const float* limits,
                                          float m0, float m1, float m2, float m3, float m4, float m5,
                                          float m6, float m7, float m8) {
    Channels channels;
    if (const auto status = LocateChannels(first, second, third, kChannelCodes, &channels)) return status;
    if (out == nullptr) return kChannelCodes.null;
    if (space < 0 || space >= kSpaces || bins < 1 || bins > kMostBins || !AreLimits(limits)) return kBadBins;
    return Guarded(kNewArrayCodes.notCreated, [&] {
        const ColourMatrix m{m0, m1, m2, m3, m4, m5, m6, m7, m8};
        const auto size = static_cast<std::size_t>(bins);
        std::vector<std::uint32_t> counts(3 * size);
        Bins figures[3] = {{limits[0], limits[1], counts.data(), bins},
                           {limits[2], limits[3], counts.data() + size, bins},
                           {limits[4], limits[5], counts.data() + 2 * size, bins}};
        const Rect rect = ClampRegion({left, top, right, bottom}, channels.first.cols, channels.first.rows);
        VisitRectangle(rect, [&](std::int32_t row, std::int32_t from, std::int32_t to) {
            const kernels::ChannelRuns run = channels.Run(row, from, to - from + 1);
            for (std::size_t i = 0; i < run.count; ++i) {
                if (run.second[i] <= threshold) continue;
                const Xyz at = FiguresOf(space, m, run.first[i], run.second[i], run.third[i]);
                figures[0].Count(at.x);
                figures[1].Count(at.y);
                figures[2].Count(at.z);
            }
        });
        return ReplaceArray<std::uint32_t>(out, VT_I4, {size, 3}, counts, kNewArrayCodes);
    });
}
