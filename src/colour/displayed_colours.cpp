#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "colour/channels.h"
#include "core/guard.h"
#include "core/image_block.h"
#include "interchange/bitmap_object.h"
#include "interchange/tone_curve.h"
#include "kernels/span_statistics.h"
#include "process/equalised_image.h"
#include "process/grey_bins.h"
#include "tqimage/colour_bitmap.h"

namespace tq {
namespace {

constexpr std::int32_t kNoImage = -1;
constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kSizesDiffer = -3;
constexpr std::int32_t kNoBitmap = -4;
constexpr std::int32_t kNotEqualised[3] = {-11, -21, -31};

/// Levels that equalising finds by itself, from the header.
constexpr std::int32_t kAutomaticLevels = 0;

/// Where colours are to be shown, and how.
struct Display {
    TqLeadBitmap* bitmap;
    ColourMatrix matrix;
    double white;
    double gamma;
    bool keepLuminance;
};

using Images = std::array<const TqImage*, 3>;
using Rgb = std::array<double, 3>;

/// X, Y and Z, each of which may be missing.
struct Tristimuli {
    std::array<ConstImageView, 3> views;
    std::int32_t cols = 0;
    std::int32_t rows = 0;

    /// 0, or the code of images that cannot be shown together.
    std::int32_t Fit() noexcept {
        for (const ConstImageView& view : views) {
            if (!view) continue;
            if (cols != 0 && (view.cols != cols || view.rows != rows)) return kSizesDiffer;
            cols = view.cols;
            rows = view.rows;
        }
        return cols == 0 ? kNoImage : 0;
    }
    double ValueAt(std::size_t k, std::int32_t col, std::int32_t row) const noexcept {
        return views[k] ? views[k].At(col, row) * static_cast<double>(views[k].header->LuxPerGrey) : 0.0;
    }
    /// The largest Y, or without a Y image the largest of what there is.
    double Largest() const noexcept {
        if (views[1]) return LargestOf(views[1]);
        double largest = 0.0;
        for (const ConstImageView& view : views)
            if (view) largest = std::max(largest, LargestOf(view));
        return largest;
    }

  private:
    static double LargestOf(const ConstImageView& view) noexcept {
        return kernels::FindMinMax(view.pels, view.Count()).max *
               static_cast<double>(view.header->LuxPerGrey);
    }
};

/// What a display can show of a channel; what is not a number is dark.
constexpr double Shown(double light) noexcept {
    return light > 0.0 ? std::min(light, 1.0) : 0.0;
}

/// The colour on the way to the grey of the same luminance that a display can just show.
Rgb TowardGrey(Rgb colour, double luminance) noexcept {
    const double grey = Shown(luminance);
    double share = 1.0;
    for (const double light : colour) {
        if (light < 0.0) share = std::min(share, grey / (grey - light));
        if (light > 1.0) share = std::min(share, (1.0 - grey) / (light - grey));
    }
    // A colour that can be shown stays as it is to the last bit.
    if (share < 1.0)
        for (double& light : colour)
            light = grey + share * (light - grey);
    return colour;
}

OwnedBitmap BitmapOf(const Tristimuli& from, const Display& display) {
    OwnedBitmap bitmap = OwnedBitmap::OfColours(from.cols, from.rows, NewPixels::kZero);
    const double white = display.white > 0.0 ? display.white : from.Largest();
    // Without light there is nothing to divide by, and nothing to see.
    if (!(white > 0.0)) return bitmap;
    const ToneSteps tone(display.gamma);
    for (std::int32_t row = 0; row < from.rows; ++row) {
        std::uint8_t* pixel = bitmap.Row(row);
        for (std::int32_t col = 0; col < from.cols; ++col, pixel += 3) {
            const double y = from.ValueAt(1, col, row);
            const Xyz mixed =
                Transform(display.matrix, from.ValueAt(0, col, row), y, from.ValueAt(2, col, row));
            Rgb colour{mixed.x / white, mixed.y / white, mixed.z / white};
            if (display.keepLuminance) colour = TowardGrey(colour, y / white);
            for (std::size_t k = 0; k < 3; ++k)
                pixel[2 - k] = tone.ByteOf(Shown(colour[k]));
        }
    }
    return bitmap;
}

std::int32_t Show(Tristimuli from, const Display& display) noexcept {
    if (const auto status = from.Fit()) return status;
    if (display.bitmap == nullptr) return kNoBitmap;
    return Guarded(kNoBitmap, [&] {
        *display.bitmap = BitmapOf(from, display).Release();
        return 0;
    });
}

std::int32_t ShowImages(const Images& images, const Display& display) noexcept {
    Tristimuli from;
    for (std::size_t k = 0; k < images.size(); ++k) {
        from.views[k] = LocateImage(images[k]);
        if (images[k] != nullptr && !from.views[k]) return kInvalidImage;
    }
    return Show(from, display);
}

/// Images whose pels are spread over the levels that their headers tell.
std::int32_t ShowEqualised(const Images& images, const Display& display) noexcept {
    std::array<OwnedImage, 3> equalised;
    Tristimuli from;
    for (std::size_t k = 0; k < images.size(); ++k) {
        if (images[k] == nullptr) continue;
        const ConstImageView view = LocateImage(images[k]);
        if (!view) return kNotEqualised[k];
        const std::int32_t status = Guarded(kNotEqualised[k], [&] {
            equalised[k] = OwnedImage(view, NewPels::kUnwritten);
            from.views[k] = equalised[k].View();
            const std::int32_t levels = EqualisedLevels(kAutomaticLevels, *view.header);
            return EqualiseInto(equalised[k].View(), view, levels) != 0 ? 0 : kNotEqualised[k];
        });
        if (status != 0) return status;
    }
    return Show(from, display);
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqTransformXYZtoRGB(const TqImage* x, const TqImage* y, const TqImage* z,
                                         TqLeadBitmap* bitmap, float m0, float m1, float m2, float m3,
                                         float m4, float m5, float m6, float m7, float m8, float white,
                                         double gamma, std::int32_t gamut) {
    return ShowImages({x, y, z}, {bitmap, {m0, m1, m2, m3, m4, m5, m6, m7, m8}, white, gamma, gamut != 0});
}

std::int32_t TQ_CALL tqTransformXYZtoRGB2(const TqImage* x, const TqImage* y, const TqImage* z,
                                          TqLeadBitmap* bitmap, float m0, float m1, float m2, float m3,
                                          float m4, float m5, float m6, float m7, float m8, float white,
                                          double gamma, std::int32_t gamut, std::int32_t equalise) {
    const Display display{bitmap, {m0, m1, m2, m3, m4, m5, m6, m7, m8}, white, gamma, gamut != 0};
    return equalise != 0 ? ShowEqualised({x, y, z}, display) : ShowImages({x, y, z}, display);
}
