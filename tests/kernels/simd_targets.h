#pragma once

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

namespace tqtest {

using Pels = std::vector<std::uint16_t>;

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

/// Lets kernel(out) write a run of `count` results, which are to be plain(i), one not-a-number as good as
/// another, and expects what lies behind the run untouched.
template <class Out, class Kernel, class Plain>
void ExpectRun(std::size_t count, Kernel&& kernel, Plain&& plain) {
    Out guard;
    std::memset(&guard, 0xA5, sizeof guard);
    std::vector<Out> out(count + 1, guard);
    kernel(out.data());
    for (std::size_t i = 0; i < count; ++i) {
        const Out expected = static_cast<Out>(plain(i));
        ASSERT_TRUE(out[i] == expected || (out[i] != out[i] && expected != expected))
            << "at " << i << " of " << count << ": " << +out[i] << " and not " << +expected;
    }
    ASSERT_EQ(std::memcmp(&out[count], &guard, sizeof guard), 0) << "behind " << count;
}

/// The same on every target, for every count up to `most`; kernel(out, count).
template <class Out, class Kernel, class Plain>
void ExpectRuns(std::size_t most, Kernel&& kernel, Plain&& plain) {
    ForEachTarget([&] {
        for (std::size_t count = 0; count <= most; ++count)
            ExpectRun<Out>(
                count, [&](Out* out) { kernel(out, count); }, plain);
    });
}

/// Pels that provoke carries and sign mistakes: noise, the ends of the range and the middle, in runs.
inline Pels HostilePels(std::size_t count, std::uint32_t seed) {
    std::mt19937 random(seed);
    constexpr std::uint16_t kCorners[] = {0, 1, 32767, 32768, 65534, 65535};
    Pels pels(count);
    for (std::size_t i = 0; i < count; ++i) {
        const auto draw = static_cast<std::uint32_t>(random());
        pels[i] = draw % 3 == 0 ? static_cast<std::uint16_t>(draw >> 16) : kCorners[(draw >> 8) % 6];
    }
    return pels;
}

}  // namespace tqtest
