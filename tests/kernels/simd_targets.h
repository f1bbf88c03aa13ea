#pragma once

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace tqtest {

/// Runs the body once for every instruction set of this machine, the portable one included.
template <class Body>
void ForEachTarget(Body&& body) {
    const std::int64_t supported = hwy::SupportedTargets();
    for (std::int64_t left = supported; left != 0; left &= left - 1) {
        const std::int64_t target = left & -left;
        SCOPED_TRACE(hwy::TargetName(target));
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        body();
    }
    hwy::SetSupportedTargetsForTest(0);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

/// Pels that provoke carries and sign mistakes: noise, the ends of the range and the middle, in runs.
inline std::vector<std::uint16_t> HostilePels(std::size_t count, std::uint32_t seed) {
    std::mt19937 random(seed);
    constexpr std::uint16_t kCorners[] = {0, 1, 32767, 32768, 65534, 65535};
    std::vector<std::uint16_t> pels(count);
    for (std::size_t i = 0; i < count; ++i) {
        const auto draw = static_cast<std::uint32_t>(random());
        pels[i] = draw % 3 == 0 ? static_cast<std::uint16_t>(draw >> 16) : kCorners[(draw >> 8) % 6];
    }
    return pels;
}

}  // namespace tqtest
