#include "kernels/adaptive_colour.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "colour/channels.h"
#include "colour/mixed_images.h"
#include "core/fixed_power.h"
#include "core/guard.h"
#include "core/image_block.h"
#include "core/replaced_image.h"
#include "tqimage/adaptive_colour.h"

namespace tq {
namespace {

constexpr std::int32_t kBadTables = -7;
constexpr std::int32_t kNoMemory = -8;

constexpr std::int32_t kFourCalibrations = 4;
/// Shepard's choice: the square of the distance.
constexpr double kUsualPower = 2.0;
/// Beyond it only the nearest calibration counts.
constexpr double kLargestPower = 1000.0;

constexpr bool IsCount(std::int32_t count) noexcept {
    return count >= 1 && count <= static_cast<std::int32_t>(kernels::kMostCalibrations);
}

/// What the host passes: three channels, the base matrix and its calibrations.
struct AdaptiveRequest {
    const TqImage* first;
    const TqImage* second;
    const TqImage* third;
    ColourMatrix base;
    std::int32_t count;
    const float* chroma;
};

/// The calibrations as the kernels take them. `matrices` may be null when chromaticities are enough.
class Calibrations {
  public:
    Calibrations(const AdaptiveRequest& request, const Channels& channels, const float* matrices)
        : entries_(static_cast<std::size_t>(request.count)) {
        for (std::size_t k = 0; k < entries_.size(); ++k) {
            entries_[k].u = request.chroma[2 * k];
            entries_[k].v = request.chroma[2 * k + 1];
            if (matrices != nullptr) std::copy_n(matrices + 9 * k, 9, entries_[k].matrix);
        }
        std::copy(request.base.begin(), request.base.end(), mix_.base);
        mix_.scales[0] = channels.first.header->LuxPerGrey;
        mix_.scales[1] = channels.second.header->LuxPerGrey;
        mix_.scales[2] = channels.third.header->LuxPerGrey;
        mix_.calibrations = entries_.data();
        mix_.count = entries_.size();
    }
    Calibrations(const Calibrations&) = delete;
    Calibrations& operator=(const Calibrations&) = delete;

    void UsePower(double power) {
        if (!(power > 0.0)) power = kUsualPower;
        // The weights are functions of the square.
        if (power != kUsualPower) mix_.power = &power_.emplace(std::min(power, kLargestPower) / 2.0);
    }
    const kernels::AdaptiveMix& Mix() const noexcept { return mix_; }

  private:
    std::vector<kernels::Calibration> entries_;
    std::optional<FixedPower> power_;
    kernels::AdaptiveMix mix_{};
};

/// Calls use(row, values) with the three mixed channels of every row, top down.
template <class Use>
void VisitMixedRows(const Channels& channels, const kernels::AdaptiveMix& mix, Use&& use) {
    const std::int32_t cols = channels.second.cols;
    std::vector<double> values(3 * static_cast<std::size_t>(cols));
    const std::array<double*, 3> rows{values.data(), values.data() + cols, values.data() + 2 * cols};
    for (std::int32_t row = 0; row < channels.second.rows; ++row) {
        kernels::MixAdaptively(channels.Run(row, 0, cols), mix, rows.data());
        use(row, rows);
    }
}

std::int32_t TransformAdaptively(TqImage** outX, TqImage** outY, TqImage** outZ,
                                 const AdaptiveRequest& request, const float* matrices,
                                 float power) noexcept {
    Channels channels;
    if (const auto status =
            LocateChannels(request.first, request.second, request.third, kChannelCodes, &channels))
        return status;
    if (outX == nullptr || outY == nullptr || outZ == nullptr) return kChannelCodes.null;
    if (!IsCount(request.count) || matrices == nullptr || request.chroma == nullptr) return kBadTables;
    return Guarded(kNoMemory, [&] {
        Calibrations calibrations(request, channels, matrices);
        calibrations.UsePower(power);
        ImageTriple images(channels);
        const auto count = static_cast<std::size_t>(channels.second.cols);
        std::array<double, 3> maxima{};
        VisitMixedRows(channels, calibrations.Mix(), [&](std::int32_t, const auto& rows) {
            for (std::size_t k = 0; k < 3; ++k)
                maxima[k] = kernels::LargestValue(rows[k], count, maxima[k]);
        });
        const std::array<double, 3> units = images.StoreScales(maxima);
        VisitMixedRows(channels, calibrations.Mix(), [&](std::int32_t row, const auto& rows) {
            for (std::size_t k = 0; k < 3; ++k)
                kernels::StoreInUnits(rows[k], count, units[k], images.Row(k, row));
        });
        images.Commit(outX, outY, outZ);
        return 0;
    });
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqAdaptiveColor(TqImage** outX, TqImage** outY, TqImage** outZ, const TqImage* first,
                                     const TqImage* second, const TqImage* third, float m0, float m1,
                                     float m2, float m3, float m4, float m5, float m6, float m7, float m8,
                                     std::int32_t count, const float* matrices, const float* chroma,
                                     float power) {
    return TransformAdaptively(outX, outY, outZ,
                               {first, second, third, {m0, m1, m2, m3, m4, m5, m6, m7, m8}, count, chroma},
                               matrices, power);
}

std::int32_t TQ_CALL tqAdaptiveColor4(TqImage** outX, TqImage** outY, TqImage** outZ, const TqImage* first,
                                      const TqImage* second, const TqImage* third, float m0, float m1,
                                      float m2, float m3, float m4, float m5, float m6, float m7, float m8,
                                      const float* matrices, const float* chroma, float power) {
    return TransformAdaptively(
        outX, outY, outZ,
        {first, second, third, {m0, m1, m2, m3, m4, m5, m6, m7, m8}, kFourCalibrations, chroma}, matrices,
        power);
}

std::int32_t TQ_CALL tqAdaptiveSelect(TqImage** out, const TqImage* first, const TqImage* second,
                                      const TqImage* third, float m0, float m1, float m2, float m3, float m4,
                                      float m5, float m6, float m7, float m8, std::int32_t count,
                                      const float* chroma) {
    Channels channels;
    if (const auto status = LocateChannels(first, second, third, kChannelCodes, &channels)) return status;
    if (out == nullptr) return kChannelCodes.null;
    if (!IsCount(count) || chroma == nullptr) return kBadTables;
    return ReplaceImage(out, kNoMemory, [&] {
        const Calibrations calibrations(
            {first, second, third, {m0, m1, m2, m3, m4, m5, m6, m7, m8}, count, chroma}, channels, nullptr);
        OwnedImage image(channels.second, NewPels::kUnwritten);
        image.Header().LuxPerGrey = 1.0f;
        image.Header().MaxPelValue = static_cast<float>(count);
        kernels::SelectNearest(channels.All(), calibrations.Mix(), image.View().pels);
        return image;
    });
}
