#include "tqimage/image.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/numerics.h"

namespace {

constexpr std::int32_t kOk = 0;
constexpr std::int32_t kInvalidImage = -1;
constexpr std::int32_t kNotCreated = -1;
// Not the code of the creating functions; hosts tell a bad source from a lack of memory by it.
constexpr std::int32_t kNotCopied = -2;

const TqImageHeader& HeaderOf(const TqImage* image) noexcept {
    return *reinterpret_cast<const TqImageHeader*>(image);
}

/// Reading and replacing a header are one step in opposite directions, so they share one rule.
std::int32_t CopyHeader(TqImageHeader* to, const TqImageHeader* from) noexcept {
    if (to == nullptr || from == nullptr) return kInvalidImage;
    if (!tq::IsValidSide(from->PelCols) || !tq::IsValidSide(from->PelRows)) return kInvalidImage;
    std::memmove(to, from, sizeof *to);
    return kOk;
}

std::int32_t FillPels(TqImage* image, tq::Pel value) noexcept {
    const tq::ImageView view = tq::LocateImage(image);
    if (!view) return kInvalidImage;
    std::fill_n(view.pels, view.Count(), value);
    return kOk;
}

}  // namespace

int32_t TQ_CALL tqCreateImage(const TqImageHeader* info, TqImage** image) {
    if (info == nullptr || image == nullptr) return kNotCreated;
    // Taken before the old block goes: hosts resize an image by handing in its own header.
    const TqImageHeader header = *info;
    tq::FreeHostBlock(image);
    return tq::Guarded(kNotCreated, [&] {
        tq::OwnedImage created(header.PelCols, header.PelRows);
        created.Header() = header;
        *image = created.Release();
        return kOk;
    });
}

int32_t TQ_CALL tqCreateImageA(TqImage** image, int32_t* blockAddress, uint16_t** pels, int32_t cols,
                               int32_t rows) {
    if (image == nullptr) return kNotCreated;
    tq::FreeHostBlock(image);
    return tq::Guarded(kNotCreated, [&] {
        tq::OwnedImage created(cols, rows);
        if (pels != nullptr) *pels = created.View().pels;
        *image = created.Release();
        if (blockAddress != nullptr) {
            // Exactly 32 bits on every build: hosts declare it as a 32-bit integer.
            const auto low = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(*image));
            *blockAddress = std::bit_cast<std::int32_t>(low);
        }
        return kOk;
    });
}

int32_t TQ_CALL tqImageFree(TqImage** image) {
    if (image == nullptr || *image == nullptr) return kInvalidImage;
    tq::FreeHostBlock(image);
    return kOk;
}

int32_t TQ_CALL tqGetImageInfo(TqImageHeader* info, const TqImage* image) {
    return CopyHeader(info, reinterpret_cast<const TqImageHeader*>(image));
}

int32_t TQ_CALL tqSetImageInfo(TqImage* image, const TqImageHeader* info) {
    return CopyHeader(reinterpret_cast<TqImageHeader*>(image), info);
}

int32_t TQ_CALL tqGetKeyStoneImageInfo(TqImageHeader* info, const TqDistortionMap* source) {
    if (info == nullptr || source == nullptr) return kOk;
    info->PelCols = source->Cols;
    info->PelRows = source->Rows;
    // The centre goes to the resolution fields: that is where hosts have always looked for it.
    info->PelsPerMeterX = source->CenterCol;
    info->PelsPerMeterY = source->CenterRow;
    return kOk;
}

int32_t TQ_CALL tqGlobalCopy(TqImage** destination, const TqImage* source) {
    const tq::ConstImageView view = tq::LocateImage(source);
    if (destination == nullptr || !view) return kInvalidImage;
    if (*destination == source) return kOk;
    tq::FreeHostBlock(destination);
    return tq::Guarded(kNotCopied, [&] {
        tq::OwnedImage copy(view, tq::NewPels::kUnwritten);
        std::copy_n(view.pels, view.Count(), copy.View().pels);
        *destination = copy.Release();
        return kOk;
    });
}

int32_t TQ_CALL tqClearImagePels(TqImage* image) {
    return FillPels(image, 0);
}

int32_t TQ_CALL tqInitializeImagePels(TqImage* image, int32_t value) {
    return FillPels(image, tq::ClampToPel(value));
}

int32_t TQ_CALL tqGetPelCols(const TqImage* image) {
    return HeaderOf(image).PelCols;
}

int32_t TQ_CALL tqGetPelRows(const TqImage* image) {
    return HeaderOf(image).PelRows;
}

float TQ_CALL tqGetPelsPerMeterX(const TqImage* image) {
    return HeaderOf(image).PelsPerMeterX;
}

float TQ_CALL tqGetPelsPerMeterY(const TqImage* image) {
    return HeaderOf(image).PelsPerMeterY;
}

float TQ_CALL tqGetCenterCol(const TqImage* image) {
    return HeaderOf(image).CenterCol;
}

float TQ_CALL tqGetCenterRow(const TqImage* image) {
    return HeaderOf(image).CenterRow;
}

double TQ_CALL tqGetTotalPelValue(const TqImage* image) {
    return HeaderOf(image).TotalPelValue;
}

float TQ_CALL tqGetLuxPerGrey(const TqImage* image) {
    return HeaderOf(image).LuxPerGrey;
}

float TQ_CALL tqGetCenterPelValue(const TqImage* image) {
    return HeaderOf(image).CenterPelValue;
}

float TQ_CALL tqGetMaxPelValue(const TqImage* image) {
    return HeaderOf(image).MaxPelValue;
}

float TQ_CALL tqGetSourceDistance(const TqImage* image) {
    return HeaderOf(image).SourceDistance;
}
