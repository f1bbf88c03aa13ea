#include "measure/border_background.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

#include "core/numerics.h"

namespace tq {

void UniformBackground::FillRow(std::int32_t, std::int32_t count, double* out) const {
    std::fill_n(out, count, level_);
}

std::unique_ptr<PlaneBackground> PlaneBackground::Fit(const BorderStrips& strips, const BorderLight& light) {
    // Counted from the middle of the pels, so that nothing cancels below: 64 million pels with offsets up to
    // 8000 keep every sum within 64 bits.
    std::int64_t sumX = 0, sumY = 0, sumXX = 0, sumXY = 0, sumYY = 0, sumXV = 0, sumYV = 0;
    for (const Side side : kSides) {
        strips.VisitPels(side, [&](std::int32_t col, std::int32_t row, Pel pel) {
            const std::int64_t x = col - light.middleCol, y = row - light.middleRow;
            sumX += x;
            sumY += y;
            sumXX += x * x;
            sumXY += x * y;
            sumYY += y * y;
            sumXV += x * pel;
            sumYV += y * pel;
        });
    }
    const auto count = static_cast<double>(light.count);
    const double meanX = static_cast<double>(sumX) / count;
    const double meanY = static_cast<double>(sumY) / count;
    const double xx = static_cast<double>(sumXX) - static_cast<double>(sumX) * meanX;
    const double xy = static_cast<double>(sumXY) - static_cast<double>(sumX) * meanY;
    const double yy = static_cast<double>(sumYY) - static_cast<double>(sumY) * meanY;
    const double xv = static_cast<double>(sumXV) - static_cast<double>(sumX) * light.mean;
    const double yv = static_cast<double>(sumYV) - static_cast<double>(sumY) * light.mean;
    // Of pels on a line it is 0 but for rounding; a pel beside a line of 8000 gives more than 1e-12.
    constexpr double kRoundingOfALine = 1e-13;
    const double determinant = xx * yy - xy * xy;
    if (!(determinant > kRoundingOfALine * (xx * yy))) return nullptr;

    auto plane = std::make_unique<PlaneBackground>();
    plane->mean_ = light.mean;
    plane->meanCol_ = light.middleCol + meanX;
    plane->meanRow_ = light.middleRow + meanY;
    plane->colSlope_ = (xv * yy - yv * xy) / determinant;
    plane->rowSlope_ = (yv * xx - xv * xy) / determinant;
    return plane;
}

void PlaneBackground::FillRow(std::int32_t row, std::int32_t count, double* out) const {
    const double level = mean_ + rowSlope_ * (row - meanRow_);
    for (std::int32_t col = 0; col < count; ++col)
        out[col] = level + colSlope_ * (col - meanCol_);
}

BorderProfile BorderProfile::Along(const BorderStrips& strips, Side side) {
    const bool upright = side == Side::kLeft || side == Side::kRight;
    const Rect& strip = strips.Strip(side);
    if (strip.Empty()) return {};
    const std::int32_t first = upright ? strip.top : strip.left;
    const auto places = static_cast<std::size_t>(upright ? strip.Height() : strip.Width());
    std::vector<std::int64_t> sums(places), counts(places);
    strips.VisitPels(side, [&](std::int32_t col, std::int32_t row, Pel pel) {
        const auto place = static_cast<std::size_t>((upright ? row : col) - first);
        sums[place] += pel;
        ++counts[place];
    });

    BorderProfile profile;
    profile.first_ = first;
    profile.across_ = (upright ? strip.left + strip.right : strip.top + strip.bottom) * 0.5;
    std::size_t filled = 0;  // places with a value, bridged ones included
    for (std::size_t place = 0; place < places; ++place) {
        if (counts[place] == 0) continue;
        if (filled == 0) profile.values_.resize(places);
        const double value = static_cast<double>(sums[place]) / static_cast<double>(counts[place]);
        const double before = filled == 0 ? value : profile.values_[filled - 1];
        const auto steps = static_cast<double>(place - filled + 1);
        for (std::size_t gap = filled; gap < place; ++gap) {
            const double share = static_cast<double>(gap - filled + 1) / steps;
            profile.values_[gap] = before + (value - before) * share;
        }
        profile.values_[place] = value;
        filled = place + 1;
    }
    if (filled > 0) {
        const auto end = profile.values_.begin() + static_cast<std::ptrdiff_t>(filled);
        std::fill(end, profile.values_.end(), *(end - 1));
        const auto atEnds =
            static_cast<std::size_t>(std::min<std::int64_t>(strips.CornerReach(), std::ssize(sums)));
        profile.firstSlope_ = profile.SlopeOf(0, atEnds);
        profile.lastSlope_ = profile.SlopeOf(places - atEnds, atEnds);
    }
    return profile;
}

/// Of the least-squares line through some of the values.
double BorderProfile::SlopeOf(std::size_t first, std::size_t count) const {
    const double middle = static_cast<double>(count - 1) * 0.5;
    double squares = 0.0, products = 0.0;
    for (std::size_t place = 0; place < count; ++place) {
        const double offset = static_cast<double>(place) - middle;
        squares += offset * offset;
        products += offset * values_[first + place];
    }
    return squares > 0.0 ? products / squares : 0.0;
}

double BorderProfile::At(double place) const noexcept {
    const double last = static_cast<double>(values_.size() - 1);
    const double from = place - first_;
    if (from <= 0.0) return values_.front() + firstSlope_ * from;
    if (from >= last) return values_.back() + lastSlope_ * (from - last);
    const auto lower = static_cast<std::size_t>(TruncToInt32(from));
    const double share = from - static_cast<double>(lower);
    return values_[lower] + (values_[lower + 1] - values_[lower]) * share;
}

std::unique_ptr<CoonsBackground> CoonsBackground::Fit(const BorderStrips& strips, std::int32_t cols) {
    Profiles profiles;
    for (const Side side : kSides) {
        BorderProfile& profile = profiles[static_cast<std::size_t>(side)];
        profile = BorderProfile::Along(strips, side);
        if (profile.Empty()) return nullptr;
    }
    return std::unique_ptr<CoonsBackground>(new CoonsBackground(std::move(profiles), cols));
}

CoonsBackground::CoonsBackground(Profiles profiles, std::int32_t cols) : profiles_(std::move(profiles)) {
    const BorderProfile &left = Profile(Side::kLeft), &top = Profile(Side::kTop);
    const BorderProfile &right = Profile(Side::kRight), &bottom = Profile(Side::kBottom);
    const auto corner = [](const BorderProfile& upright, const BorderProfile& level) {
        return (upright.At(level.Across()) + level.At(upright.Across())) * 0.5;
    };
    topLeft_ = corner(left, top);
    topRight_ = corner(right, top);
    bottomLeft_ = corner(left, bottom);
    bottomRight_ = corner(right, bottom);
    columns_.reserve(static_cast<std::size_t>(cols));
    for (std::int32_t col = 0; col < cols; ++col) {
        const double x = std::clamp(static_cast<double>(col), left.Across(), right.Across());
        const double share = (x - left.Across()) / (right.Across() - left.Across());
        columns_.push_back({share, top.At(x), bottom.At(x)});
    }
}

void CoonsBackground::FillRow(std::int32_t row, std::int32_t count, double* out) const {
    const double above = Profile(Side::kTop).Across(), below = Profile(Side::kBottom).Across();
    const double y = std::clamp(static_cast<double>(row), above, below);
    const double v = (y - above) / (below - above);
    // What blends along the row: the profiles at both ends less the corners' share of them.
    const double left = Profile(Side::kLeft).At(y) - ((1.0 - v) * topLeft_ + v * bottomLeft_);
    const double right = Profile(Side::kRight).At(y) - ((1.0 - v) * topRight_ + v * bottomRight_);
    for (std::int32_t col = 0; col < count; ++col) {
        const Column& column = columns_[static_cast<std::size_t>(col)];
        const double u = column.share;
        out[col] = (1.0 - v) * column.top + v * column.bottom + (1.0 - u) * left + u * right;
    }
}

}  // namespace tq
