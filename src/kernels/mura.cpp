#include "kernels/mura.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/mura.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "kernels/pair_sums-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {

SquaresAndCount SumSquaredDeviations(const std::uint16_t* pels, std::size_t count, std::uint16_t zero,
                                     std::uint16_t threshold) {
    SquaresAndCount result;
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const U16 d;
    const U32 d32;
    const std::size_t lanes = hn::Lanes(d);
    const auto level = hn::Set(d, zero);
    const auto bound = hn::Set(d, threshold);
    const auto lowHalf = hn::Set(d32, 0xFFFF);
    auto squares = hn::Zero(U64());
    auto hits = hn::Zero(U64());
    constexpr std::size_t kVectorsPerFlush = 65535;  // one hit a 16-bit lane and vector
    while (i + lanes <= count) {
        const std::size_t end = i + std::min((count - i) / lanes, kVectorsPerFlush) * lanes;
        auto misses = hn::Zero(d);
        const std::size_t vectors = (end - i) / lanes;
        for (; i < end; i += lanes) {
            const auto v = hn::LoadU(d, pels + i);
            const auto reached = hn::VecFromMask(d, hn::Eq(hn::Max(v, bound), v));
            const auto deviation = hn::And(hn::Sub(hn::Max(v, level), hn::Min(v, level)), reached);
            misses = hn::Sub(misses, hn::VecFromMask(d, hn::Eq(deviation, hn::Zero(d))));
            const auto pairs = hn::BitCast(d32, deviation);
            const auto low = hn::And(pairs, lowHalf);
            const auto high = hn::ShiftRight<16>(pairs);
            // No deviation of a pel exceeds 65535, so a square fits its 32-bit lane.
            squares =
                hn::Add(squares, hn::Add(WidenPairs(hn::Mul(low, low)), WidenPairs(hn::Mul(high, high))));
        }
        const auto seen = hn::Set(d32, static_cast<std::uint32_t>(2 * vectors));
        hits = hn::Add(hits, WidenPairs(hn::Sub(seen, AddPairs(misses))));
    }
    result = {Total(squares), Total(hits)};
#endif
    for (; i < count; ++i) {
        if (pels[i] < threshold || pels[i] == zero) continue;
        const std::int64_t deviation = std::int64_t{pels[i]} - zero;
        result.squares += static_cast<std::uint64_t>(deviation * deviation);
        ++result.count;
    }
    return result;
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(SumSquaredDeviations);

SquaresAndCount SumSquaredDeviations(const std::uint16_t* pels, std::size_t count, std::uint16_t zero,
                                     std::uint16_t threshold) {
    return HWY_DYNAMIC_DISPATCH(SumSquaredDeviations)(pels, count, zero, threshold);
}

}  // namespace tq::kernels
#endif
