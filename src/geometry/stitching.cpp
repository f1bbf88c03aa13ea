#include "tqimage/stitching.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/image_view.h"
#include "core/numerics.h"
#include "core/replaced_image.h"
#include "core/window.h"

using namespace tq;

namespace {

constexpr std::int32_t kOk = 0;
constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoMemory = -3;

struct WindowSize {
    std::int32_t cols;
    std::int32_t rows;

    bool IsOnePel() const noexcept { return cols == 1 && rows == 1; }
};

/// The pels with data of a window.
struct LitSums {
    std::int64_t count = 0;
    std::int64_t total = 0;

    void Put(Pel pel, Pel, std::int64_t sign) noexcept {
        count += pel != 0 ? sign : 0;
        total += sign * pel;
    }
    void Put(const LitSums& other, std::int64_t sign) noexcept {
        count += sign * other.count;
        total += sign * other.total;
    }
    Pel Mean() const noexcept { return count == 0 ? Pel{0} : static_cast<Pel>(total / count); }
};

/// The labels of the pels with data of a window, up to the second moment. That tells at the same cost for
/// every window whether there is more than one: the squared distances from a label add up to 0 only when all
/// are that label. 8000 x 8000 labels keep every term below 2^60.
struct LabelSums {
    std::int64_t count = 0;
    std::int64_t total = 0;
    std::int64_t squares = 0;

    void Put(Pel pel, Pel label, std::int64_t sign) noexcept {
        if (pel == 0) label = 0;
        count += label != 0 ? sign : 0;
        total += sign * label;
        squares += sign * label * label;
    }
    void Put(const LabelSums& other, std::int64_t sign) noexcept {
        count += sign * other.count;
        total += sign * other.total;
        squares += sign * other.squares;
    }
    bool HasOtherThan(std::int64_t label) const noexcept {
        return squares - 2 * label * total + label * label * count != 0;
    }
};

/// Sums over a window that slides over the image row by row and keeps its size at the border.
template <class Sums>
class SlidingWindow {
  public:
    SlidingWindow(const ConstImageView& image, const ConstImageView& labels, const WindowSize& size)
        : image_(image), labels_(labels), size_(size), columns_(static_cast<std::size_t>(image.cols)) {}

    /// To the start of a row, the first or the one below the last.
    void GoToRow(std::int32_t row) noexcept {
        const Reach reach = ShiftedReach(row, size_.rows, image_.rows);
        for (; entered_ <= reach.last; ++entered_)
            PutRow(entered_, 1);
        for (; left_ < reach.first; ++left_)
            PutRow(left_, -1);
        sums_ = {};
        for (std::int32_t col = 0; col < size_.cols; ++col)
            sums_.Put(Column(col), 1);
        firstCol_ = 0;
    }

    /// The sums of the window around a column, the first or the one after the last.
    const Sums& At(std::int32_t col) noexcept {
        if (ShiftedReach(col, size_.cols, image_.cols).first > firstCol_) {
            sums_.Put(Column(firstCol_ + size_.cols), 1);
            sums_.Put(Column(firstCol_++), -1);
        }
        return sums_;
    }

  private:
    const Sums& Column(std::int32_t col) const noexcept { return columns_[static_cast<std::size_t>(col)]; }
    void PutRow(std::int32_t row, std::int64_t sign) noexcept {
        const Pel* pels = image_.Row(row);
        const Pel* labels = labels_.Row(row);
        for (std::size_t col = 0; col < columns_.size(); ++col)
            columns_[col].Put(pels[col], labels[col], sign);
    }

    ConstImageView image_;
    ConstImageView labels_;
    WindowSize size_;
    std::vector<Sums> columns_;
    Sums sums_;
    std::int32_t entered_ = 0;
    std::int32_t left_ = 0;
    std::int32_t firstCol_ = 0;
};

/// Pels near a seam, that is with another segment's data in their `detect` window, become the mean of the
/// data in their `average` window; an average window without columns holds none.
OwnedImage SmoothSeams(const ConstImageView& image, const ConstImageView& labels, const WindowSize& detect,
                       const WindowSize& average) {
    OwnedImage result(image, NewPels::kUnwritten);
    const ImageView out = result.View();
    SlidingWindow<LabelSums> seams(image, labels, detect);
    SlidingWindow<LitSums> means(image, labels, average);
    for (std::int32_t row = 0; row < image.rows; ++row) {
        seams.GoToRow(row);
        means.GoToRow(row);
        for (std::int32_t col = 0; col < image.cols; ++col) {
            const bool apart = seams.At(col).HasOtherThan(labels.At(col, row));
            const Pel mean = means.At(col).Mean();
            const Pel pel = image.At(col, row);
            const bool belongs = pel != 0 && labels.At(col, row) != 0;
            out.At(col, row) = belongs && apart ? mean : pel;
        }
    }
    return result;
}

/// The two windows that were asked for, cut to an image of this size.
struct Windows {
    WindowSize detect;
    WindowSize average;
};

/// makeWindows(cols, rows) gives the windows; an average over one pel leaves the image as it is.
template <class MakeWindows>
std::int32_t SmoothHostImage(TqImage** image, const TqImage* labels, MakeWindows&& makeWindows) {
    const ConstImageView pels = LocateHeld(image);
    const ConstImageView segments = LocateImage(labels);
    if (!pels || !segments || !SameSize(pels, segments)) return kInvalidImage;
    const Windows windows = makeWindows(pels.cols, pels.rows);
    if (windows.average.IsOnePel()) return kOk;
    return ReplaceImage(image, kNoMemory,
                        [&] { return SmoothSeams(pels, segments, windows.detect, windows.average); });
}

/// Unlike the other sides this one is not raised to 1: with no columns to average, hosts cut the seams out.
std::int32_t AverageCols(std::int32_t asked, std::int32_t pels) noexcept {
    return asked < 1 ? 0 : OddWindow(asked, pels);
}

}  // namespace

std::int32_t TQ_CALL tqSmoothStitch(TqImage** image, const TqImage* labels, std::int32_t winCols,
                                    std::int32_t winRows) {
    return SmoothHostImage(image, labels, [=](std::int32_t cols, std::int32_t rows) {
        const WindowSize window{OddWindow(winCols, cols), OddWindow(winRows, rows)};
        return Windows{window, window};
    });
}

std::int32_t TQ_CALL tqSmoothStitch2(TqImage** image, const TqImage* labels, std::int32_t detectCols,
                                     std::int32_t detectRows, std::int32_t averageCols,
                                     std::int32_t averageRows) {
    return SmoothHostImage(image, labels, [=](std::int32_t cols, std::int32_t rows) {
        return Windows{{OddWindow(detectCols, cols), OddWindow(detectRows, rows)},
                       {AverageCols(averageCols, cols), OddWindow(averageRows, rows)}};
    });
}
