#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/numerics.h"
#include "geometry/replaced_image.h"
#include "kernels/window_sums.h"
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

/// The column sums of the rows of one bin. 8000 pels of a column stay below 2^32.
class ColumnSums {
  public:
    explicit ColumnSums(std::int32_t cols) : sums_(static_cast<std::size_t>(cols)) {}

    void Clear() noexcept { std::fill(sums_.begin(), sums_.end(), 0u); }
    void Add(const Pel* row) noexcept { kernels::AddRow(sums_.data(), row, sums_.size()); }
    std::uint64_t OfBin(std::int32_t bin, std::int32_t cols) const noexcept {
        const auto width = static_cast<std::size_t>(cols);
        const std::uint32_t* first = sums_.data() + static_cast<std::size_t>(bin) * width;
        std::uint64_t sum = 0;
        for (std::size_t i = 0; i < width; ++i)
            sum += first[i];
        return sum;
    }

  private:
    std::vector<std::uint32_t> sums_;
};

/// The mean of a bin from its sum, kept in a signed 32-bit accumulator that wraps: bins of more than 32768
/// bright pels have always come out so.
Pel WrappingMean(std::uint64_t sum, std::int32_t pels) noexcept {
    return WrapToPel(std::bit_cast<std::int32_t>(static_cast<std::uint32_t>(sum)) / pels);
}

void AverageBins(const ConstImageView& source, const BinSize& bin, const ImageView& out) {
    ColumnSums sums(out.cols * bin.cols);
    for (std::int32_t row = 0; row < out.rows; ++row) {
        sums.Clear();
        for (std::int32_t i = 0; i < bin.rows; ++i)
            sums.Add(source.Row(row * bin.rows + i));
        for (std::int32_t col = 0; col < out.cols; ++col)
            out.At(col, row) = WrappingMean(sums.OfBin(col, bin.cols), bin.Pels());
    }
}

/// The mean of the pels that are not 0, in single precision.
Pel LitMean(std::uint64_t sum, std::uint64_t count) noexcept {
    if (count == 0) return 0;
    return WrapToPel(TruncToInt32(static_cast<float>(sum) / static_cast<float>(count)));
}

/// Returns the sum of the pels written.
std::uint64_t AverageLitBins(const ConstImageView& source, const BinSize& bin, const ImageView& out) {
    const std::int32_t cols = out.cols * bin.cols;
    ColumnSums sums(cols);
    ColumnSums counts(cols);
    std::vector<Pel> lit(static_cast<std::size_t>(cols));
    std::uint64_t total = 0;
    for (std::int32_t row = 0; row < out.rows; ++row) {
        sums.Clear();
        counts.Clear();
        for (std::int32_t i = 0; i < bin.rows; ++i) {
            const Pel* pels = source.Row(row * bin.rows + i);
            sums.Add(pels);
            kernels::MarkNonZero(pels, lit.size(), lit.data());
            counts.Add(lit.data());
        }
        for (std::int32_t col = 0; col < out.cols; ++col) {
            const Pel mean = LitMean(sums.OfBin(col, bin.cols), counts.OfBin(col, bin.cols));
            out.At(col, row) = mean;
            total += mean;
        }
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
