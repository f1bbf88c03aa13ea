#include "tqimage/korvelin.h"

#include <algorithm>
#include <cstdint>

#include "core/image_block.h"
#include "core/replaced_image.h"
#include "platform/global_memory.h"

using namespace tq;

namespace {

constexpr std::int32_t kNoData = -2;
constexpr std::int32_t kEmpty = -3;
constexpr std::int32_t kNotMade = -4;

void FillHeader(const TqKorvelinRecord& record, std::int32_t sourceDistance, TqImageHeader& header) noexcept {
    header.PelsPerMeterX = record.PelsPerMeterX;
    header.PelsPerMeterY = record.PelsPerMeterY;
    header.CenterCol = static_cast<float>(record.CenterCol);
    header.CenterRow = static_cast<float>(record.CenterRow);
    header.TotalPelValue = record.TotalPelValue;
    header.LuxPerGrey = record.LuxPerGrey;
    header.CenterPelValue = record.CenterPelValue;
    header.MaxPelValue = record.MaxPelValue;
    header.SourceDistance = static_cast<float>(sourceDistance);
}

}  // namespace

std::int32_t TQ_CALL TqConvertKorvelinToImage(TqImage** image, const TqKorvelinRecord* record,
                                              std::int32_t sourceDistance) {
    if (image == nullptr || record == nullptr) return kNoData;
    const GlobalLockGuard data(record->Data);
    if (data.Bytes() == nullptr) return kNoData;
    if (record->Cols == 0 || record->Rows == 0) return kEmpty;
    if (record->Cols < 0 || record->Rows < 0) return kNotMade;
    // Asked for before the image: an absurd size with little data behind it is not worth an allocation.
    const std::int64_t count = std::int64_t{record->Cols} * record->Rows;
    if (static_cast<std::uint64_t>(count) > GlobalSize(record->Data)) return kNoData;
    return ReplaceImage(image, kNotMade, [&] {
        OwnedImage result(record->Cols, record->Rows, NewPels::kUnwritten);
        FillHeader(*record, sourceDistance, result.Header());
        std::copy_n(data.Bytes(), count, result.View().pels);
        return result;
    });
}
