#include "analysis/slanted_edge.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "analysis/hamming.h"
#include "core/numerics.h"

namespace tq {

EdgeRegion::EdgeRegion(const ConstImageView& view, const Rect& rect) noexcept
    : first_(&view.At(rect.left, rect.top)),
      across_(1),
      along_(view.cols),
      width_(static_cast<std::int32_t>(rect.Width())),
      lines_(static_cast<std::int32_t>(rect.Height())) {
    std::int64_t alongRows = 0;
    std::int64_t alongCols = 0;
    for (std::int32_t y = 0; y + 1 < lines_; ++y) {
        const Pel* row = view.Row(rect.top + y) + rect.left;
        for (std::int32_t x = 0; x + 1 < width_; ++x) {
            alongRows += std::abs(row[x + 1] - row[x]);
            alongCols += std::abs(row[x + view.cols] - row[x]);
        }
    }
    if (alongCols <= alongRows) return;
    std::swap(across_, along_);
    std::swap(width_, lines_);
}

namespace {

struct LineCentroid {
    double step;  ///< windowed sum of the derivative: the height of the edge, signed
    double x;
};

/// Centroid of the derivative of a line under a window around `center`.
LineCentroid CentroidOfLine(const EdgeRegion& region, std::int32_t y, const HammingWindow& window,
                            double center) {
    double sum = 0.0;
    double moment = 0.0;
    for (std::int32_t x = 0; x + 1 < region.Width(); ++x) {
        // The difference of two pels belongs half-way between them.
        const double position = x + 0.5 - center;
        const double weighted = (region.Grey(x + 1, y) - region.Grey(x, y)) * window(position);
        sum += weighted;
        moment += weighted * position;
    }
    return {sum, center + moment / sum};
}

/// Least squares over the lines that show the edge; nothing when they are too few.
std::optional<EdgeLine> FitLine(const std::vector<LineCentroid>& lines, std::int32_t width) {
    double total = 0.0;
    for (const LineCentroid& line : lines)
        total += line.step;
    const double mean = total / static_cast<double>(lines.size());
    // Noise without an edge fails here: its steps have either sign and its centroids lie anywhere.
    const auto shows = [&](const LineCentroid& line) {
        return line.step * mean > 0.25 * mean * mean && line.x >= 0.0 && line.x <= width - 1.0;
    };
    double count = 0.0, sumY = 0.0, sumX = 0.0;
    for (std::size_t y = 0; y < lines.size(); ++y) {
        if (!shows(lines[y])) continue;
        count += 1.0;
        sumY += static_cast<double>(y);
        sumX += lines[y].x;
    }
    if (count < 0.75 * static_cast<double>(lines.size())) return std::nullopt;
    const double meanY = sumY / count;
    const double meanX = sumX / count;
    double covariance = 0.0, variance = 0.0;
    for (std::size_t y = 0; y < lines.size(); ++y) {
        if (!shows(lines[y])) continue;
        const double fromMean = static_cast<double>(y) - meanY;
        covariance += fromMean * (lines[y].x - meanX);
        variance += fromMean * fromMean;
    }
    const double slope = covariance / variance;
    return EdgeLine{meanX - slope * meanY, slope};
}

/// Lines over which the edge passes whole pels, so that each phase comes equally often; all of them when it
/// does not pass one.
std::int32_t LinesOfWholeTurns(std::int32_t lines, double slope) {
    const double steepness = std::abs(slope);
    const double turns = std::floor(lines * steepness);
    if (turns < 1.0) return lines;
    return std::min(lines, TruncToInt32(turns / steepness + 0.5));
}

/// Bins that no pel fell into, as happens at slopes that are simple fractions, lie on the line between their
/// neighbours.
void FillGaps(std::vector<double>& profile, const std::vector<std::int32_t>& counts) {
    std::size_t last = profile.size();
    for (std::size_t i = 0; i < profile.size(); ++i) {
        if (counts[i] == 0) continue;
        const std::size_t from = last == profile.size() ? 0 : last + 1;
        for (std::size_t k = from; k < i; ++k) {
            const double before = last == profile.size() ? profile[i] : profile[last];
            const double share = static_cast<double>(k - from + 1) / static_cast<double>(i - from + 1);
            profile[k] = before + (profile[i] - before) * share;
        }
        last = i;
    }
    for (std::size_t k = last + 1; k < profile.size(); ++k)
        profile[k] = profile[last];
}

/// At slopes near simple fractions the pels of a bin gather off its middle, by `offsets` bins; brought back
/// along the profile's own slope.
std::vector<double> Centred(const std::vector<double>& profile, const std::vector<double>& offsets) {
    std::vector<double> centred = profile;
    for (std::size_t i = 1; i + 1 < profile.size(); ++i) {
        const double distance = 2.0 + offsets[i + 1] - offsets[i - 1];
        centred[i] -= offsets[i] * (profile[i + 1] - profile[i - 1]) / distance;
    }
    return centred;
}

/// Distance in bins between a tenth and nine tenths of the step.
double RiseOf(const std::vector<double>& profile) {
    const double from = profile.front();
    const double step = profile.back() - from;
    const auto last = [&](double share) {
        std::size_t i = profile.size();
        while (i > 0 && (profile[i - 1] - from) / step > share)
            --i;
        return static_cast<double>(i);
    };
    return step == 0.0 ? 0.0 : std::max(last(0.9) - last(0.1), 0.0);
}

}  // namespace

std::optional<EdgeLine> FindEdge(const EdgeRegion& region) {
    const HammingWindow window(region.Width());
    std::optional<EdgeLine> edge = EdgeLine{0.5 * (region.Width() - 1), 0.0};
    std::vector<LineCentroid> lines(static_cast<std::size_t>(region.Lines()));
    // The first fit centres the window on the edge of each line, and the window then favours neither side.
    for (int pass = 0; pass < 2 && edge; ++pass) {
        for (std::int32_t y = 0; y < region.Lines(); ++y)
            lines[static_cast<std::size_t>(y)] = CentroidOfLine(region, y, window, edge->At(y));
        edge = FitLine(lines, region.Width());
    }
    return edge;
}

std::vector<double> EdgeProfile(const EdgeRegion& region, const EdgeLine& edge) {
    // Fewer pels on one side show no level beside the edge.
    constexpr double kLeastPels = 4.0;
    const double cosine = 1.0 / std::sqrt(1.0 + edge.slope * edge.slope);
    const std::int32_t lines = LinesOfWholeTurns(region.Lines(), edge.slope);
    const double middle = edge.At(0.5 * (lines - 1));
    const double reach = std::min(middle, region.Width() - 1 - middle) * cosine;
    if (!(reach >= kLeastPels)) return {};

    const std::int32_t half = TruncToInt32(reach * kOversampling);
    std::vector<double> profile(2 * static_cast<std::size_t>(half));
    std::vector<double> offsets(profile.size());
    std::vector<std::int32_t> counts(profile.size());
    for (std::int32_t y = 0; y < lines; ++y) {
        const double at = edge.At(y);
        for (std::int32_t x = 0; x < region.Width(); ++x) {
            const double place = (x - at) * cosine * kOversampling + half;
            const double bin = std::floor(place);
            if (!(bin >= 0.0 && bin < 2.0 * half)) continue;
            const auto i = static_cast<std::size_t>(TruncToInt32(bin));
            profile[i] += region.Grey(x, y);
            offsets[i] += place - bin - 0.5;
            ++counts[i];
        }
    }
    for (std::size_t i = 0; i < profile.size(); ++i) {
        if (counts[i] == 0) continue;
        profile[i] /= counts[i];
        offsets[i] /= counts[i];
    }
    FillGaps(profile, counts);
    profile = Centred(profile, offsets);

    // What lies far beyond the blur holds noise alone. Ten rises keep the window's own effect on a Gaussian
    // edge below 0.003; sixteen pels are kept of the sharpest.
    constexpr double kRises = 10.0;
    constexpr double kShortest = 16.0 * kOversampling;
    const double wanted = std::max(kRises * RiseOf(profile), kShortest);
    if (wanted < half) {
        const auto cut = static_cast<std::ptrdiff_t>(half - TruncToInt32(wanted));
        profile = std::vector<double>(profile.begin() + cut, profile.end() - cut);
    }
    return profile;
}

}  // namespace tq
