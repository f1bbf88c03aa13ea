#include "colour/row_sampler.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "kernels/window_sums.h"
#include "measure/block_sweep.h"

namespace tq {
namespace {

class PelSampler final : public RowSampler {
  public:
    explicit PelSampler(const ConstImageView& view)
        : view_(view), values_(static_cast<std::size_t>(view.cols)) {}

    const double* Row(std::int32_t row) override {
        std::copy_n(view_.Row(row), values_.size(), values_.data());
        return values_.data();
    }

  private:
    ConstImageView view_;
    std::vector<double> values_;
};

/// Sums divided by counts, of whatever slides over the image.
template <class Sweep>
class MeanSampler final : public RowSampler {
  public:
    MeanSampler(const ConstImageView& view, Sweep sweep)
        : sweep_(std::move(sweep)), values_(static_cast<std::size_t>(view.cols)) {}

    const double* Row(std::int32_t row) override {
        sweep_.MoveTo(row);
        kernels::Quotients(sweep_.Sums().data(), sweep_.Counts().data(), values_.size(), values_.data());
        return values_.data();
    }

  private:
    Sweep sweep_;
    std::vector<double> values_;
};

class AllBlocks {
  public:
    explicit AllBlocks(std::unique_ptr<BlockSweep> sweep) : sweep_(std::move(sweep)) {}
    void MoveTo(std::int32_t row) { sweep_->MoveTo(row); }
    std::span<const double> Sums() const noexcept { return sweep_->Sums(); }
    std::span<const double> Counts() const noexcept { return sweep_->Counts(); }

  private:
    std::unique_ptr<BlockSweep> sweep_;
};

/// Windows that are never cut have the same number of pels everywhere.
class AllWindows {
  public:
    AllWindows(const ConstImageView& view, const WindowSize& size)
        : sums_(view, WindowPlacement::kShifted, size, Summand::kPels),
          counts_(static_cast<std::size_t>(view.cols), static_cast<double>(size.Area())) {}
    void MoveTo(std::int32_t row) { sums_.MoveTo(row); }
    std::span<const double> Sums() const noexcept { return sums_.Sums(); }
    std::span<const double> Counts() const noexcept { return counts_; }

  private:
    WindowSums sums_;
    std::vector<double> counts_;
};

template <class Sweep>
RowSamplerPtr Means(const ConstImageView& view, Sweep sweep) {
    return std::make_unique<MeanSampler<Sweep>>(view, std::move(sweep));
}

}  // namespace

RowSamplerPtr SampleBlocks(const ConstImageView& view, std::int32_t blockCols, std::int32_t blockRows,
                           Counted counted) {
    if (IsSinglePel(blockCols, blockRows)) return std::make_unique<PelSampler>(view);
    // One size of 0 or 1 beside a larger one counts as 1.
    const std::int32_t width = std::max(blockCols, 1);
    const std::int32_t height = std::max(blockRows, 1);
    constexpr auto kShape = BlockShape::kRectangle;
    if (counted == Counted::kLit)
        return Means(view, LitBlockSweep(view, kShape, width, height, 0, view.cols - 1));
    return Means(view, AllBlocks(MakeBlockSweep(view, kShape, width, height, 0, view.cols - 1)));
}

RowSamplerPtr SampleWindows(const ConstImageView& view, const WindowSize& size, Counted counted) {
    if (counted == Counted::kLit) return Means(view, LitWindowSums(view, WindowPlacement::kShifted, size));
    return Means(view, AllWindows(view, size));
}

}  // namespace tq
