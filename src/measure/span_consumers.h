#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "core/image_view.h"
#include "kernels/span_statistics.h"

/// What can be measured over the row spans of a region. Each takes a run of pels at a time; the sums are
/// exact.
namespace tq {

/// Turns a consumer of runs into a visitor of the spans of an image.
template <class Consumer>
auto OnPelsOf(const ConstImageView& view, Consumer& consumer) {
    return [&view, &consumer](std::int32_t row, std::int32_t first, std::int32_t last) {
        consumer(view.Row(row) + first, static_cast<std::size_t>(last - first + 1));
    };
}

/// Smallest and largest pel; {65535, 0} until a pel is seen.
struct Extremes {
    kernels::MinMax found;
    bool any = false;

    void operator()(const Pel* pels, std::size_t count) {
        const auto run = kernels::FindMinMax(pels, count);
        found = {std::min(found.min, run.min), std::max(found.max, run.max)};
        any = true;
    }
};

/// Sum and count of the pels that are at least a threshold, which may lie outside 0..65535.
class TotalAtLeast {
  public:
    explicit TotalAtLeast(std::int64_t threshold)
        : threshold_(std::clamp<std::int64_t>(threshold, 0, 65536)) {}

    void operator()(const Pel* pels, std::size_t count) {
        if (threshold_ == 0) {
            sum_ += kernels::SumPels(pels, count);
            count_ += count;
        } else if (threshold_ <= kLargestPel) {
            const auto run = kernels::SumAtLeast(pels, count, static_cast<Pel>(threshold_));
            sum_ += run.sum;
            count_ += run.count;
        }
    }

    double Sum() const noexcept { return static_cast<double>(sum_); }
    std::uint64_t Count() const noexcept { return count_; }
    /// The sum itself, 0, when there is nothing to divide by.
    double Mean() const noexcept { return count_ > 0 ? Sum() / static_cast<double>(count_) : Sum(); }

  private:
    std::int64_t threshold_;
    std::uint64_t sum_ = 0;
    std::uint64_t count_ = 0;
};

struct PelCount {
    std::uint64_t count = 0;
    void operator()(const Pel*, std::size_t pels) { count += pels; }
};

/// Mean in which pels between `low` and `high` count with a weight that rises from 0 to 1. With high = 0 or
/// low >= high it is the plain mean of the pels from `low` on.
class WeightedMean {
  public:
    WeightedMean(std::int32_t low, std::int32_t high)
        : low_(low), high_(high), ramp_(high != 0 && low < high), fromLow_(low), fromHigh_(high) {}

    void operator()(const Pel* pels, std::size_t count) {
        fromLow_(pels, count);
        if (ramp_) fromHigh_(pels, count);
    }

    double Result() const noexcept {
        if (!ramp_) return fromLow_.Mean();
        // The ramp's weights share one denominator, so their sum is one exact integer over it.
        const double rampSum = fromLow_.Sum() - fromHigh_.Sum();
        const double rampCount = static_cast<double>(fromLow_.Count() - fromHigh_.Count());
        const double weight = (rampSum - rampCount * low_) / (static_cast<double>(high_) - low_) +
                              static_cast<double>(fromHigh_.Count());
        return weight > 0.0 ? fromLow_.Sum() / weight : fromLow_.Sum();
    }

  private:
    double low_;
    double high_;
    bool ramp_;
    TotalAtLeast fromLow_;
    TotalAtLeast fromHigh_;
};

/// Area of the dark pels of a region: each counts 1 up to `full`, falling to 0 at `none`. With full >= none
/// it is the number of pels up to `full`.
class CharacteristicArea {
  public:
    CharacteristicArea(std::int32_t full, std::int32_t none)
        : full_(full),
          none_(none),
          ramp_(full < none),
          aboveFull_(std::int64_t{full} + 1),
          aboveNone_(std::int64_t{none} + 1) {}

    void operator()(const Pel* pels, std::size_t count) {
        pels_ += count;
        aboveFull_(pels, count);
        if (ramp_) aboveNone_(pels, count);
    }

    double Result() const noexcept {
        const auto dark = static_cast<double>(pels_ - aboveFull_.Count());
        if (!ramp_) return dark;
        const double rampSum = aboveFull_.Sum() - aboveNone_.Sum();
        const auto rampCount = static_cast<double>(aboveFull_.Count() - aboveNone_.Count());
        return dark + (rampCount * none_ - rampSum) / (none_ - full_);
    }

  private:
    double full_;
    double none_;
    bool ramp_;
    std::uint64_t pels_ = 0;
    TotalAtLeast aboveFull_;
    TotalAtLeast aboveNone_;
};

}  // namespace tq
