#include <algorithm>
#include <cstdint>

#include "core/image_view.h"
#include "platform/automation.h"
#include "platform/int32_table.h"
#include "platform/record_list.h"
#include "process/defect_repair.h"
#include "tqimage/defects.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -1;
constexpr std::int32_t kPelFailed = -11;
constexpr std::int32_t kColFailed = -21;
constexpr std::int32_t kColSegmentFailed = -31;
constexpr std::int32_t kRowFailed = -41;
constexpr std::int32_t kRowSegmentFailed = -51;

constexpr std::uint32_t kFields = 5;

enum DefectType : std::int32_t {
    kSinglePel = 0,
    kWholeCol = 1,
    kColSegment = 2,
    kWholeRow = 3,
    kRowSegment = 4,
    kBlock = 5
};

struct Defect {
    std::int32_t type;
    std::int32_t x;
    std::int32_t y;
    std::int32_t start;
    std::int32_t end;
};

/// Sensor co-ordinates along one axis of the image.
class SensorAxis {
  public:
    SensorAxis(std::int32_t origin, std::int16_t bin) noexcept : origin_(origin), bin_(bin == 0 ? 1 : bin) {}

    /// Truncated toward zero like every division of this library, so a defect less than one pel before the
    /// image counts as the image's first column or row.
    std::int64_t ToPel(std::int32_t sensor) const noexcept {
        return (static_cast<std::int64_t>(sensor) - origin_) / bin_;
    }

  private:
    std::int64_t origin_;
    std::int64_t bin_;
};

/// Stands for a place in 64 bits where the repairs take 32: what lies outside the image stays outside.
std::int32_t ToIndex(std::int64_t pel) noexcept {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(pel, -1, kMaxSide));
}

/// The repairs of one call: the image, where the sensor lies under it, and the neighbourhood.
class DefectRepairer {
  public:
    DefectRepairer(const ImageView& image, std::int32_t originCol, std::int32_t originRow, std::int32_t width,
                   std::int32_t height) noexcept
        : image_(image),
          cols_(originCol, image.header->BinCols),
          rows_(originRow, image.header->BinRows),
          width_(width),
          height_(height) {}

    /// 0, also for a defect outside the image, or the status of the repair that failed.
    std::int32_t Repair(const Defect& defect) const noexcept {
        const std::int32_t col = ToIndex(cols_.ToPel(defect.x));
        const std::int32_t row = ToIndex(rows_.ToPel(defect.y));
        const bool colInside = image_.Contains(col, 0);
        const bool rowInside = image_.Contains(0, row);
        switch (defect.type) {
            case kSinglePel:
                return !(colInside && rowInside) || RepairPel(image_, col, row, width_, height_) ? 0
                                                                                                 : kPelFailed;
            case kWholeCol:
                return !colInside || RepairCol(image_, col, 0, image_.rows - 1, width_) ? 0 : kColFailed;
            case kColSegment:
                return !colInside || RepairColSegment(col, defect) ? 0 : kColSegmentFailed;
            case kWholeRow:
                return !rowInside || RepairRow(image_, row, 0, image_.cols - 1, height_) ? 0 : kRowFailed;
            case kRowSegment:
                return !rowInside || RepairRowSegment(row, defect) ? 0 : kRowSegmentFailed;
            case kBlock:
                if (colInside && rowInside) RepairBlock(image_, col, row, defect.start, defect.end);
                return 0;
            default:
                // Lists of newer cameras may hold more types.
                return 0;
        }
    }

  private:
    bool RepairColSegment(std::int32_t col, const Defect& defect) const noexcept {
        const std::int32_t first = std::max(ToIndex(rows_.ToPel(defect.start)), 0);
        const std::int32_t last = std::min(ToIndex(rows_.ToPel(defect.end)), image_.rows - 1);
        return first > last || RepairCol(image_, col, first, last, width_);
    }

    bool RepairRowSegment(std::int32_t row, const Defect& defect) const noexcept {
        const std::int32_t first = std::max(ToIndex(cols_.ToPel(defect.start)), 0);
        const std::int32_t last = std::min(ToIndex(cols_.ToPel(defect.end)), image_.cols - 1);
        return first > last || RepairRow(image_, row, first, last, height_);
    }

    ImageView image_;
    SensorAxis cols_;
    SensorAxis rows_;
    std::int32_t width_;
    std::int32_t height_;
};

bool ReadDefect(const Int32Table& table, std::int64_t record, Defect& defect) noexcept {
    std::int64_t field = 0;
    for (std::int32_t* value : {&defect.type, &defect.x, &defect.y, &defect.start, &defect.end}) {
        if (!table.Read(record, field++, value)) return false;
    }
    return true;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqRemoveBadPixels(TqImage* image, std::int32_t originColumn, std::int32_t originRow,
                                       std::int32_t width, std::int32_t height, SAFEARRAY** list) {
    SAFEARRAY* const array = list == nullptr ? nullptr : *list;
    if (const std::int32_t status = CheckRecords(array, kFields); status != 0) return status;
    SafeArrayLockGuard lock(array);
    if (!lock.Locked()) return kRecordsNotLocked;
    const ImageView view = LocateImage(image);
    if (!view) return kInvalidImage;

    const DefectRepairer repairer(view, originColumn, originRow, width, height);
    const Int32Table table(*array);
    for (std::int64_t record = 0; record < table.LeftCount(); ++record) {
        Defect defect{};
        if (!ReadDefect(table, record, defect)) return kRecordUnreadable;
        if (const std::int32_t status = repairer.Repair(defect); status != 0) {
            // Hosts take a failed repair for a broken list and unlock it themselves.
            lock.KeepLocked();
            return status;
        }
    }
    return lock.Unlock() ? 0 : kRecordsNotUnlocked;
}
