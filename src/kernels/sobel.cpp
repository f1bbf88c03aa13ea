#include "kernels/sobel.h"

#include <algorithm>

#include "kernels/derivative.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/sobel.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

std::int32_t SobelRow(const std::uint16_t* above, const std::uint16_t* row, const std::uint16_t* below,
                      std::size_t cols, std::uint16_t* out) {
    std::int32_t largest = 0;
    std::size_t i = 1;
#if HWY_TARGET != HWY_SCALAR
    // Differences stay below 2^18 in either direction, so they are exact in integers and as floats.
    const hn::ScalableTag<std::int32_t> d;
    const hn::Rebind<float, decltype(d)> f32;
    const hn::Rebind<std::uint16_t, decltype(d)> d16;
    const std::size_t lanes = hn::Lanes(d);
    const auto load = [&](const std::uint16_t* at) { return hn::PromoteTo(d, hn::LoadU(d16, at)); };
    auto best = hn::Zero(d);
    for (; i + lanes + 1 <= cols; i += lanes) {
        const auto aboveLeft = load(above + i - 1), aboveRight = load(above + i + 1);
        const auto belowLeft = load(below + i - 1), belowRight = load(below + i + 1);
        const auto across = hn::Sub(load(row + i + 1), load(row + i - 1));
        const auto down = hn::Sub(load(below + i), load(above + i));
        const auto falling = hn::Sub(belowRight, aboveLeft), rising = hn::Sub(belowLeft, aboveRight);
        const auto x = hn::ConvertTo(f32, hn::Add(hn::Sub(falling, rising), hn::Add(across, across)));
        const auto y = hn::ConvertTo(f32, hn::Add(hn::Add(falling, rising), hn::Add(down, down)));
        const auto squared = hn::Add(hn::Mul(x, x), hn::Mul(y, y));
        const auto magnitude = hn::ConvertTo(d, hn::Sqrt(squared));
        best = hn::Max(best, magnitude);
        hn::StoreU(hn::DemoteTo(d16, magnitude), d16, out + i);
    }
    largest = hn::GetLane(hn::MaxOfLanes(d, best));
#endif
    for (; i + 1 < cols; ++i) {
        const std::int32_t x =
            (above[i + 1] - above[i - 1]) + 2 * (row[i + 1] - row[i - 1]) + (below[i + 1] - below[i - 1]);
        const std::int32_t y =
            (below[i - 1] - above[i - 1]) + 2 * (below[i] - above[i]) + (below[i + 1] - above[i + 1]);
        const std::int32_t magnitude = Magnitude(x, y);
        largest = std::max(largest, magnitude);
        out[i] = ClampToPel(magnitude);
    }
    return largest;
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(SobelRow);

std::int32_t SobelRow(const std::uint16_t* above, const std::uint16_t* row, const std::uint16_t* below,
                      std::size_t cols, std::uint16_t* out) {
    return HWY_DYNAMIC_DISPATCH(SobelRow)(above, row, below, cols, out);
}

}  // namespace tq::kernels
#endif
