#include <algorithm>
#include <cstdint>
#include <optional>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/numerics.h"
#include "core/sensor_offset.h"
#include "geometry/bilinear.h"
#include "geometry/distortion_map.h"
#include "tqimage/distortion.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kMapTooSmall = -3;
constexpr std::int32_t kNoMemory = -4;
constexpr std::int32_t kBadColumnOffset = -7;
constexpr std::int32_t kBadRowOffset = -8;

/// One axis of the image in the map: the entry of the image's first pel, the entries from pel to pel, and how
/// many pels from the first one have an entry in the map at all.
struct AxisPlace {
    std::int32_t offset = 0;
    std::int32_t step = 1;
    std::int32_t covered = 0;
};

/// False when the axis cannot be placed.
bool PlaceAxis(float mapCenter, float imageCenter, std::int16_t bin, std::int32_t mapSize,
               std::int32_t imageSize, AxisPlace& place) noexcept {
    if (bin < 1) return false;
    const std::optional<std::int32_t> offset = SensorOffset(mapCenter, imageCenter, bin);
    if (!offset) return false;
    place.offset = *offset;
    place.step = bin;
    const std::int32_t behind = mapSize - 1 - place.offset;
    place.covered = behind < 0 ? 0 : std::min(imageSize, behind / bin + 1);
    return true;
}

/// A source position of the unbinned sensor in the image's own pels. Every step rounds to float, because the
/// maps were measured through exactly this arithmetic; dividing by 1 changes no bit, so an unbinned image
/// goes without the division.
template <bool kBinned>
float ToImagePels(float source, float offset, float step, float last) noexcept {
    float place = source - offset;
    if constexpr (kBinned) place /= step;
    return std::min(std::max(place, 0.0f), last);
}

/// 0 is kept for pels without a source, so a dark pel that has one becomes 1.
Pel SampleLit(const BilinearSampler& sampler, float col, float row) noexcept {
    const Pel pel = WrapToPel(TruncToInt32(sampler.PlaceInside(col, row)));
    return pel == 0 ? Pel{1} : pel;
}

/// One row of the result from its row of entries.
template <bool kBinned>
void CorrectRow(const ConstImageView& image, const MapEntry* entries, const AxisPlace& cols,
                const AxisPlace& rows, Pel* out) noexcept {
    const auto col0 = static_cast<float>(cols.offset);
    const auto row0 = static_cast<float>(rows.offset);
    const auto colStep = static_cast<float>(cols.step);
    const auto rowStep = static_cast<float>(rows.step);
    const auto lastCol = static_cast<float>(image.cols - 1);
    const auto lastRow = static_cast<float>(image.rows - 1);
    const BilinearSampler sampler(image);
    for (std::int32_t c = 0; c < cols.covered; ++c) {
        const MapEntry& entry = entries[cols.offset + c * cols.step];
        if (!entry.HasSource()) {
            out[c] = 0;
            continue;
        }
        out[c] = SampleLit(sampler, ToImagePels<kBinned>(entry.col, col0, colStep, lastCol),
                           ToImagePels<kBinned>(entry.row, row0, rowStep, lastRow));
    }
    std::fill(out + cols.covered, out + image.cols, Pel{0});
}

OwnedImage CorrectImage(const ConstImageView& image, const ConstMapView& map, const AxisPlace& cols,
                        const AxisPlace& rows) {
    OwnedImage result(image, NewPels::kUnwritten);
    const ImageView out = result.View();
    const auto correctRow = cols.step == 1 && rows.step == 1 ? CorrectRow<false> : CorrectRow<true>;
    for (std::int32_t row = 0; row < rows.covered; ++row) {
        const std::int64_t mapRow = rows.offset + static_cast<std::int64_t>(row) * rows.step;
        correctRow(image, map.Row(mapRow), cols, rows, out.Row(row));
    }
    std::fill(out.Row(rows.covered), out.Row(image.rows), Pel{0});
    return result;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqCorrectLensDistortion(TqImage** image, const TqDistortionMap* map) {
    const ConstImageView source = image == nullptr ? ConstImageView{} : LocateImage(*image);
    if (!source) return kInvalidImage;
    const ConstMapView entries = LocateMap(map);
    if (!entries || entries.cols < source.cols || entries.rows < source.rows) return kMapTooSmall;

    const TqImageHeader& header = *source.header;
    AxisPlace cols;
    AxisPlace rows;
    if (!PlaceAxis(map->CenterCol, header.CenterCol, header.BinCols, entries.cols, source.cols, cols)) {
        return kBadColumnOffset;
    }
    if (!PlaceAxis(map->CenterRow, header.CenterRow, header.BinRows, entries.rows, source.rows, rows)) {
        return kBadRowOffset;
    }
    return Guarded(kNoMemory, [&] {
        CommitImage(image, CorrectImage(source, entries, cols, rows));
        return 0;
    });
}
