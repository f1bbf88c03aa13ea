#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "core/guard.h"
#include "core/image_view.h"
#include "interchange/bitmap_object.h"
#include "interchange/bmp_file.h"
#include "interchange/palette.h"
#include "interchange/tone_curve.h"
#include "kernels/span_statistics.h"
#include "tqimage/bitmap.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -100;
constexpr std::int32_t kNoPlainBitmap = -2;
constexpr std::int32_t kNoPaletteBitmap = -3;
constexpr std::int32_t kConversionFailed = -2;
constexpr std::int32_t kSaveFailed = -3;

constexpr std::int32_t kNoPalette = 0;
/// Files are made for screens.
constexpr double kFileGamma = 1.0;

void FillRows(const OwnedBitmap& bitmap, const ConstImageView& image, double gamma) {
    const Pel largest = kernels::FindMinMax(image.pels, image.Count()).max;
    const std::vector<std::uint8_t> bytes = MakeToneTable(gamma, image.header->MaxPelValue, largest);
    for (std::int32_t row = 0; row < image.rows; ++row) {
        const Pel* pels = image.Row(row);
        std::transform(pels, pels + image.cols, bitmap.Row(row), [&](Pel pel) { return bytes[pel]; });
    }
}

OwnedBitmap MakeBitmap(const ImageView& image, std::int32_t paletteCode, double gamma) {
    const std::optional<Palette> palette = MakePalette(paletteCode);
    OwnedBitmap bitmap(image.cols, image.rows, palette ? &*palette : nullptr);
    EnsureScale(*image.header);
    FillRows(bitmap, image, gamma);
    return bitmap;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqImageToLeadBmp(TqLeadBitmap* bitmap, double* scale, TqImage* image,
                                      std::int32_t palette, double gamma) {
    const ImageView source = LocateImage(image);
    if (!source) return kInvalidImage;
    const std::int32_t noBitmap = palette == kNoPalette ? kNoPlainBitmap : kNoPaletteBitmap;
    if (bitmap == nullptr) return noBitmap;
    return Guarded(noBitmap, [&] {
        *bitmap = MakeBitmap(source, palette, gamma).Release();
        *scale = static_cast<double>(kByteScale) / source.header->MaxPelValue;
        return 0;
    });
}

std::int32_t TQ_CALL tqFreeLeadBmp(TqLeadBitmap* bitmap) {
    if (bitmap != nullptr) FreeBitmap(*bitmap);
    return 0;
}

std::int32_t TQ_CALL tqImageToDiskBmp(const char* fileName, TqImage* image, std::int32_t palette) {
    const ImageView source = LocateImage(image);
    if (!source) return kConversionFailed;
    return Guarded(kConversionFailed, [&] {
        const OwnedBitmap bitmap = MakeBitmap(source, palette, kFileGamma);
        return WriteBmpFile(fileName, bitmap.Get()) ? 0 : kSaveFailed;
    });
}
