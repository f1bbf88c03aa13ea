#include "kernels/neighbourhood.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/neighbourhood.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {

#if HWY_TARGET != HWY_SCALAR
namespace hn = hwy::HWY_NAMESPACE;

using U32 = hn::ScalableTag<std::uint32_t>;

/// Sums of three rows, held until each has been added to its two neighbours. Small enough to stay in the
/// first-level cache together with the rows it is made from.
constexpr std::size_t kTile = 1024;

HWY_INLINE hn::Vec<U32> LoadPels(const std::uint16_t* pels) {
    return hn::PromoteTo(U32(), hn::LoadU(hn::Rebind<std::uint16_t, U32>(), pels));
}
#endif

std::uint32_t LargestNeighbourhoodSum(const std::uint16_t* above, const std::uint16_t* row,
                                      const std::uint16_t* below, std::size_t cols) {
    std::uint32_t largest = 0;
    std::size_t i = 0;  // first column of the next neighbourhood
#if HWY_TARGET != HWY_SCALAR
    const U32 d;
    const std::size_t lanes = hn::Lanes(d);
    auto best = hn::Zero(d);
    std::uint32_t columns[kTile];
    // A tile of n column sums, a multiple of the lanes, gives n - lanes whole vectors of neighbourhoods and
    // the next tile starts with its last vector.
    while (i + 2 * lanes <= cols) {
        const std::size_t count = std::min(kTile, cols - i) / lanes * lanes;
        for (std::size_t at = 0; at < count; at += lanes) {
            const auto sum =
                hn::Add(hn::Add(LoadPels(above + i + at), LoadPels(row + i + at)), LoadPels(below + i + at));
            hn::StoreU(sum, d, columns + at);
        }
        for (std::size_t at = 0; at + lanes < count; at += lanes) {
            const auto left = hn::LoadU(d, columns + at);
            const auto middle = hn::LoadU(d, columns + at + 1);
            const auto right = hn::LoadU(d, columns + at + 2);
            best = hn::Max(best, hn::Add(hn::Add(left, middle), right));
        }
        i += count - lanes;
    }
    largest = hn::GetLane(hn::MaxOfLanes(d, best));
#endif
    for (; i + 2 < cols; ++i) {
        std::uint32_t sum = 0;
        for (std::size_t at = i; at < i + 3; ++at)
            sum += std::uint32_t{above[at]} + row[at] + below[at];
        largest = std::max(largest, sum);
    }
    return largest;
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(LargestNeighbourhoodSum);

std::uint32_t LargestNeighbourhoodSum(const std::uint16_t* above, const std::uint16_t* row,
                                      const std::uint16_t* below, std::size_t cols) {
    return HWY_DYNAMIC_DISPATCH(LargestNeighbourhoodSum)(above, row, below, cols);
}

}  // namespace tq::kernels
#endif
