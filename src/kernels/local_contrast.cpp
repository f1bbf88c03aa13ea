#include "kernels/local_contrast.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/local_contrast.cpp"
#include <hwy/foreach_target.h>
// Highway wants its own header after the loop over the targets.
#include <hwy/highway.h>

#include <algorithm>
#include <limits>

#include "kernels/vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {

void SurroundDifferences(const SurroundRow& row, std::size_t count, double* out) {
    ForEachVector(count, [&](auto d, std::size_t i) {
        const auto load = [&](const double* from) { return hn::LoadU(d, from + i); };
        const auto innerSum = load(row.innerSums), innerCount = load(row.innerCounts);
        const auto around = hn::Sub(load(row.outerCounts), innerCount);
        const auto area = hn::Sub(hn::Mul(load(row.outerCols), hn::Set(d, row.outerRows)),
                                  hn::Mul(load(row.innerCols), hn::Set(d, row.innerRows)));
        const auto enough = hn::And(hn::Gt(around, hn::Zero(d)), hn::Ge(hn::Add(around, around), area));
        const auto difference =
            hn::Sub(hn::Div(innerSum, innerCount), hn::Div(hn::Sub(load(row.outerSums), innerSum), around));
        const auto nothing = hn::Set(d, std::numeric_limits<double>::quiet_NaN());
        hn::StoreU(hn::IfThenElse(enough, difference, nothing), d, out + i);
    });
}

void KeepLargerDifferences(const double* here, const double* ahead, const double* behind, std::size_t count,
                           double* out) {
    ForEachVector(count, [&](auto d, std::size_t i) {
        const auto both = hn::Add(hn::LoadU(d, ahead + i), hn::LoadU(d, behind + i));
        const auto found = hn::Sub(hn::LoadU(d, here + i), hn::Mul(hn::Set(d, 0.5), both));
        const auto kept = hn::LoadU(d, out + i);
        const auto isNumber = hn::Eq(found, found);
        const auto keeps = hn::Le(hn::Abs(found), hn::Abs(kept));
        hn::StoreU(hn::IfThenElse(hn::AndNot(keeps, isNumber), found, kept), d, out + i);
    });
}

template <class D>
HWY_INLINE auto Squares(D, const std::uint16_t* row) {
    const auto pels = hn::PromoteTo(hn::Rebind<std::uint32_t, D>(), hn::LoadU(U16<D>(), row));
    return hn::PromoteTo(hn::RebindToUnsigned<D>(), hn::Mul(pels, pels));
}

void AddSquares(std::uint64_t* columns, const std::uint16_t* row, std::size_t count) {
    ForEachVector(count, [&](auto d, std::size_t i) {
        const hn::RebindToUnsigned<decltype(d)> u64;
        hn::StoreU(hn::Add(hn::LoadU(u64, columns + i), Squares(d, row + i)), u64, columns + i);
    });
}

void SubtractSquares(std::uint64_t* columns, const std::uint16_t* row, std::size_t count) {
    ForEachVector(count, [&](auto d, std::size_t i) {
        const hn::RebindToUnsigned<decltype(d)> u64;
        hn::StoreU(hn::Sub(hn::LoadU(u64, columns + i), Squares(d, row + i)), u64, columns + i);
    });
}

/// Integers below 2^52 as doubles: they are the mantissa of 2^52 and more.
template <class D>
HWY_INLINE hn::Vec<D> SmallToDouble(D d, hn::Vec<hn::RebindToUnsigned<D>> value) {
    const auto offset = hn::Set(d, 0x1p52);
    return hn::Sub(hn::BitCast(d, hn::Or(value, hn::BitCast(hn::RebindToUnsigned<D>(), offset))), offset);
}

void WindowDeviations(const double* sums, const double* counts, const std::uint64_t* squares,
                      std::size_t width, std::size_t count, double* out) {
    ForEachVector(count, [&](auto d, std::size_t i) {
        const hn::RebindToUnsigned<decltype(d)> u64;
        const auto sum = hn::LoadU(d, sums + i);
        const auto n = hn::Max(hn::LoadU(d, counts + i), hn::Set(d, 1.0));
        const auto squared =
            SmallToDouble(d, hn::Sub(hn::LoadU(u64, squares + i + width), hn::LoadU(u64, squares + i)));
        const auto pivot = hn::Floor(hn::Div(hn::Add(sum, hn::Floor(hn::Mul(n, hn::Set(d, 0.5)))), n));
        const auto shiftedSum = hn::Sub(sum, hn::Mul(n, pivot));
        const auto shiftedSquares =
            hn::Add(hn::Sub(squared, hn::Mul(hn::Add(pivot, pivot), sum)), hn::Mul(hn::Mul(n, pivot), pivot));
        const auto scaledVariance = hn::Sub(hn::Mul(n, shiftedSquares), hn::Mul(shiftedSum, shiftedSum));
        hn::StoreU(hn::Sqrt(hn::Div(scaledVariance, hn::Mul(n, n))), d, out + i);
    });
}

/// Where there is something to tell about a pel that is not 0.
template <class D>
HWY_INLINE hn::Mask<D> Tells(D d, const std::uint16_t* pels, hn::Vec<D> value) {
    return hn::And(hn::Ne(LoadPels(d, pels), hn::Zero(d)), hn::Eq(value, value));
}

double LargestMagnitude(const std::uint16_t* pels, const double* values, std::size_t count, double start) {
    const auto magnitudes = [&](auto d, std::size_t i) {
        const auto value = hn::LoadU(d, values + i);
        return hn::IfThenElseZero(Tells(d, pels + i, value), hn::Abs(value));
    };
    const Wide d;
    auto best = hn::Set(d, start);
    std::size_t i = 0;
    for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d))
        best = hn::Max(best, magnitudes(d, i));
    double largest = hn::GetLane(hn::MaxOfLanes(d, best));
    for (; i < count; ++i)
        largest = std::max(largest, hn::GetLane(magnitudes(Single(), i)));
    return largest;
}

template <class D>
HWY_INLINE hn::Vec<D> Scaled(D d, hn::Vec<D> value, const ValueScale& scale) {
    return hn::Div(hn::Mul(value, hn::Set(d, scale.greys)), hn::Set(d, scale.largest));
}

void WriteMagnitudes(const std::uint16_t* pels, const double* values, std::size_t count,
                     const ValueScale& scale, std::uint16_t* out) {
    ForEachVector(count, [&](auto d, std::size_t i) {
        const auto value = hn::LoadU(d, values + i);
        StorePels(d, hn::IfThenElseZero(Tells(d, pels + i, value), Scaled(d, value, scale)), out + i);
    });
}

void WriteSigned(const std::uint16_t* pels, const double* values, std::size_t count, const ValueScale& scale,
                 std::uint16_t* out) {
    ForEachVector(count, [&](auto d, std::size_t i) {
        const auto value = hn::LoadU(d, values + i);
        // Beside 1.5 * 2^52 a double has no room for a fraction: the sum is rounded to a whole number.
        const auto whole = hn::Set(d, 0x1.8p52);
        const auto steps = hn::Sub(hn::Add(Scaled(d, value, scale), whole), whole);
        const auto grey = hn::Add(steps, hn::Set(d, scale.greys));
        StorePels(d, hn::IfThenElseZero(Tells(d, pels + i, value), grey), out + i);
    });
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(SurroundDifferences);
HWY_EXPORT(KeepLargerDifferences);
HWY_EXPORT(AddSquares);
HWY_EXPORT(SubtractSquares);
HWY_EXPORT(WindowDeviations);
HWY_EXPORT(LargestMagnitude);
HWY_EXPORT(WriteMagnitudes);
HWY_EXPORT(WriteSigned);

void SurroundDifferences(const SurroundRow& row, std::size_t count, double* out) {
    HWY_DYNAMIC_DISPATCH(SurroundDifferences)(row, count, out);
}

void KeepLargerDifferences(const double* here, const double* ahead, const double* behind, std::size_t count,
                           double* out) {
    HWY_DYNAMIC_DISPATCH(KeepLargerDifferences)(here, ahead, behind, count, out);
}

void AddSquares(std::uint64_t* columns, const std::uint16_t* row, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(AddSquares)(columns, row, count);
}

void SubtractSquares(std::uint64_t* columns, const std::uint16_t* row, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(SubtractSquares)(columns, row, count);
}

void WindowDeviations(const double* sums, const double* counts, const std::uint64_t* squares,
                      std::size_t width, std::size_t count, double* out) {
    HWY_DYNAMIC_DISPATCH(WindowDeviations)(sums, counts, squares, width, count, out);
}

double LargestMagnitude(const std::uint16_t* pels, const double* values, std::size_t count, double start) {
    return HWY_DYNAMIC_DISPATCH(LargestMagnitude)(pels, values, count, start);
}

void WriteMagnitudes(const std::uint16_t* pels, const double* values, std::size_t count,
                     const ValueScale& scale, std::uint16_t* out) {
    HWY_DYNAMIC_DISPATCH(WriteMagnitudes)(pels, values, count, scale, out);
}

void WriteSigned(const std::uint16_t* pels, const double* values, std::size_t count, const ValueScale& scale,
                 std::uint16_t* out) {
    HWY_DYNAMIC_DISPATCH(WriteSigned)(pels, values, count, scale, out);
}

}  // namespace tq::kernels
#endif
