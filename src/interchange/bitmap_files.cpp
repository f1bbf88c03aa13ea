#include "tqimage/bitmap_files.h"

#include <cstdint>
#include <optional>

#include "core/guard.h"
#include "core/image_view.h"
#include "core/replaced_image.h"
#include "interchange/bitmap_conversion.h"
#include "interchange/bitmap_object.h"
#include "interchange/palette.h"
#include "platform/clipboard.h"

namespace tq {
namespace {

constexpr std::int32_t kConversionFailed = -2;
constexpr std::int32_t kSaveFailed = -3;
constexpr std::int32_t kNoDib = -1;
constexpr std::int32_t kBitmapNotSaved = -1;
constexpr std::int32_t kLoadFailed = -100;
constexpr std::int32_t kNoImage = -3;

/// Files and DIBs are made for screens.
constexpr double kScreenGamma = 1.0;

/// `use` gets the bitmap of a host's image and gives the status.
template <class Use>
std::int32_t WithBitmap(TqImage* image, std::int32_t palette, Use&& use) noexcept {
    const ImageView source = LocateImage(image);
    if (!source) return kConversionFailed;
    return Guarded(kConversionFailed, [&] {
        const OwnedBitmap bitmap = BitmapOf(source, MakePalette(palette), kScreenGamma);
        return use(bitmap.Get());
    });
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqImageToDiskBmp(const char* fileName, TqImage* image, std::int32_t palette) {
    return WithBitmap(image, palette, [&](const TqLeadBitmap& bitmap) {
        return SaveBitmap(fileName, bitmap) ? 0 : kSaveFailed;
    });
}

std::int32_t TQ_CALL tqLeadBmpToDiskBmp(const char* fileName, const TqLeadBitmap* bitmap) {
    if (bitmap == nullptr || !IsReadable(*bitmap)) return kBitmapNotSaved;
    return SaveBitmap(fileName, *bitmap) ? 0 : kBitmapNotSaved;
}

std::int32_t TQ_CALL tqImageToDIB(void** dib, TqImage* image, std::int32_t palette) {
    if (dib == nullptr) return kNoDib;
    return WithBitmap(image, palette, [&](const TqLeadBitmap& bitmap) {
        *dib = BitmapToDib(bitmap);
        return *dib != nullptr ? 0 : kNoDib;
    });
}

std::int32_t TQ_CALL tqDiskBmpToImage(const char* fileName, const TqImageHeader* info, TqImage** image) {
    const std::optional<OwnedBitmap> bitmap = LoadBitmap(fileName, BitmapDepth::kBytes);
    if (!bitmap) return kLoadFailed;
    if (info == nullptr || image == nullptr) return kNoImage;
    return ReplaceImage(image, kNoImage, [&] { return ImageOf(bitmap->Get(), info); });
}

std::int32_t TQ_CALL tqBmpToClipBoard(void* owner, void* dib) {
    if (dib == nullptr) return kNoDib;
    PutDibOnClipboard(owner, dib);
    return 0;
}
