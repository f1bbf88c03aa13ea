#include "interchange/bitmap_conversion.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/guard.h"
#include "core/level_table.h"
#include "core/out_value.h"
#include "core/replaced_image.h"
#include "interchange/text_palette.h"
#include "interchange/tone_curve.h"
#include "kernels/pel_arithmetic.h"
#include "kernels/span_statistics.h"
#include "tqimage/bitmap.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -100;
constexpr std::int32_t kNoPlainBitmap = -2;
constexpr std::int32_t kNoPaletteBitmap = -3;
constexpr std::int32_t kNoImage = -1;

constexpr std::int32_t kNoPalette = 0;

/// `makeTable(const TqImageHeader&, Pel largest)` gives the byte of every pel.
template <class MakeTable>
OwnedBitmap Convert(const ImageView& image, const std::optional<Palette>& palette, MakeTable&& makeTable) {
    OwnedBitmap bitmap(image.cols, image.rows, palette ? &*palette : nullptr, NewPixels::kUnwritten);
    EnsureScale(*image.header);
    std::vector<std::uint8_t> bytes = makeTable(*image.header, LargestToTabulate(image));
    CoverEveryLevel(bytes);
    for (std::int32_t row = 0; row < image.rows; ++row) {
        kernels::LookUp(image.Row(row), bytes.data(), bitmap.Row(row), static_cast<std::size_t>(image.cols));
    }
    return bitmap;
}

/// A whole call; the host's bitmap is written when the new one is complete.
template <class MakeTable>
std::int32_t ConvertForHost(TqLeadBitmap* bitmap, double* scale, TqImage* image, std::int32_t paletteCode,
                            const std::optional<Palette>& palette, MakeTable&& makeTable) noexcept {
    const ImageView source = LocateImage(image);
    if (!source) return kInvalidImage;
    const std::int32_t noBitmap = paletteCode == kNoPalette ? kNoPlainBitmap : kNoPaletteBitmap;
    if (bitmap == nullptr) return noBitmap;
    return Guarded(noBitmap, [&] {
        *bitmap = Convert(source, palette, makeTable).Release();
        StoreIfAsked(scale, ByteScale(*source.header));
        return 0;
    });
}

std::optional<Palette> PaletteOrText(std::int32_t code, const char* text) noexcept {
    return code == kTextPalette ? ReadTextPalette(text) : MakePalette(code);
}

auto ToneTables(double gamma) noexcept {
    return [=](const TqImageHeader& header, Pel largest) {
        return MakeToneTable(gamma, header.MaxPelValue, largest);
    };
}

/// The levels as a host means them: 0 leaves the upper one to the image.
Stretch CompleteStretch(const TqImageHeader& header, Stretch stretch) noexcept {
    if (stretch.high == 0) stretch.high = TruncToInt32(header.MaxPelValue);
    if (stretch.high == 0) stretch.high = 1;
    if (stretch.logarithmic) {
        // Below 1 there is no logarithm to start from.
        stretch.low = std::max(stretch.low, 1);
        stretch.high = std::max(stretch.high, 1);
    }
    return stretch;
}

}  // namespace

OwnedBitmap BitmapOf(const ImageView& image, const std::optional<Palette>& palette, double gamma) {
    return Convert(image, palette, ToneTables(gamma));
}

TqImageHeader BitmapImageHeader(const TqImageHeader* info, std::int32_t cols, std::int32_t rows,
                                Pel largest) noexcept {
    TqImageHeader header{};
    header.PelsPerMeterX = 1.0f;
    header.PelsPerMeterY = 1.0f;
    header.LuxPerGrey = 1.0f;
    header.SourceDistance = 1.0f;
    header.BinCols = 1;
    header.BinRows = 1;
    if (info != nullptr) header = *info;
    header.PelCols = cols;
    header.PelRows = rows;
    header.MaxPelValue = std::max(largest, Pel{1});
    return header;
}

OwnedImage ImageOf(const TqLeadBitmap& bitmap, const TqImageHeader* info) {
    OwnedImage image(bitmap.width, bitmap.height, NewPels::kUnwritten);
    const ImageView view = image.View();
    for (std::int32_t row = 0; row < view.rows; ++row) {
        // Byte by byte whatever the depth: hosts rely on the first third of a row of colours.
        const std::uint8_t* bytes = DisplayedRow(bitmap, row);
        std::copy(bytes, bytes + view.cols, view.Row(row));
    }
    const Pel largest = kernels::FindMinMax(view.pels, view.Count()).max;
    image.Header() = BitmapImageHeader(info, view.cols, view.rows, largest);
    return image;
}

}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqImageToLeadBmp(TqLeadBitmap* bitmap, double* scale, TqImage* image,
                                      std::int32_t palette, double gamma) {
    return ConvertForHost(bitmap, scale, image, palette, MakePalette(palette), ToneTables(gamma));
}

std::int32_t TQ_CALL tqImageToLeadBmp0(TqLeadBitmap* bitmap, double* scale, TqImage* image,
                                       const char* paletteText, std::int32_t palette, double gamma) {
    if (palette == kTextPalette && paletteText == nullptr) return kInvalidImage;
    return ConvertForHost(bitmap, scale, image, palette, PaletteOrText(palette, paletteText),
                          ToneTables(gamma));
}

std::int32_t TQ_CALL tqImageToLeadBmpScale(TqLeadBitmap* bitmap, double* scale, TqImage* image,
                                           const char* paletteText, std::int32_t palette, std::int32_t low,
                                           std::int32_t high, std::int32_t logarithmic, double gamma) {
    if (palette == kTextPalette && paletteText == nullptr) return kInvalidImage;
    const Stretch wanted{low, high, logarithmic != 0};
    return ConvertForHost(bitmap, scale, image, palette, PaletteOrText(palette, paletteText),
                          [&](const TqImageHeader& header, Pel largest) {
                              return MakeStretchTable(gamma, CompleteStretch(header, wanted), largest);
                          });
}

std::int32_t TQ_CALL tqLeadBmpToImage(TqLeadBitmap bitmap, TqImage** image) {
    if (image == nullptr || !IsReadable(bitmap)) return kNoImage;
    return ReplaceImage(image, kNoImage, [&] { return ImageOf(bitmap, nullptr); });
}

std::int32_t TQ_CALL tqFreeLeadBmp(TqLeadBitmap* bitmap) {
    if (bitmap != nullptr) FreeBitmap(*bitmap);
    return 0;
}
