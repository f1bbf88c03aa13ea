#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <span>

#include "core/image_view.h"
#include "core/numerics.h"
#include "core/replaced_image.h"
#include "patterns/azimuth.h"
#include "patterns/column_spans.h"
#include "patterns/pattern_image.h"
#include "patterns/plot_line.h"
#include "patterns/positions.h"
#include "tqimage/plots.h"

namespace tq {
namespace {

constexpr std::int32_t kBadArgument = -1;
constexpr std::int32_t kNoMemory = -3;

constexpr Pel kInk = kLargestPel;

enum GraphType : std::int32_t { kPoints, kLine, kBars, kSteps, kFilled, kPolarCurve };

using Samples = std::span<const double>;

struct Range {
    double low;
    double high;

    double Width() const noexcept { return high - low; }
    /// 0 at the bottom, 1 at the top; values beyond lie there.
    double Share(double value) const noexcept { return (std::clamp(value, low, high) - low) / Width(); }
};

Range RangeOf(Samples samples, double low, double high) noexcept {
    if (low < high) return {low, high};
    double largest = 0.0;
    for (const double value : samples) {
        if (value > largest && std::isfinite(value)) largest = value;
    }
    return {0.0, largest > 0.0 ? largest : 1.0};
}

/// Where samples lie along the columns: the middle of the first, and the columns from each to the next.
struct SampleAxis {
    double origin;
    double step;

    double Place(std::int64_t sample) const noexcept { return origin + step * static_cast<double>(sample); }
};

/// Every sample has its share of the columns.
SampleAxis Cells(std::int32_t count, std::int32_t cols) noexcept {
    const double width = static_cast<double>(cols) / count;
    return {0.5 * width - 0.5, width};
}

/// The first sample on the first column, the last on the last.
SampleAxis EdgeToEdge(std::int32_t count, std::int32_t cols) noexcept {
    if (count == 1) return Cells(count, cols);
    return {0.0, (cols - 1.0) / (count - 1.0)};
}

class Graph {
  public:
    Graph(const ImageView& image, Samples samples, const Range& range, GraphType type)
        : image_(image),
          samples_(samples),
          range_(range),
          type_(type),
          axis_(type == kBars || type == kSteps ? Cells(Count(), image.cols)
                                                : EdgeToEdge(Count(), image.cols)) {}

    void Draw() const {
        if (type_ == kPoints) {
            DrawPoints();
        } else if (type_ == kPolarCurve) {
            DrawPolarCurve();
        } else {
            DrawSpans();
        }
    }

    /// Lets hosts map pels to samples and units.
    void WriteScale(TqImageHeader& header) const noexcept {
        if (type_ == kPolarCurve) {
            header.PelsPerMeterX = header.PelsPerMeterY = static_cast<float>(Radius() / range_.Width());
            return;
        }
        const double rowsPerUnit = (image_.rows - 1) / range_.Width();
        header.PelsPerMeterX = static_cast<float>(axis_.step);
        header.PelsPerMeterY = static_cast<float>(rowsPerUnit);
        header.CenterCol = static_cast<float>(axis_.origin);
        header.CenterRow = static_cast<float>(image_.rows - 1 + range_.low * rowsPerUnit);
    }

  private:
    std::int32_t Count() const noexcept { return static_cast<std::int32_t>(samples_.size()); }
    double RowOf(double value) const noexcept { return (image_.rows - 1) * (1.0 - range_.Share(value)); }

    /// The place of a sample; nothing for a gap.
    std::optional<PlotPlace> At(std::size_t sample) const noexcept {
        if (std::isnan(samples_[sample])) return std::nullopt;
        return PlotPlace{axis_.Place(static_cast<std::int64_t>(sample)), RowOf(samples_[sample])};
    }

    void DrawPoints() const noexcept {
        for (std::size_t sample = 0; sample < samples_.size(); ++sample) {
            const std::optional<PlotPlace> place = At(sample);
            if (place) image_.At(NearestPel(place->col), NearestPel(place->row)) = kInk;
        }
    }

    void DrawSpans() const {
        ColumnSpans spans(image_.cols);
        if (type_ == kLine || type_ == kFilled) {
            AddCurve(spans);
        } else {
            AddCells(spans);
        }
        if (type_ == kBars || type_ == kFilled) spans.ReachTo(NearestPel(RowOf(0.0)));
        spans.Draw(image_, kInk);
    }

    void AddCurve(ColumnSpans& spans) const noexcept {
        std::optional<PlotPlace> before;
        for (std::size_t sample = 0; sample < samples_.size(); ++sample) {
            const std::optional<PlotPlace> place = At(sample);
            if (place) spans.Add(NearestPel(place->col), NearestPel(place->row));
            if (place && before) {
                if (type_ == kLine) {
                    spans.AddLine(*before, *place);
                } else {
                    spans.AddBetween(*before, *place);
                }
            }
            before = place;
        }
    }

    void AddCells(ColumnSpans& spans) const noexcept {
        const std::int64_t count = Count();
        std::optional<std::int32_t> before;
        for (std::int64_t sample = 0; sample < count; ++sample) {
            const auto first = static_cast<std::int32_t>(sample * image_.cols / count);
            auto last = static_cast<std::int32_t>((sample + 1) * image_.cols / count - 1);
            last = std::max(last, first);
            // Bars stand apart once there is room for it.
            if (type_ == kBars && last - first >= 3) --last;
            const std::optional<PlotPlace> place = At(static_cast<std::size_t>(sample));
            const auto row = place ? std::optional(NearestPel(place->row)) : std::nullopt;
            for (std::int32_t col = first; row && col <= last; ++col)
                spans.Add(col, *row);
            if (row && before && type_ == kSteps) spans.Add(first, *before);
            before = row;
        }
    }

    double Radius() const noexcept { return (std::min(image_.cols, image_.rows) - 1) * 0.5; }

    void DrawPolarCurve() const {
        const TurnParts parts(Count());
        const PlotPlace middle{(image_.cols - 1) * 0.5, (image_.rows - 1) * 0.5};
        const auto placeOf = [&](std::size_t sample) -> std::optional<PlotPlace> {
            if (std::isnan(samples_[sample])) return std::nullopt;
            const double radius = Radius() * range_.Share(samples_[sample]);
            const Direction direction = parts[static_cast<std::int32_t>(sample)];
            return PlotPlace{middle.col + radius * direction.cosine, middle.row - radius * direction.sine};
        };
        std::optional<PlotPlace> before = placeOf(samples_.size() - 1);
        for (std::size_t sample = 0; sample < samples_.size(); ++sample) {
            const std::optional<PlotPlace> place = placeOf(sample);
            // A sample between gaps is still a point.
            if (place) DrawLine(image_, before ? *before : *place, *place, kInk);
            before = place;
        }
    }

    ImageView image_;
    Samples samples_;
    Range range_;
    GraphType type_;
    SampleAxis axis_;
};

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqCreateGraphType(TqImage** out, const double* values, std::int32_t count,
                                       std::int32_t cols, std::int32_t rows, std::int32_t type, double low,
                                       double high) {
    if (out == nullptr || values == nullptr || count < 1) return kBadArgument;
    if (!IsValidSide(cols) || !IsValidSide(rows) || type < kPoints || type > kPolarCurve) return kBadArgument;
    if (low < high && !std::isfinite(high - low)) return kBadArgument;
    return ReplaceImage(out, kNoMemory, [&] {
        const Samples samples(values, static_cast<std::size_t>(count));
        OwnedImage plot = MakeDrawnImage(cols, rows, NewPels::kZero);
        const Graph graph(plot.View(), samples, RangeOf(samples, low, high), static_cast<GraphType>(type));
        graph.Draw();
        graph.WriteScale(plot.Header());
        return plot;
    });
}
