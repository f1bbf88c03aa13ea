#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "core/image_block.h"
#include "core/image_view.h"
#include "core/numerics.h"
#include "core/replaced_image.h"
#include "core/sensor_offset.h"
#include "geometry/distortion_map.h"
#include "kernels/map_row.h"
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

/// The entries of a row of the image, which a binned image takes from every second, third ... of the map's.
class EntriesOfRow {
  public:
    explicit EntriesOfRow(const AxisPlace& cols) : cols_(cols) {
        if (cols.step != 1) picked_.resize(static_cast<std::size_t>(cols.covered));
    }

    const MapEntry* In(const MapEntry* mapRow) noexcept {
        if (cols_.step == 1) return mapRow + cols_.offset;
        const auto step = static_cast<std::size_t>(cols_.step);
        for (std::size_t i = 0; i < picked_.size(); ++i)
            picked_[i] = mapRow[static_cast<std::size_t>(cols_.offset) + i * step];
        return picked_.data();
    }

  private:
    AxisPlace cols_;
    std::vector<MapEntry> picked_;
};

OwnedImage CorrectImage(const ConstImageView& image, const ConstMapView& map, const AxisPlace& cols,
                        const AxisPlace& rows) {
    OwnedImage result(image, NewPels::kUnwritten);
    const ImageView out = result.View();
    const kernels::SourcePels source{image.pels, image.cols, image.rows};
    const kernels::SensorWindow window{static_cast<float>(cols.offset), static_cast<float>(rows.offset),
                                       static_cast<float>(cols.step), static_cast<float>(rows.step)};
    EntriesOfRow entries(cols);
    for (std::int32_t row = 0; row < rows.covered; ++row) {
        Pel* pels = out.Row(row);
        if (cols.covered > 0) {
            const std::int64_t mapRow = rows.offset + static_cast<std::int64_t>(row) * rows.step;
            const MapEntry* first = entries.In(map.Row(mapRow));
            kernels::SampleClamped(source, &first->col, static_cast<std::size_t>(cols.covered), window, pels);
        }
        std::fill(pels + cols.covered, pels + out.cols, Pel{0});
    }
    std::fill(out.Row(rows.covered), out.Row(image.rows), Pel{0});
    return result;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqCorrectLensDistortion(TqImage** image, const TqDistortionMap* map) {
    const ConstImageView source = LocateHeld(image);
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
    return ReplaceImage(image, kNoMemory, [&] { return CorrectImage(source, entries, cols, rows); });
}
