#pragma once

#include <cstdint>
#include <vector>

#include "core/image_view.h"

/// Where the pels of one image lie in another that shows the same scene from another position or at another
/// scale.
namespace tq {

/// One axis of an image in metres on the target.
struct SceneAxis {
    std::int32_t pels;
    double pelsPerMeter;
    double center;

    double First() const noexcept { return -center / pelsPerMeter; }
    double Last() const noexcept { return (pels - 1 - center) / pelsPerMeter; }
};

SceneAxis ColumnsOf(const ConstImageView& view) noexcept;
SceneAxis RowsOf(const ConstImageView& view) noexcept;

/// For the pels first .. first + count - 1 of one axis the pels of another one, shifted by `offset` metres.
/// Those that have one are a stretch, begin .. end - 1, counted from `first`.
struct AxisMap {
    AxisMap(const SceneAxis& from, std::int32_t first, std::int32_t count, const SceneAxis& to,
            double offset);

    std::vector<std::int32_t> source;
    std::int32_t begin = 0;
    std::int32_t end = 0;
    bool isRun = true;  ///< the stretch has neighbours for neighbours
};

/// A part of a row, and the other image's pels at the same places or null where it has none.
struct RowPiece {
    std::int32_t first;
    std::int32_t count;
    const Pel* other;
};

/// The other image as seen from a rectangle of the first.
class SceneOverlap {
  public:
    SceneOverlap(const ConstImageView& other, AxisMap cols, AxisMap rows);

    /// Calls visit(piece) for the pieces of a row, left to right.
    template <class Visit>
    void VisitRow(std::int32_t row, Visit&& visit) {
        const auto cols = static_cast<std::int32_t>(cols_.source.size());
        const Pel* other = RowOfOther(row);
        const std::int32_t begin = other == nullptr ? cols : cols_.begin;
        const std::int32_t end = other == nullptr ? cols : cols_.end;
        if (begin > 0) visit(RowPiece{0, begin, nullptr});
        if (end > begin) visit(RowPiece{begin, end - begin, other});
        if (cols > end) visit(RowPiece{end, cols - end, nullptr});
    }

  private:
    /// The pels for the columns begin .. end - 1, null where the other image has no row. Valid until the next
    /// call.
    const Pel* RowOfOther(std::int32_t row);

    ConstImageView other_;
    AxisMap cols_;
    AxisMap rows_;
    std::vector<Pel> gathered_;
};

}  // namespace tq
