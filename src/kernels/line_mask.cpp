#include "kernels/line_mask.h"

#include <algorithm>
#include <cstdlib>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/line_mask.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET != HWY_SCALAR
using I32 = hn::ScalableTag<std::int32_t>;
using U16 = hn::Rebind<std::uint16_t, I32>;

HWY_INLINE hn::Vec<I32> Load(const std::uint16_t* pels) {
    return hn::PromoteTo(I32(), hn::LoadU(U16(), pels));
}

HWY_INLINE hn::Vec<I32> Sum(hn::Vec<I32> a, hn::Vec<I32> b, hn::Vec<I32> c) {
    return hn::Add(hn::Add(a, b), c);
}

HWY_INLINE hn::Vec<I32> ColumnSum(const std::uint16_t* top, const std::uint16_t* middle,
                                  const std::uint16_t* bottom) {
    return Sum(Load(top), Load(middle), Load(bottom));
}
#endif

// The response is three times the line less the sum of all nine. No partial sum in any order passes
// 9 * 65535 < 2^24, so single precision would round none of them and integers give the same.
void LineResponsesOf(const std::uint16_t* top, const std::uint16_t* middle, const std::uint16_t* bottom,
                     const MaskLine& line, std::size_t count, std::uint16_t* out) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const std::size_t lanes = hn::Lanes(I32());
    for (; i + lanes <= count; i += lanes) {
        const auto before = ColumnSum(top + i - 1, middle + i - 1, bottom + i - 1);
        const auto at = ColumnSum(top + i, middle + i, bottom + i);
        const auto behind = ColumnSum(top + i + 1, middle + i + 1, bottom + i + 1);
        const auto on = Sum(Load(line.first + i), Load(line.second + i), Load(line.third + i));
        const auto tripled = hn::Add(hn::Add(on, on), on);
        const auto response = hn::Abs(hn::Sub(tripled, Sum(before, at, behind)));
        hn::StoreU(hn::DemoteTo(U16(), response), U16(), out + i);  // saturates
    }
#endif
    for (; i < count; ++i) {
        std::int32_t all = 0;
        for (const std::uint16_t* row : {top + i, middle + i, bottom + i})
            all += *(row - 1) + row[0] + row[1];
        const std::int32_t on = line.first[i] + line.second[i] + line.third[i];
        out[i] = static_cast<std::uint16_t>(std::min(std::abs(3 * on - all), 65535));
    }
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(LineResponsesOf);

void LineResponses(const std::uint16_t* top, const std::uint16_t* middle, const std::uint16_t* bottom,
                   const MaskLine& line, std::size_t count, std::uint16_t* out) {
    HWY_DYNAMIC_DISPATCH(LineResponsesOf)(top, middle, bottom, line, count, out);
}

}  // namespace tq::kernels
#endif
