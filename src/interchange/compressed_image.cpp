#include "tqimage/compressed_image.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <vector>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/level_table.h"
#include "interchange/jpeg_codec.h"
#include "interchange/tone_curve.h"

using namespace tq;

namespace {

constexpr std::int32_t kOk = 0;
constexpr std::int32_t kNoImage = -1;
constexpr std::int32_t kNotConverted = -2;
constexpr std::int32_t kNotSaved = -3;
constexpr std::int32_t kTooSmall = -4;
constexpr std::int32_t kNoDestination = -5;

constexpr std::int32_t kNotLoaded = -1;
constexpr std::int32_t kNotRestored = -2;

constexpr std::int32_t kFirstPreset = -9;
constexpr std::int32_t kLastQuality = 255;
constexpr std::int32_t kUsualPreset = -5;

/// Compressed images are measured again, so their bytes stay proportional to the light.
constexpr double kLinear = -1.0;

std::vector<std::uint8_t> LinearTones(const ImageView& image) {
    EnsureScale(*image.header);
    std::vector<std::uint8_t> tones =
        MakeToneTable(kLinear, image.header->MaxPelValue, LargestToTabulate(image));
    CoverEveryLevel(tones);
    return tones;
}

std::int32_t Save(const std::vector<std::uint8_t>& file, std::uint8_t* destination, std::uint32_t* length,
                  std::uint32_t capacity) {
    if (file.empty()) return kNotSaved;
    *length = static_cast<std::uint32_t>(file.size());
    if (capacity < file.size()) return kTooSmall;
    if (destination == nullptr) return kNoDestination;
    std::memcpy(destination, file.data(), file.size());
    return kOk;
}

}  // namespace

std::int32_t TQ_CALL tqCompressImage(TqImage* image, std::uint8_t* destination, std::uint32_t* length,
                                     double* scale, std::uint32_t capacity, std::int32_t,
                                     std::int32_t quality) {
    if (image == nullptr || length == nullptr || scale == nullptr) return kNoImage;
    const ImageView source = LocateImage(image);
    if (!source) return kNotConverted;
    if (quality < kFirstPreset || quality > kLastQuality) quality = kUsualPreset;
    return Guarded(kNotConverted, [&] {
        const std::vector<std::uint8_t> tones = LinearTones(source);
        *scale = ByteScale(*source.header);
        return Guarded(kNotSaved, [&] {
            return Save(EncodeJpeg(source, tones, quality), destination, length, capacity);
        });
    });
}

std::int32_t TQ_CALL tqDecompressImage(const std::uint8_t* source, std::uint32_t length,
                                       const TqImageHeader* info, TqImage** image) {
    if (source == nullptr || length == 0 || info == nullptr || image == nullptr) return kNotLoaded;
    return Guarded(kNotRestored, [&] {
        std::optional<OwnedImage> restored = DecodeJpeg({source, length});
        if (!restored) return kNotLoaded;
        TqImageHeader& header = restored->Header();
        const TqImageHeader made = header;
        header = *info;
        header.PelCols = made.PelCols;
        header.PelRows = made.PelRows;
        CommitImage(image, std::move(*restored));
        return kOk;
    });
}
