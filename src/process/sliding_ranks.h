#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <span>
#include <vector>

#include "core/numerics.h"

namespace tq {

/// A histogram that follows a window. Adding and taking away cost two steps, asking for a rank about the
/// square root of the number of levels: the counts of groups of levels stand beside those of single ones.
class SlidingRanks {
  public:
    explicit SlidingRanks(std::int32_t levels)
        : shift_(std::bit_width(static_cast<std::uint32_t>(levels - 1)) / 2),
          single_(static_cast<std::size_t>(levels)),
          groups_((static_cast<std::size_t>(levels - 1) >> shift_) + 1) {}

    void Add(Pel level) noexcept {
        ++single_[level];
        ++groups_[std::size_t{level} >> shift_];
    }
    void Remove(Pel level) noexcept {
        --single_[level];
        --groups_[std::size_t{level} >> shift_];
    }
    /// Number of those held that are at most `level`.
    std::uint32_t AtMost(Pel level) const noexcept {
        const std::size_t group = std::size_t{level} >> shift_;
        const auto sum = [](const std::uint32_t* first, const std::uint32_t* last) {
            return std::accumulate(first, last, 0U);
        };
        return sum(groups_.data(), groups_.data() + group) +
               sum(single_.data() + (group << shift_), single_.data() + level + 1);
    }

  private:
    int shift_;
    std::vector<std::uint32_t> single_;
    std::vector<std::uint32_t> groups_;
};

}  // namespace tq
