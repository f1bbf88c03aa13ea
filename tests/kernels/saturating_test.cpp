#include "kernels/saturating.h"

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

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

TEST(SubtractSaturated, EveryTargetAndLengthGivesTheSameAndStaysInside) {
    constexpr std::uint16_t kLevels[] = {0, 1, 2, 32767, 32768, 65534, 65535};
    constexpr std::uint16_t kGuard = 0xA5A5;
    ForEachTarget([&] {
        for (std::size_t count = 0; count <= 150; ++count) {
            std::vector<std::uint16_t> a(count), b(count), out(count + 1, kGuard);
            for (std::size_t i = 0; i < count; ++i) {
                a[i] = kLevels[i % 7];
                b[i] = kLevels[i / 7 % 7];
            }
            tq::kernels::SubtractSaturated(a.data(), b.data(), out.data(), count);
            for (std::size_t i = 0; i < count; ++i) {
                ASSERT_EQ(out[i], a[i] > b[i] ? a[i] - b[i] : 0) << a[i] << " - " << b[i] << " at " << i;
            }
            ASSERT_EQ(out[count], kGuard);
        }
    });
}

}  // namespace
