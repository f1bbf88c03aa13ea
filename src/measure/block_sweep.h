#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "core/image_view.h"
#include "core/window.h"

namespace tq {

enum class BlockShape { kRectangle, kEllipse };

/// Any block kind other than 0 of the searches, and any non-zero ellipse flag, means the ellipse.
inline BlockShape BlockShapeOf(std::int32_t kind) noexcept {
    return kind == 0 ? BlockShape::kRectangle : BlockShape::kEllipse;
}

/// The placement of rectangular blocks: at the left and top edge a block slides inward and keeps its size, at
/// the right and bottom edge it is cut. Hosts compare block averages along edges, so the asymmetry stays.
Reach PlaceBlock(std::int32_t center, std::int32_t size, std::int32_t pels) noexcept;

/// Sums of the blocks around every centre of a row, row by row. What a position costs does not depend on the
/// area of the block: rectangles cost the same for every size, ellipses two reads for each of their rows.
/// Sums are integers held exactly in doubles, and so are the numbers of pels they were taken over.
class BlockSweep {
  public:
    virtual ~BlockSweep() = default;

    /// Moves to the centres of this row, cheapest downwards one row at a time.
    virtual void MoveTo(std::int32_t row) = 0;

    /// Entry i belongs to the centre column firstCenter + i.
    std::span<const double> Sums() const noexcept { return sums_; }
    std::span<const double> Counts() const noexcept { return counts_; }
    /// Grows whenever Counts() changed, which it does only near the top and bottom edge.
    int CountsVersion() const noexcept { return countsVersion_; }

  protected:
    explicit BlockSweep(std::size_t centers) : sums_(centers), counts_(centers) {}

    std::vector<double> sums_;
    std::vector<double> counts_;
    int countsVersion_ = 0;
};

/// A sweep over the centres firstCenter..lastCenter of each row. Width and height are at least 1; the view
/// must outlive the sweep.
std::unique_ptr<BlockSweep> MakeBlockSweep(const ConstImageView& view, BlockShape shape, std::int32_t width,
                                           std::int32_t height, std::int32_t firstCenter,
                                           std::int32_t lastCenter);

/// The same with 0 as "no data": the counts are those of the pels that are not 0, and change from block to
/// block. Both slide, so a position still costs the same for every size of rectangle.
class LitBlockSweep {
  public:
    LitBlockSweep(const ConstImageView& view, BlockShape shape, std::int32_t width, std::int32_t height,
                  std::int32_t firstCenter, std::int32_t lastCenter);

    void MoveTo(std::int32_t row) {
        pels_->MoveTo(row);
        lit_->MoveTo(row);
    }
    std::span<const double> Sums() const noexcept { return pels_->Sums(); }
    std::span<const double> Counts() const noexcept { return lit_->Sums(); }

  private:
    std::unique_ptr<BlockSweep> pels_;
    std::unique_ptr<BlockSweep> lit_;
};

}  // namespace tq
