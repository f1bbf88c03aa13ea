#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <utility>

#include "core/guard.h"
#include "core/image_view.h"
#include "core/out_value.h"
#include "core/portable_math.h"
#include "measure/blob_scan.h"
#include "measure/mura.h"
#include "measure/photometric_frame.h"
#include "tqimage/uniformity.h"

using namespace tq;

namespace {

constexpr double kInvalidImage = -2.0;
constexpr double kNoScale = -3.0;

std::int64_t SignalSum(const Blob& blob) noexcept {
    return blob.sum - blob.count * kMuraZero;
}

/// The strongest blob of each size. Blobs of one size rank by their signal alone, so the power that the
/// rating takes of the size is computed once a size and not once a blob.
class StrongestBySize {
  public:
    void operator()(const Blob& blob) {
        const auto [place, isNew] = bySize_.try_emplace(blob.count, blob);
        if (!isNew && Outranks(blob, place->second)) place->second = blob;
    }
    const std::map<std::int64_t, Blob>& Blobs() const noexcept { return bySize_; }

  private:
    static bool Outranks(const Blob& a, const Blob& b) noexcept {
        const std::int64_t signalA = std::abs(SignalSum(a)), signalB = std::abs(SignalSum(b));
        return signalA != signalB ? signalA > signalB : a.firstPel < b.firstPel;
    }

    std::map<std::int64_t, Blob> bySize_;
};

struct Rating {
    double semu = 0.0;
    double contrastPercent = 0.0;
    double areaMm2 = 0.0;
    std::int64_t firstPel = 0;
};

Rating Rate(const Blob& blob, const PhotometricFrame& frame) {
    constexpr double kMm2PerM2 = 1e6;
    const auto count = static_cast<double>(blob.count);
    const double contrast = 100.0 * frame.LuxPerGrey() * (static_cast<double>(SignalSum(blob)) / count);
    const double area = count / frame.PelsPerSquareMeter() * kMm2PerM2;
    // SEMI D31: the contrast just noticeable, in percent, for an area in square millimetres.
    const double justNoticeable = 1.97 / portable::Pow(area, 0.33) + 0.72;
    return {std::abs(contrast) / justNoticeable, contrast, area, blob.firstPel};
}

/// All 0 when no blob is visible.
Rating RateMostVisible(const ConstImageView& view, std::int32_t threshold) {
    const std::int32_t least = std::clamp(threshold, 1, kLargestPel);
    StrongestBySize strongest;
    BlobScan(view, {kMuraZero - least, kMuraZero + least}).ForEachBlob([&](const Blob& blob) {
        strongest(blob);
    });
    const PhotometricFrame frame(*view.header);
    Rating best;
    for (const auto& [size, blob] : strongest.Blobs()) {
        const Rating rating = Rate(blob, frame);
        const bool first = rating.semu == best.semu && rating.firstPel < best.firstPel;
        if (rating.semu > best.semu || (best.semu > 0.0 && first)) best = rating;
    }
    return best;
}

}  // namespace

double TQ_CALL tqCalcSemu(const TqImage* image, std::int32_t threshold, double* contrastPercent,
                          double* areaMm2) {
    StoreIfAsked(contrastPercent, 0.0);
    StoreIfAsked(areaMm2, 0.0);
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    if (!PhotometricFrame(*view.header).HasScale()) return kNoScale;
    return Guarded(kInvalidImage, [&] {
        const Rating rating = RateMostVisible(view, threshold);
        StoreIfAsked(contrastPercent, rating.contrastPercent);
        StoreIfAsked(areaMm2, rating.areaMm2);
        return rating.semu;
    });
}
