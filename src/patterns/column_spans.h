#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "core/image_view.h"
#include "patterns/plot_line.h"
#include "patterns/positions.h"

namespace tq {

/// The rows that a graph covers in each column, as one run. A graph of many samples is gathered here before
/// it is drawn, so that its cost is samples plus pels, however often the samples go up and down.
class ColumnSpans {
  public:
    explicit ColumnSpans(std::int32_t cols) : spans_(static_cast<std::size_t>(cols)) {}

    void Add(std::int32_t col, std::int32_t row) noexcept {
        Span& span = spans_[static_cast<std::size_t>(col)];
        span.top = std::min(span.top, row);
        span.bottom = std::max(span.bottom, row);
    }

    /// All that a line covers. Ends are in column order.
    void AddLine(const PlotPlace& from, const PlotPlace& to) noexcept {
        const std::int32_t last = NearestPel(to.col);
        for (std::int32_t col = NearestPel(from.col); col <= last; ++col) {
            Add(col, NearestPel(RowAt(from, to, std::max(from.col, col - 0.5))));
            Add(col, NearestPel(RowAt(from, to, std::min(to.col, col + 0.5))));
        }
    }

    /// The line where it passes the middle of the columns between its ends, which have their own values.
    void AddBetween(const PlotPlace& from, const PlotPlace& to) noexcept {
        const std::int32_t last = NearestPel(to.col);
        for (std::int32_t col = NearestPel(from.col) + 1; col < last; ++col)
            Add(col, NearestPel(RowAt(from, to, col)));
    }

    /// Prolongs every run to a row.
    void ReachTo(std::int32_t row) noexcept {
        for (Span& span : spans_) {
            if (span.top > span.bottom) continue;
            span.top = std::min(span.top, row);
            span.bottom = std::max(span.bottom, row);
        }
    }

    void Draw(const ImageView& image, Pel grey) const noexcept {
        for (std::int32_t col = 0; col < image.cols; ++col) {
            const Span& span = spans_[static_cast<std::size_t>(col)];
            for (std::int32_t row = span.top; row <= span.bottom; ++row)
                image.At(col, row) = grey;
        }
    }

  private:
    struct Span {
        std::int32_t top = std::numeric_limits<std::int32_t>::max();
        std::int32_t bottom = -1;
    };

    static double RowAt(const PlotPlace& from, const PlotPlace& to, double col) noexcept {
        const double length = to.col - from.col;
        return length > 0.0 ? from.row + (to.row - from.row) * ((col - from.col) / length) : to.row;
    }

    std::vector<Span> spans_;
};

}  // namespace tq
