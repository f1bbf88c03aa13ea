#include "kernels/sharpen.h"

#include <algorithm>

#include "core/numerics.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/sharpen.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

void SharpenRow(const SharpenRows& rows, const std::uint16_t* deciding, float weight, std::size_t count,
                std::uint16_t* out) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const hn::ScalableTag<std::int32_t> d;
    const hn::Rebind<float, decltype(d)> f32;
    const hn::Rebind<std::uint16_t, decltype(d)> d16;
    const std::size_t lanes = hn::Lanes(d);
    const auto factor = hn::Set(f32, weight);
    // 58255 / 2^19 is 1 / 9 and a little more, too little to reach the next integer from 65535 / 9.
    const auto ninth = [&](const std::uint16_t* at) {
        return hn::ShiftRight<3>(hn::MulHigh(hn::LoadU(d16, at), hn::Set(d16, 58255)));
    };
    const auto beside = [&](const std::uint16_t* at) { return hn::Add(ninth(at - 1), ninth(at + 1)); };
    for (; i + lanes <= count; i += lanes) {
        // Eight ninths of 65535 fit into 16 bits.
        const auto outer =
            hn::Add(hn::Add(beside(rows.row + i), hn::Add(ninth(rows.above + i), ninth(rows.below + i))),
                    hn::Add(beside(rows.above + i), beside(rows.below + i)));
        const auto pel = hn::PromoteTo(d, hn::LoadU(d16, rows.row + i));
        const auto product = hn::Mul(hn::ConvertTo(f32, pel), factor);
        const auto fits = hn::Lt(product, hn::Set(f32, 0x1p31f));
        const auto centre = hn::ConvertTo(d, hn::IfThenElseZero(fits, product));
        const auto difference = hn::Sub(centre, hn::PromoteTo(d, outer));
        const auto least = hn::PromoteTo(d, hn::Min(hn::LoadU(d16, deciding + i), hn::Set(d16, 1)));
        const auto result = hn::IfThenElse(hn::RebindMask(d, fits), hn::Max(difference, least), least);
        hn::StoreU(hn::DemoteTo(d16, result), d16, out + i);
    }
#endif
    for (; i < count; ++i) {
        std::int32_t outer = 0;
        for (const std::uint16_t* line : {rows.above + i, rows.row + i, rows.below + i})
            outer += line[-1] / 9 + line[0] / 9 + line[1] / 9;
        outer -= rows.row[i] / 9;
        const auto product = static_cast<float>(rows.row[i]) * weight;
        const std::int64_t result = std::int64_t{TruncToInt32(static_cast<double>(product))} - outer;
        const std::int64_t least = deciding[i] != 0 ? 1 : 0;
        out[i] = static_cast<std::uint16_t>(std::min<std::int64_t>(std::max(result, least), kLargestPel));
    }
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(SharpenRow);

void SharpenRow(const SharpenRows& rows, const std::uint16_t* deciding, float weight, std::size_t count,
                std::uint16_t* out) {
    HWY_DYNAMIC_DISPATCH(SharpenRow)(rows, deciding, weight, count, out);
}

}  // namespace tq::kernels
#endif
