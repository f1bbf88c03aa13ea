#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <tuple>
#include <vector>

#include "colour/channels.h"
#include "core/guard.h"
#include "measure/block_average.h"
#include "platform/new_array.h"
#include "platform/record_list.h"
#include "tqimage/colour_averages.h"

namespace tq {
namespace {

/// Locking the new array is part of making it.
constexpr NewArrayCodes kNewArrayCodes{-7, -8, -8, -8};

/// A region as the host's list has it.
struct DefinedRegion {
    std::int32_t shape;
    std::int32_t col;
    std::int32_t row;
    std::int32_t width;
    std::int32_t height;

    double Mean(const ConstImageView& view) const {
        return BlockShapeOf(shape) == BlockShape::kRectangle ? BlockAverage(view, col, row, width, height)
                                                             : EllipseAverage(view, col, row, width, height);
    }
};
constexpr std::uint32_t kFields = 5;

/// All records, read before any pel; false when one cannot be read.
bool ReadRegions(const Int32Table& table, std::vector<DefinedRegion>& regions) {
    regions.resize(table.LeftCount());
    for (std::size_t i = 0; i < regions.size(); ++i) {
        DefinedRegion& region = regions[i];
        std::int64_t field = 0;
        for (std::int32_t* value : {&region.shape, &region.col, &region.row, &region.width, &region.height})
            if (!table.Read(static_cast<std::int64_t>(i), field++, value)) return false;
    }
    return true;
}

/// Figures of one region: X, Y, Z, x, y, u', v'.
std::array<double, 7> ColourOf(const Channels& channels, const DefinedRegion& region, bool useLux,
                               const ColourMatrix& m) {
    const auto value = [&](const ConstImageView& view) {
        const double mean = region.Mean(view);
        return useLux ? mean * view.header->LuxPerGrey : mean;
    };
    const Xyz at = Transform(m, value(channels.first), value(channels.second), value(channels.third));
    const Chromaticity xy = ToXy(at);
    const Chromaticity uv = ToUv(at);
    return {at.x, at.y, at.z, xy.first, xy.second, uv.first, uv.second};
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqGetColorArraysDefined(SAFEARRAY** results, SAFEARRAY** regions, const TqImage* first,
                                             const TqImage* second, const TqImage* third, std::int32_t useLux,
                                             float m0, float m1, float m2, float m3, float m4, float m5,
                                             float m6, float m7, float m8) {
    SAFEARRAY* const list = regions == nullptr ? nullptr : *regions;
    if (const auto status = CheckRecords(list, kFields)) return status;
    SafeArrayLockGuard lock(list);
    if (!lock.Locked()) return kRecordsNotLocked;
    Channels channels;
    if (const auto status = LocateChannels(first, second, third, kChannelCodes, &channels)) return status;
    if (results == nullptr) return kChannelCodes.null;
    return Guarded(kNewArrayCodes.notCreated, [&] {
        std::vector<DefinedRegion> defined;
        if (!ReadRegions(Int32Table(*list), defined)) return kRecordUnreadable;
        if (!lock.Unlock()) return kRecordsNotUnlocked;
        const ColourMatrix m{m0, m1, m2, m3, m4, m5, m6, m7, m8};
        const std::size_t count = defined.size();
        constexpr std::size_t kFigures = std::tuple_size_v<decltype(ColourOf(channels, {}, false, m))>;
        std::vector<double> figures(count * kFigures);
        for (std::size_t i = 0; i < count; ++i) {
            const auto colour = ColourOf(channels, defined[i], useLux != 0, m);
            for (std::size_t k = 0; k < kFigures; ++k)
                figures[i + k * count] = colour[k];
        }
        return ReplaceArray<double>(results, VT_R8, {count, kFigures}, figures, kNewArrayCodes);
    });
}
