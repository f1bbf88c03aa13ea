#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "core/guard.h"
#include "core/image_view.h"
#include "core/portable_math.h"
#include "interchange/bitmap_object.h"
#include "interchange/tone_curve.h"
#include "tqimage/colour_bitmap.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -1;
constexpr std::int32_t kNoBitmap = -2;
constexpr std::int32_t kNoDib = -11;

constexpr double kFullScale = 255.0;
constexpr std::uint8_t kWhite = 255;

/// Three numbers in the order in which bitmaps store them.
enum Channel : std::size_t { kBlue, kGreen, kRed, kChannels };
using Triple = std::array<double, kChannels>;

double Largest(const Triple& values) noexcept {
    return std::max(std::max(values[kRed], values[kGreen]), values[kBlue]);
}

/// The images present, of one size, and what turns their pels into light.
struct Sources {
    std::array<ConstImageView, kChannels> images;
    Triple gains{};
    std::int32_t cols = 0;
    std::int32_t rows = 0;
    double fullScale = 0.0;

    bool Add(Channel channel, const TqImage* image, float gain) noexcept {
        gains[channel] = gain;
        if (image == nullptr) return true;
        const ConstImageView view = LocateImage(image);
        if (!view || (cols != 0 && (view.cols != cols || view.rows != rows))) return false;
        const auto scale = static_cast<double>(view.header->MaxPelValue);
        fullScale = cols == 0 ? scale : std::max(fullScale, scale);
        images[channel] = view;
        cols = view.cols;
        rows = view.rows;
        return true;
    }
    Triple Light(std::int32_t col, std::int32_t row) const noexcept {
        Triple light{};
        for (std::size_t i = 0; i < kChannels; ++i) {
            if (images[i]) light[i] = images[i].At(col, row) * gains[i];
        }
        return light;
    }
};

struct Style {
    bool normalize;
    bool whiteForBlack;
    double gamma;
};

/// Bytes of light / fullScale, made brighter or darker by one power of the largest of the three. As long as
/// no result is next to a whole number the C library's powers are good enough for the same bytes everywhere.
void EncodeWithGamma(Triple light, double gamma, std::uint8_t* pixel) {
    const double largest = Largest(light);
    const auto scaled = [&](double factor, auto&& tone) {
        Triple tones;
        for (std::size_t i = 0; i < kChannels; ++i)
            tones[i] = tone(light[i] * factor, kToneExponent);
        return tones;
    };
    Triple tones = scaled(largest > 0.0 ? std::pow(largest, gamma - 1.0) : 1.0, RoughTone);
    if (std::ranges::any_of(tones, IsDoubtful)) {
        tones = scaled(largest > 0.0 ? portable::Pow(largest, gamma - 1.0) : 1.0, ExactTone);
    }
    std::ranges::transform(tones, pixel, ToneByte);
}

void Normalize(const Triple& light, double largest, std::uint8_t* pixel) noexcept {
    std::ranges::transform(light, pixel,
                           [=](double value) { return ToneByte(value * kFullScale / largest); });
}

/// Dark pixels of a row stand out in white. Gains may be negative, so that the brightest channel decides.
void WhitenBlack(const Sources& sources, std::int32_t row, std::uint8_t* pixel) noexcept {
    for (std::int32_t col = 0; col < sources.cols; ++col, pixel += kChannels) {
        if (Largest(sources.Light(col, row)) == 0.0) std::fill(pixel, pixel + kChannels, kWhite);
    }
}

void FillPixel(const Sources& sources, const Style& style, Triple light, std::uint8_t* pixel) {
    const double largest = Largest(light);
    if (style.normalize && largest > 0.0) {
        Normalize(light, largest, pixel);
    } else if (sources.fullScale > 0.0) {
        for (double& value : light)
            value /= sources.fullScale;
        EncodeWithGamma(light, style.gamma, pixel);
    }
}

/// Without normalisation and gamma a byte depends on its own pel alone.
void FillByTables(const Sources& sources, const Style& style, const OwnedBitmap& bitmap) {
    std::array<std::vector<std::uint8_t>, kChannels> tables;
    for (std::size_t i = 0; i < kChannels; ++i) {
        if (sources.images[i]) {
            tables[i] = MakeToneTable(style.gamma, sources.fullScale, kLargestPel, sources.gains[i]);
        }
    }
    for (std::int32_t row = 0; row < sources.rows; ++row) {
        for (std::size_t i = 0; i < kChannels; ++i) {
            if (!sources.images[i]) continue;
            const Pel* pels = sources.images[i].Row(row);
            std::uint8_t* out = bitmap.Row(row) + i;
            for (std::int32_t col = 0; col < sources.cols; ++col, out += kChannels)
                *out = tables[i][pels[col]];
        }
        if (style.whiteForBlack) WhitenBlack(sources, row, bitmap.Row(row));
    }
}

OwnedBitmap Combine(const Sources& sources, const Style& style) {
    OwnedBitmap bitmap = OwnedBitmap::OfColours(sources.cols, sources.rows);
    if (!style.normalize && style.gamma == 1.0 && sources.fullScale > 0.0) {
        FillByTables(sources, style, bitmap);
        return bitmap;
    }
    for (std::int32_t row = 0; row < sources.rows; ++row) {
        std::uint8_t* pixel = bitmap.Row(row);
        for (std::int32_t col = 0; col < sources.cols; ++col, pixel += kChannels)
            FillPixel(sources, style, sources.Light(col, row), pixel);
        if (style.whiteForBlack) WhitenBlack(sources, row, bitmap.Row(row));
    }
    return bitmap;
}

/// The whole contract but for what becomes of the bitmap: `use(OwnedBitmap)` gives the status.
template <class Use>
std::int32_t WithCombined(const std::array<const TqImage*, 3>& images, const std::array<float, 3>& gains,
                          const Style& style, Use&& use) noexcept {
    Sources sources;
    const bool sound = sources.Add(kRed, images[0], gains[0]) && sources.Add(kGreen, images[1], gains[1]) &&
                       sources.Add(kBlue, images[2], gains[2]);
    if (!sound || sources.cols == 0) return kInvalidImage;
    return Guarded(kNoBitmap, [&] { return use(Combine(sources, style)); });
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqCombineImagesRGB(TqLeadBitmap* bitmap, const TqImage* red, const TqImage* green,
                                        const TqImage* blue, float redGain, float greenGain, float blueGain,
                                        std::int32_t normalize, std::int32_t whiteForBlack, double gamma) {
    const Style style{normalize != 0, whiteForBlack != 0, gamma == 0.0 ? 1.0 : gamma};
    return WithCombined({red, green, blue}, {redGain, greenGain, blueGain}, style, [&](OwnedBitmap combined) {
        if (bitmap == nullptr) return kNoBitmap;
        *bitmap = combined.Release();
        return 0;
    });
}

std::int32_t TQ_CALL tqCombineImagesRGBtoDIB(void** dib, const TqImage* red, const TqImage* green,
                                             const TqImage* blue, float redGain, float greenGain,
                                             float blueGain, std::int32_t normalize,
                                             std::int32_t whiteForBlack, double gamma) {
    const Style style{normalize != 0, whiteForBlack != 0, gamma == 0.0 ? 1.0 : gamma};
    return WithCombined({red, green, blue}, {redGain, greenGain, blueGain}, style,
                        [&](const OwnedBitmap& combined) {
                            if (dib == nullptr) return kNoDib;
                            *dib = BitmapToDib(combined.Get());
                            return *dib != nullptr ? 0 : kNoDib;
                        });
}
