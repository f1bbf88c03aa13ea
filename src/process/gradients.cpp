#include "tqimage/gradients.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "core/replaced_image.h"
#include "core/window.h"
#include "kernels/derivative.h"
#include "kernels/sobel.h"
#include "process/gradient.h"
#include "process/gradient_image.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoHorizontalGradient = -3;
constexpr std::int32_t kNoMemory = -5;
/// The forms that know pels without data tell a failed gradient from a failed image by the sign.
constexpr std::int32_t kNoGradient = 1;
constexpr std::int32_t kNoMemory0 = -3;

/// Sobel's gradient along the columns of a row, and with the axes exchanged along the rows of a column.
template <bool kAlongRow>
std::int32_t SobelAt(const ConstImageView& view, std::int32_t col, std::int32_t row) {
    const std::int32_t i = kAlongRow ? col : row;
    const std::int32_t line = kAlongRow ? row : col;
    const std::int32_t n = kAlongRow ? view.cols : view.rows;
    const std::int32_t lines = kAlongRow ? view.rows : view.cols;
    const auto differenceIn = [&](std::int32_t at) {
        return SobelDifference(i, n, [&](std::int32_t k) -> std::int32_t {
            return kAlongRow ? view.At(k, at) : view.At(at, k);
        });
    };
    if (n < 2) return 0;
    // The first and the last line have no line beside them and are not smoothed, nor scaled for it.
    if (line == 0 || line == lines - 1) return differenceIn(line);
    return differenceIn(line - 1) + 2 * differenceIn(line) + differenceIn(line + 1);
}

/// The magnitudes of Sobel's gradient for `count` pels of a row that have all their neighbours.
void SobelRun(const ConstImageView& view, std::int32_t row, std::int32_t first, std::int32_t count,
              GradientImage& result) {
    result.Raise(kernels::SobelRow(view.Row(row - 1) + first - 1, view.Row(row) + first - 1,
                                   view.Row(row + 1) + first - 1, static_cast<std::size_t>(count) + 2,
                                   result.Row(row) + first - 1));
}

OwnedImage MakeSobel(const ConstImageView& view) {
    GradientImage result(view);
    for (std::int32_t row = 0; row < view.rows; ++row) {
        const bool inner = row > 0 && row < view.rows - 1 && view.cols > 2;
        if (inner) SobelRun(view, row, 1, view.cols - 2, result);
        const std::int32_t step = inner ? view.cols - 1 : 1;
        for (std::int32_t col = 0; col < view.cols; col += step)
            result.Set(col, row,
                       kernels::Magnitude(SobelAt<true>(view, col, row), SobelAt<false>(view, col, row)));
    }
    return std::move(result).Finish();
}

/// Magnitudes of the gradients of the other methods, run by run.
class Derivatives {
  public:
    Derivatives(const ConstImageView& view, std::int32_t method)
        : view_(view), method_(method), x_(static_cast<std::size_t>(view.cols)), y_(x_.size()) {}

    void Write(std::int32_t row, std::int32_t first, std::int32_t count, GradientImage& result) {
        const Pel* const pels = view_.Row(row) + first;
        const auto length = static_cast<std::size_t>(count);
        // Columns between the ends of the row are all differentiated alike.
        const std::int32_t end = first + count;
        for (std::int32_t col = first, next = first; col < end; col = next) {
            const bool inner = col >= 2 && col < view_.cols - 2;
            next = inner ? std::min(end, view_.cols - 2) : col + 1;
            kernels::Derive(DerivativeAt(method_, col, view_.cols), pels + (col - first), 1,
                            static_cast<std::size_t>(next - col), x_.data() + (col - first));
        }
        kernels::Derive(DerivativeAt(method_, row, view_.rows), pels, view_.cols, length, y_.data());
        result.Raise(kernels::Magnitudes(x_.data(), y_.data(), length, result.Row(row) + first));
    }

  private:
    ConstImageView view_;
    std::int32_t method_;
    std::vector<std::int32_t> x_;
    std::vector<std::int32_t> y_;
};

OwnedImage MakeGradient(const ConstImageView& view, std::int32_t method) {
    if (method == kSobel) return MakeSobel(view);
    GradientImage result(view);
    Derivatives derivatives(view, method);
    for (std::int32_t row = 0; row < view.rows; ++row)
        derivatives.Write(row, 0, view.cols, result);
    return std::move(result).Finish();
}

OwnedImage MakeGradient0(const ConstImageView& view, std::int32_t method) {
    GradientImage result(view);
    Derivatives derivatives(view, method);
    // As far as the method reaches.
    ZeroFreeRows surroundings(view, method == kFivePoint ? 2 : 1);
    for (std::int32_t row = 0; row < view.rows; ++row) {
        const auto free = surroundings.Next();
        std::fill_n(result.Row(row), view.cols, Pel{0});
        for (auto start = free.begin(); start != free.end();) {
            start = std::find(start, free.end(), std::uint8_t{1});
            const auto end = std::find(start, free.end(), std::uint8_t{0});
            const auto first = static_cast<std::int32_t>(start - free.begin());
            const auto count = static_cast<std::int32_t>(end - start);
            start = end;
            if (count == 0) continue;
            if (method == kSobel) {
                SobelRun(view, row, first, count, result);
            } else {
                derivatives.Write(row, first, count, result);
            }
        }
    }
    return std::move(result).Finish();
}

/// A line of an image that pels of 0 split into runs: the gradient takes the ends of a run for the ends of
/// the line. Lines are rows, or columns when the axes are exchanged.
class SplitLine {
  public:
    SplitLine(const ConstImageView& view, bool alongRow, std::int32_t line)
        : view_(view),
          line_(line),
          lines_(alongRow ? view.rows : view.cols),
          length_(alongRow ? view.cols : view.rows),
          step_(alongRow ? 1 : view.cols),
          lineStep_(alongRow ? view.cols : 1) {}

    template <class Visit>
    void VisitGradients(std::int32_t method, Visit&& visit) const {
        for (std::int32_t first = 0; first < length_; ++first) {
            if (At(line_, first) == 0) {
                visit(first, 0);
                continue;
            }
            std::int32_t end = first;
            while (end < length_ && At(line_, end) != 0)
                ++end;
            for (std::int32_t i = first; i < end; ++i)
                visit(i, std::abs(InRun(method, i, first, end - first)));
            first = end - 1;
        }
    }

  private:
    std::int32_t At(std::int32_t line, std::int32_t i) const noexcept {
        return view_.pels[std::ptrdiff_t{line} * lineStep_ + std::ptrdiff_t{i} * step_];
    }

    std::int32_t InRun(std::int32_t method, std::int32_t at, std::int32_t first, std::int32_t n) const {
        const auto difference = [&](std::int32_t line) {
            return SobelDifference(at - first, n, [&](std::int32_t k) { return At(line, first + k); });
        };
        if (method != kSobel) {
            return kernels::DerivativeOf(DerivativeAt(method, at - first, n),
                                         [&](std::int32_t k) { return At(line_, at + k); });
        }
        if (n < 2) return 0;
        const std::int32_t middle = difference(line_);
        // The pels that the difference reads in this line must hold data in the lines beside it, too.
        const std::int32_t low = at == first ? at : at - 1;
        const std::int32_t high = at == first + n - 1 ? at : at + 1;
        for (const std::int32_t beside : {line_ - 1, line_ + 1}) {
            if (beside < 0 || beside >= lines_) return middle;
            if (At(beside, low) == 0 || At(beside, high) == 0) return middle;
        }
        return difference(line_ - 1) + 2 * middle + difference(line_ + 1);
    }

    ConstImageView view_;
    std::int32_t line_;
    std::int32_t lines_;
    std::int32_t length_;
    std::ptrdiff_t step_;
    std::ptrdiff_t lineStep_;
};

OwnedImage MakeSplitGradient(const ConstImageView& view, std::int32_t method, bool alongRow) {
    GradientImage result(view);
    const std::int32_t lines = alongRow ? view.rows : view.cols;
    for (std::int32_t line = 0; line < lines; ++line) {
        SplitLine(view, alongRow, line).VisitGradients(method, [&](std::int32_t i, std::int32_t gradient) {
            alongRow ? result.Set(i, line, gradient) : result.Set(line, i, gradient);
        });
    }
    return std::move(result).Finish();
}

template <class Make>
std::int32_t NewGradient0(TqImage** out, const TqImage* image, std::int32_t method, Make&& make) {
    const ConstImageView view = LocateImage(image);
    if (out == nullptr || !view) return kInvalidImage;
    if (!IsGradientMethod(method)) return kNoGradient;
    return ReplaceImage(out, kNoMemory0, [&] { return make(view); });
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqCalcGradient(TqImage** out, const TqImage* image, std::int32_t method) {
    const ConstImageView view = LocateImage(image);
    if (out == nullptr || !view) return kInvalidImage;
    // Both directions take the same methods, so the horizontal one, asked first, is the one that refuses.
    if (!IsGradientMethod(method)) return kNoHorizontalGradient;
    return ReplaceImage(out, kNoMemory, [&] { return MakeGradient(view, method); });
}

std::int32_t TQ_CALL tqCalcGradient0(TqImage** out, const TqImage* image, std::int32_t method) {
    return NewGradient0(out, image, method,
                        [&](const ConstImageView& view) { return MakeGradient0(view, method); });
}

std::int32_t TQ_CALL tqCalcGradX0(TqImage** out, const TqImage* image, std::int32_t method) {
    return NewGradient0(out, image, method,
                        [&](const ConstImageView& view) { return MakeSplitGradient(view, method, true); });
}

std::int32_t TQ_CALL tqCalcGradY0(TqImage** out, const TqImage* image, std::int32_t method) {
    return NewGradient0(out, image, method,
                        [&](const ConstImageView& view) { return MakeSplitGradient(view, method, false); });
}
