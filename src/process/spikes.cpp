#include <algorithm>
#include <array>
#include <cstdint>

#include "core/image_view.h"
#include "core/window.h"
#include "kernels/span_statistics.h"
#include "tqimage/defects.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;

/// Fills the rectangle around each spike, spikes made by earlier fills included. Every pel is filled once,
/// however many rectangles cover it: what lies below a spike waits for its row, and what lies above it has
/// to be filled only where no earlier rectangle reached.
class SpikeEditor {
  public:
    SpikeEditor(const ImageView& image, std::int32_t threshold, Pel value, std::int32_t width,
                std::int32_t height)
        : image_(image), threshold_(threshold), value_(value), width_(width), height_(height) {
        std::fill_n(filledTo_.begin(), image.cols, -1);
    }

    void Edit() {
        for (std::int32_t row = 0; row < image_.rows; ++row) {
            if (row <= lowestFill_) FillWaiting(row);
            if (HasSpikes(row)) EditRow(row);
        }
    }

  private:
    bool HasSpikes(std::int32_t row) const {
        const auto cols = static_cast<std::size_t>(image_.cols);
        return threshold_ < 0 ||
               kernels::CountAtLeast(image_.Row(row), cols, static_cast<Pel>(threshold_ + 1)) != 0;
    }

    void FillWaiting(std::int32_t row) {
        Pel* const pels = image_.Row(row);
        for (std::int32_t col = 0; col < image_.cols; ++col) {
            if (FilledTo(col) >= row) pels[col] = value_;
        }
    }

    void EditRow(std::int32_t row) {
        const Reach rows = ClippedReach(row, height_, image_.rows);
        std::int32_t done = -1;  // the last column that a rectangle of this row has covered
        for (std::int32_t col = 0; col < image_.cols; ++col) {
            if (image_.At(col, row) <= threshold_) continue;
            const Reach cols = ClippedReach(col, width_, image_.cols);
            for (std::int32_t x = std::max(cols.first, done + 1); x <= cols.last; ++x)
                FillColumn(x, row, rows);
            done = std::max(done, cols.last);
        }
    }

    void FillColumn(std::int32_t col, std::int32_t row, Reach rows) {
        for (std::int32_t y = std::max(rows.first, FilledTo(col) + 1); y <= row; ++y)
            image_.At(col, y) = value_;
        FilledTo(col) = rows.last;
        lowestFill_ = rows.last;
    }

    std::int32_t& FilledTo(std::int32_t col) noexcept { return filledTo_[static_cast<std::size_t>(col)]; }

    ImageView image_;
    std::int32_t threshold_;
    Pel value_;
    std::int32_t width_;
    std::int32_t height_;
    std::int32_t lowestFill_ = -1;
    std::array<std::int32_t, kMaxSide> filledTo_;  ///< last row that rectangles cover, a column
};

/// The header's own sum, as stale as the host left it.
std::int32_t ImageMean(const ConstImageView& view) noexcept {
    return TruncToInt32(view.header->TotalPelValue / static_cast<double>(view.Count()));
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqEditSpikes(TqImage* image, std::int32_t threshold, std::int32_t value,
                                  std::int32_t width, std::int32_t height) {
    const ImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    // Halves are taken toward zero, so only -2 and below leave a rectangle without a pel.
    if (threshold >= kLargestPel || width < -1 || height < -1) return 0;
    const Pel fill = ClampToPel(value < 0 ? ImageMean(view) : value);
    SpikeEditor(view, threshold, fill, width, height).Edit();
    return 0;
}
