#include "measure/block_sweep.h"

#include <algorithm>
#include <limits>

#include "kernels/window_sums.h"
#include "measure/column_sums.h"
#include "measure/region_shapes.h"

namespace tq {

Reach PlaceBlock(std::int32_t center, std::int32_t size, std::int32_t pels) noexcept {
    const std::int32_t first = std::max(center - (size >> 1), 0);
    const std::int64_t last = std::min<std::int64_t>(std::int64_t{first} + size - 1, pels - 1);
    return {first, static_cast<std::int32_t>(last)};
}

namespace {

std::size_t Size(std::int32_t count) {
    return static_cast<std::size_t>(count);
}

/// Sums the columns of the band of rows that the blocks cover, then sums along the row: a block is then one
/// difference.
class RectangleSweep final : public BlockSweep {
  public:
    RectangleSweep(const ConstImageView& view, Summand summand, std::int32_t width, std::int32_t height,
                   std::int32_t firstCenter, std::int32_t lastCenter)
        : BlockSweep(Size(lastCenter - firstCenter + 1)),
          view_(view),
          width_(width),
          height_(height),
          firstCenter_(firstCenter),
          firstCol_(PlaceBlock(firstCenter, width, view.cols).first),
          columns_(Size(PlaceBlock(lastCenter, width, view.cols).last - firstCol_ + 1)),
          prefix_(columns_.size() + 1),
          band_(SummandRows(view, summand, firstCol_, columns_.size())) {}

    void MoveTo(std::int32_t row) override {
        const Reach band = PlaceBlock(row, height_, view_.rows);
        band_.MoveTo(band, columns_.data());
        if (band.last - band.first + 1 != countedRows_) CountPels(band.last - band.first + 1);
        kernels::PrefixSums(columns_.data(), columns_.size(), prefix_.data());

        // Centres up to half the width share the block that starts at the first column.
        const std::int32_t half = width_ >> 1;
        const auto centers = static_cast<std::int32_t>(sums_.size());
        const std::int32_t slid = std::clamp(half - firstCenter_, 0, centers);
        std::fill_n(sums_.begin(), slid, BlockSum(firstCenter_));
        // Behind them every block has its full width, until it reaches the last column.
        const std::int64_t lastFull = std::int64_t{view_.cols} - width_ + half;
        const auto full =
            static_cast<std::int32_t>(std::clamp<std::int64_t>(lastFull - firstCenter_ + 1, slid, centers));
        if (full > slid) {
            const double* low = prefix_.data() + (firstCenter_ + slid - half - firstCol_);
            kernels::Differences(low + width_, low, Size(full - slid), sums_.data() + slid);
        }
        for (std::int32_t i = full; i < centers; ++i)
            sums_[Size(i)] = BlockSum(firstCenter_ + i);
    }

  private:
    double BlockSum(std::int32_t center) const noexcept {
        const Reach reach = PlaceBlock(center, width_, view_.cols);
        return prefix_[Size(reach.last + 1 - firstCol_)] - prefix_[Size(reach.first - firstCol_)];
    }

    void CountPels(std::int32_t rows) {
        countedRows_ = rows;
        ++countsVersion_;
        for (std::size_t i = 0; i < counts_.size(); ++i) {
            const Reach reach = PlaceBlock(firstCenter_ + static_cast<std::int32_t>(i), width_, view_.cols);
            counts_[i] = static_cast<double>(reach.last - reach.first + 1) * countedRows_;
        }
    }

    ConstImageView view_;
    std::int32_t width_;
    std::int32_t height_;
    std::int32_t firstCenter_;
    std::int32_t firstCol_;
    std::int32_t countedRows_ = 0;
    std::vector<std::uint32_t> columns_;
    std::vector<double> prefix_;
    ColumnSums band_;
};

/// Holds the prefix sums of the rows that the ellipse covers; each of its rows is then one difference. Rows
/// are padded on both sides with what an image continued by zeros would give, so that no position is special.
class EllipseSweep final : public BlockSweep {
  public:
    EllipseSweep(const ConstImageView& view, Summand summand, std::int32_t width, std::int32_t height,
                 std::int32_t firstCenter, std::int32_t lastCenter)
        : BlockSweep(Size(lastCenter - firstCenter + 1)),
          view_(view),
          source_(view, summand, 0, Size(view.cols)),
          firstCenter_(firstCenter) {
        halfRows_ = std::min(height / 2, view.rows - 1);
        pad_ = std::min(width / 2, view.cols - 1);
        reach_.reserve(Size(2 * halfRows_ + 1));
        for (std::int32_t y = -halfRows_; y <= halfRows_; ++y) {
            const double rowTerm = static_cast<double>(y) * y / HalfSquared(height);
            reach_.push_back(static_cast<std::int32_t>(
                std::min<std::int64_t>(EllipseReach(HalfSquared(width), rowTerm), pad_)));
        }
        rowLength_ = Size(view.cols) + 1 + 2 * Size(pad_);
        const auto affordable = static_cast<std::int32_t>(kLargestRing / rowLength_);
        slots_ = std::min({2 * halfRows_ + 1, view.rows, affordable});
        prefixes_.resize(rowLength_ * Size(slots_));
        held_.assign(Size(slots_), -1);
        const std::int64_t largestRow = std::int64_t{2 * pad_ + 1} * kLargestPel;
        rowsPerFlush_ = static_cast<std::size_t>(
            std::max<std::int64_t>(std::numeric_limits<std::int32_t>::max() / largestRow, 1));
    }

    void MoveTo(std::int32_t row) override {
        const std::int32_t top = std::max(row - halfRows_, 0);
        const std::int32_t bottom = std::min(row + halfRows_, view_.rows - 1);
        std::fill(sums_.begin(), sums_.end(), 0.0);
        for (std::int32_t first = top; first <= bottom; first += slots_) {
            AddRows(row, first, std::min(first + slots_ - 1, bottom));
        }
        const Reach covered{top - row, bottom - row};
        if (covered.first != counted_.first || covered.last != counted_.last) CountPels(covered);
    }

  private:
    /// Entries of the ring: 64 MB. An ellipse with more rows than fit is summed in several rounds.
    static constexpr std::size_t kLargestRing = std::size_t{1} << 24;

    void AddRows(std::int32_t center, std::int32_t first, std::int32_t last) {
        blockRows_.clear();
        for (std::int32_t row = first; row <= last; ++row) {
            const std::int32_t reach = reach_[Size(row - center + halfRows_)];
            if (reach < 0) continue;
            const std::uint32_t* at = Prefix(row) + pad_ + firstCenter_;
            blockRows_.push_back({at + reach + 1, at - reach});
        }
        kernels::AddBlockRows(blockRows_.data(), blockRows_.size(), rowsPerFlush_, sums_.size(),
                              sums_.data());
    }

    const std::uint32_t* Prefix(std::int32_t row) {
        const std::size_t slot = Size(row % slots_);
        std::uint32_t* start = prefixes_.data() + slot * rowLength_;
        if (held_[slot] != row) {
            held_[slot] = row;
            const std::size_t cols = Size(view_.cols);
            std::uint32_t* body = start + pad_;
            kernels::PrefixSums(source_.Entering(row), cols, body);
            std::fill(start, body, 0U);
            std::fill_n(body + cols + 1, pad_, body[cols]);
        }
        return start;
    }

    void CountPels(Reach covered) {
        counted_ = covered;
        ++countsVersion_;
        std::fill(counts_.begin(), counts_.end(), 0.0);
        for (std::int32_t y = covered.first; y <= covered.last; ++y) {
            const std::int32_t reach = reach_[Size(y + halfRows_)];
            if (reach < 0) continue;
            for (std::size_t i = 0; i < counts_.size(); ++i) {
                const std::int32_t center = firstCenter_ + static_cast<std::int32_t>(i);
                counts_[i] += std::min(center + reach, view_.cols - 1) - std::max(center - reach, 0) + 1;
            }
        }
    }

    ConstImageView view_;
    SummandRows source_;
    std::int32_t firstCenter_;
    std::int32_t halfRows_;
    std::int32_t pad_;
    std::int32_t slots_;
    std::size_t rowLength_;
    std::size_t rowsPerFlush_;
    std::vector<std::int32_t> reach_;      ///< columns to each side, for the rows -halfRows_..halfRows_
    std::vector<std::uint32_t> prefixes_;  ///< a ring of rows
    std::vector<std::int32_t> held_;       ///< the image row in each slot of the ring
    std::vector<kernels::BlockRow> blockRows_;
    Reach counted_{1, 0};
};

std::unique_ptr<BlockSweep> MakeSweepOver(Summand summand, const ConstImageView& view, BlockShape shape,
                                          std::int32_t width, std::int32_t height, std::int32_t firstCenter,
                                          std::int32_t lastCenter) {
    if (shape == BlockShape::kEllipse) {
        return std::make_unique<EllipseSweep>(view, summand, width, height, firstCenter, lastCenter);
    }
    return std::make_unique<RectangleSweep>(view, summand, width, height, firstCenter, lastCenter);
}

}  // namespace

std::unique_ptr<BlockSweep> MakeBlockSweep(const ConstImageView& view, BlockShape shape, std::int32_t width,
                                           std::int32_t height, std::int32_t firstCenter,
                                           std::int32_t lastCenter) {
    return MakeSweepOver(Summand::kPels, view, shape, width, height, firstCenter, lastCenter);
}

LitBlockSweep::LitBlockSweep(const ConstImageView& view, BlockShape shape, std::int32_t width,
                             std::int32_t height, std::int32_t firstCenter, std::int32_t lastCenter)
    : pels_(MakeSweepOver(Summand::kPels, view, shape, width, height, firstCenter, lastCenter)),
      lit_(MakeSweepOver(Summand::kLit, view, shape, width, height, firstCenter, lastCenter)) {}

}  // namespace tq
