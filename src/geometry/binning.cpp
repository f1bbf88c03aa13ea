#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <vector>

#include "core/numerics.h"
#include "core/replaced_image.h"
#include "geometry/sized_image.h"
#include "kernels/binning.h"
#include "kernels/span_statistics.h"
#include "tqimage/resampling.h"

using namespace tq;

namespace {

constexpr std::int32_t kInvalidImage = -1;
constexpr std::int32_t kNoMemory = -2;

struct BinSize {
    std::int32_t cols;
    std::int32_t rows;

    std::int32_t Pels() const noexcept { return cols * rows; }
};

/// Binning factors have 16 bits in the header, and a product that does not fit wraps.
std::int16_t BinnedAgain(std::int16_t factor, std::int32_t by) noexcept {
    return static_cast<std::int16_t>(factor * by);
}

/// An image of the bins that fit, its header without the total; pels beyond the last whole bin are dropped.
OwnedImage MakeBinned(const ConstImageView& source, const BinSize& bin) {
    OwnedImage result =
        MakeSized(source, source.cols / bin.cols, source.rows / bin.rows, NewPels::kUnwritten);
    TqImageHeader& header = result.Header();
    header.CenterCol /= static_cast<float>(bin.cols);
    header.CenterRow /= static_cast<float>(bin.rows);
    header.PelsPerMeterX /= static_cast<float>(bin.cols);
    header.PelsPerMeterY /= static_cast<float>(bin.rows);
    header.BinCols = BinnedAgain(header.BinCols, bin.cols);
    header.BinRows = BinnedAgain(header.BinRows, bin.rows);
    return result;
}

/// The bins of one row of the result. The rows of a bin are added up first, pairs of columns where its width
/// is even; what then is left of a bin lies side by side.
class RowOfBins {
  public:
    RowOfBins(const ConstImageView& source, const BinSize& bin, std::int32_t bins)
        : source_(source),
          bin_(bin),
          pairs_(bin.cols % 2 == 0),
          perBin_(static_cast<std::size_t>(pairs_ ? bin.cols / 2 : bin.cols)),
          bins_(static_cast<std::size_t>(bins)),
          sums_(bins_ * perBin_) {}

    /// The mean of a bin comes from a sum in a signed 32-bit accumulator that wraps: bins of more than 32768
    /// bright pels have always come out so.
    void Average(std::int32_t row, Pel* out) noexcept {
        if (bin_.cols == 2 && bin_.rows == 2) {
            kernels::MeansOfFour(source_.Row(2 * row), source_.Row(2 * row + 1), bins_, out);
            return;
        }
        (pairs_ ? kernels::SumPairsOfColumns : kernels::SumColumns)(Rows(row), sums_.size(), sums_.data());
        AddUpBins(sums_);
        kernels::TruncatedMeans(sums_.data(), bins_, bin_.Pels(), out);
    }

    /// The mean of the pels that are not 0, in single precision.
    void AverageLit(std::int32_t row, Pel* out) {
        counts_.resize(sums_.size());
        (pairs_ ? kernels::SumLitPairsOfColumns : kernels::SumLitColumns)(Rows(row), sums_.size(),
                                                                          sums_.data(), counts_.data());
        if (bin_.Pels() > kernels::kPelsBelow31Bits) {
            for (std::size_t i = 0; i < bins_; ++i)
                out[i] = LitMean(OfBin(sums_, i), OfBin(counts_, i));
            return;
        }
        AddUpBins(sums_);
        AddUpBins(counts_);
        kernels::LitMeans(sums_.data(), counts_.data(), bins_, out);
    }

  private:
    using Numbers = std::vector<std::uint32_t>;

    static Pel LitMean(std::uint64_t sum, std::uint64_t count) noexcept {
        if (count == 0) return 0;
        return WrapToPel(TruncToInt32(static_cast<float>(sum) / static_cast<float>(count)));
    }

    kernels::PelRows Rows(std::int32_t row) const noexcept {
        return {source_.Row(row * bin_.rows), source_.cols, static_cast<std::size_t>(bin_.rows)};
    }
    std::uint64_t OfBin(const Numbers& numbers, std::size_t bin) const noexcept {
        const std::uint32_t* first = numbers.data() + bin * perBin_;
        return std::accumulate(first, first + perBin_, std::uint64_t{0});
    }
    void AddUpBins(Numbers& numbers) const noexcept {
        if (perBin_ == 1) return;
        for (std::size_t i = 0; i < bins_; ++i)
            numbers[i] = static_cast<std::uint32_t>(OfBin(numbers, i));
    }

    ConstImageView source_;
    BinSize bin_;
    bool pairs_;
    std::size_t perBin_;
    std::size_t bins_;
    Numbers sums_;
    Numbers counts_;
};

void AverageBins(const ConstImageView& source, const BinSize& bin, const ImageView& out) {
    RowOfBins bins(source, bin, out.cols);
    for (std::int32_t row = 0; row < out.rows; ++row)
        bins.Average(row, out.Row(row));
}

/// Returns the sum of the pels written.
std::uint64_t AverageLitBins(const ConstImageView& source, const BinSize& bin, const ImageView& out) {
    RowOfBins bins(source, bin, out.cols);
    std::uint64_t total = 0;
    for (std::int32_t row = 0; row < out.rows; ++row) {
        bins.AverageLit(row, out.Row(row));
        total += kernels::SumPels(out.Row(row), static_cast<std::size_t>(out.cols));
    }
    return total;
}

BinSize FittingBin(const ConstImageView& source, std::int32_t binCols, std::int32_t binRows) noexcept {
    return {std::clamp(binCols, 1, source.cols), std::clamp(binRows, 1, source.rows)};
}

}  // namespace

std::int32_t TQ_CALL tqBinImage(TqImage** image, std::int32_t binCols, std::int32_t binRows) {
    return ReplaceImage(image, kInvalidImage, kNoMemory, [&](const ConstImageView& source) {
        const BinSize bin = FittingBin(source, binCols, binRows);
        OwnedImage result = MakeBinned(source, bin);
        result.Header().TotalPelValue /= bin.Pels();
        AverageBins(source, bin, result.View());
        return result;
    });
}

std::int32_t TQ_CALL tqBinImage0(TqImage** image, std::int32_t binCols, std::int32_t binRows) {
    return ReplaceImage(image, kInvalidImage, kNoMemory, [&](const ConstImageView& source) {
        const BinSize bin = FittingBin(source, binCols, binRows);
        OwnedImage result = MakeBinned(source, bin);
        result.Header().TotalPelValue = static_cast<double>(AverageLitBins(source, bin, result.View()));
        return result;
    });
}
