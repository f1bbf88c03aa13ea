#include "kernels/threshold.h"

#include <algorithm>
#include <cstddef>

#include "core/image_block.h"
#include "core/image_view.h"
#include "core/out_value.h"
#include "core/rectangle.h"
#include "core/replaced_image.h"
#include "measure/image_values.h"
#include "process/outside_runs.h"
#include "process/pel_runs.h"
#include "tqimage/thresholds.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNotCreated = -3;

/// The pels from low to high. Limits beyond the grey levels are meant as they are: no pel reaches 65536.
kernels::Band BandOf(std::int32_t low, std::int32_t high) noexcept {
    if (low > kLargestPel || high < 0) return {1, 0};
    return {ClampToPel(low), ClampToPel(high)};
}

/// In hosts' dialogs an empty upper limit is 0.
kernels::Band BandUnlessOpen(std::int32_t low, std::int32_t high) noexcept {
    return BandOf(low, high == 0 ? kLargestPel : high);
}

/// Pels below a threshold become 0, the others a value or, when that is 0 or below, stay.
class Threshold {
  public:
    Threshold(std::int32_t threshold, std::int32_t value) noexcept
        : band_(BandOf(threshold, kLargestPel)), value_(value) {}

    void Apply(const Pel* pels, Pel* out, std::size_t count) const {
        if (value_ <= 0) return kernels::KeepBand(pels, band_, out, count);
        kernels::MarkBand(pels, band_, ClampToPel(value_), out, count);
    }

  private:
    kernels::Band band_;
    std::int32_t value_;
};

/// Replaces the host's image with what fill(out) writes into an unwritten block with the image's header.
template <class Fill>
std::int32_t Replace(TqImage** image, const ConstImageView& view, Fill&& fill) {
    return ReplaceImage(image, kNotCreated, [&] {
        OwnedImage result(view, NewPels::kUnwritten);
        fill(result.View());
        return result;
    });
}

void CopyOutside(const ConstImageView& view, const Rect& rect, const ImageView& out) {
    VisitOutside(view, rect, [&](std::size_t first, std::size_t count) {
        std::copy_n(view.pels + first, count, out.pels + first);
    });
}

std::int32_t KeepBandInRegion(TqImage** image, std::int32_t low, std::int32_t high, const Rect& asked) {
    const ConstImageView view = LocateHeld(image);
    if (!view) return kInvalidImage;
    const kernels::Band band = BandUnlessOpen(low, high);
    const Rect region = ClampRegion(asked, view.cols, view.rows);
    return Replace(image, view, [&](const ImageView& out) {
        CopyOutside(view, region, out);
        const auto measured = ProduceMeasured(out, region, [&](std::size_t first, std::size_t count) {
            kernels::KeepBand(view.pels + first, band, out.pels + first, count);
        });
        // The largest pel inside the region, although brighter ones may lie outside: hosts rely on it.
        out.header->MaxPelValue = measured.max;
    });
}

/// The columns or rows of one border, none when the share is no number or below 0.
std::int32_t Margin(double pels, std::int32_t available) noexcept {
    return std::max(TruncToInt32(std::min(pels, static_cast<double>(available))), 0);
}

/// What the border band leaves free, perhaps nothing. The share is multiplied and divided in another order
/// for rows than for columns, which can differ by a pel: hosts rely on the size of the band.
Rect InsideOfBorder(const ConstImageView& view, double percent) noexcept {
    const std::int32_t cols = Margin(view.cols * percent / 100.0, view.cols);
    const std::int32_t rows = Margin(percent / 100.0 * view.rows, view.rows);
    return {cols, rows, view.cols - 1 - cols, view.rows - 1 - rows};
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqThresholdImage(TqImage** image, std::int32_t threshold, std::int32_t value) {
    const ConstImageView view = LocateHeld(image);
    if (!view) return kInvalidImage;
    const Threshold rule(threshold, value);
    return Replace(image, view, [&](const ImageView& out) {
        StoreImageValues(out, ProduceMeasured(out, [&](std::size_t first, std::size_t count) {
                             rule.Apply(view.pels + first, out.pels + first, count);
                         }));
    });
}

std::int32_t TQ_CALL tqThresholdImageInRegion(TqImage** image, std::int32_t threshold, std::int32_t value,
                                              std::int32_t left, std::int32_t top, std::int32_t right,
                                              std::int32_t bottom) {
    const ConstImageView view = LocateHeld(image);
    if (!view) return kInvalidImage;
    const Threshold rule(threshold, value);
    const Rect region = ClampRegion({left, top, right, bottom}, view.cols, view.rows);
    return Replace(image, view, [&](const ImageView& out) {
        CopyOutside(view, region, out);
        VisitRuns(view, region, [&](std::size_t first, std::size_t count) {
            rule.Apply(view.pels + first, out.pels + first, count);
        });
    });
}

std::int32_t TQ_CALL tqThresholdImage2(TqImage** image, std::int32_t low, std::int32_t high) {
    return KeepBandInRegion(image, low, high, {0, 0, 0, 0});
}

std::int32_t TQ_CALL tqThresholdImage2InRegion(TqImage** image, std::int32_t low, std::int32_t high,
                                               std::int32_t left, std::int32_t top, std::int32_t right,
                                               std::int32_t bottom) {
    return KeepBandInRegion(image, low, high, {left, top, right, bottom});
}

std::int32_t TQ_CALL tqThresholdImage3(TqImage** image, std::int32_t low, std::int32_t high,
                                       std::int32_t replacement, std::int32_t* replaced) {
    const ConstImageView view = LocateHeld(image);
    if (!view) return kInvalidImage;
    StoreIfAsked(replaced, 0);
    const kernels::Band band = BandUnlessOpen(low, high);
    return Replace(image, view, [&](const ImageView& out) {
        std::uint64_t hits = 0;
        const auto measured = ProduceMeasured(out, [&](std::size_t first, std::size_t count) {
            hits += kernels::ReplaceOutside(view.pels + first, band, ClampToPel(replacement),
                                            out.pels + first, count);
        });
        out.header->MaxPelValue = measured.max;
        StoreIfAsked(replaced, static_cast<std::int32_t>(hits));
    });
}

std::int32_t TQ_CALL tqThresholdImageEdge(TqImage** image, std::int32_t threshold, float percent) {
    const ConstImageView view = LocateHeld(image);
    if (!view) return kInvalidImage;
    const Threshold rule(threshold, 0);
    const Rect inside = InsideOfBorder(view, static_cast<double>(percent));
    return Replace(image, view, [&](const ImageView& out) {
        VisitOutside(view, inside, [&](std::size_t first, std::size_t count) {
            rule.Apply(view.pels + first, out.pels + first, count);
        });
        VisitRuns(view, inside, [&](std::size_t first, std::size_t count) {
            std::copy_n(view.pels + first, count, out.pels + first);
        });
    });
}
