#include "kernels/pel_arithmetic.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/pel_arithmetic.cpp"
#include <hwy/foreach_target.h>
// Highway wants its own header after the loop over the targets.
#include <hwy/highway.h>

#include "kernels/pel_loops-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {

void AddConstant(const Pel* pels, Pel amount, Pel* out, std::size_t count) {
    MapPels(
        out, count, [=](auto d, auto v) { return hn::SaturatedAdd(v, hn::Set(d, amount)); },
        [=](Pel pel) { return ClampToPel(pel + amount); }, pels);
}

void SubtractConstant(const Pel* pels, Pel amount, Pel* out, std::size_t count) {
    MapPels(
        out, count, [=](auto d, auto v) { return hn::SaturatedSub(v, hn::Set(d, amount)); },
        [=](Pel pel) { return ClampToPel(pel - amount); }, pels);
}

void SubtractPels(const Pel* a, const Pel* b, Pel* out, std::size_t count) {
    MapPels(
        out, count, [](auto, auto va, auto vb) { return hn::SaturatedSub(va, vb); },
        [](Pel pa, Pel pb) { return ClampToPel(pa - pb); }, a, b);
}

void AddWrapped(const Pel* pels, Pel amount, Pel* out, std::size_t count) {
    MapPels(
        out, count, [=](auto d, auto v) { return hn::Add(v, hn::Set(d, amount)); },
        [=](Pel pel) { return WrapToPel(pel + amount); }, pels);
}

void SubtractFrom(Pel minuend, const Pel* pels, Pel* out, std::size_t count) {
    MapPels(
        out, count, [=](auto d, auto v) { return hn::Sub(hn::Set(d, minuend), v); },
        [=](Pel pel) { return WrapToPel(minuend - pel); }, pels);
}

void ReplaceUpTo(const Pel* pels, Pel threshold, Pel value, Pel* out, std::size_t count) {
    MapPels(
        out, count,
        [=](auto d, auto v) {
            const auto dark = hn::Eq(hn::Min(v, hn::Set(d, threshold)), v);
            const auto kept = hn::IfThenElse(dark, hn::Set(d, value), v);
            return hn::IfThenZeroElse(hn::Eq(v, hn::Zero(d)), kept);
        },
        [=](Pel pel) { return pel != 0 && pel <= threshold ? value : pel; }, pels);
}

void KeepAbove(const Pel* pels, Pel threshold, Pel* out, std::size_t count) {
    MapPels(
        out, count,
        [=](auto d, auto v) { return hn::IfThenZeroElse(hn::Eq(hn::Min(v, hn::Set(d, threshold)), v), v); },
        [=](Pel pel) { return pel > threshold ? pel : Pel{0}; }, pels);
}

void KeepWhereSet(const Pel* pels, const Pel* mask, Pel* out, std::size_t count) {
    MapPels(
        out, count,
        [](auto d, auto v, auto m) {
            return hn::IfThenZeroElse(hn::Eq(m, hn::Zero(d)), hn::Max(v, hn::Set(d, 1)));
        },
        [](Pel pel, Pel m) { return m == 0 ? Pel{0} : std::max(pel, Pel{1}); }, pels, mask);
}

void KeepWhereZero(const Pel* pels, const Pel* mask, Pel* out, std::size_t count) {
    MapPels(
        out, count,
        [](auto d, auto v, auto m) {
            return hn::IfThenElseZero(hn::Eq(m, hn::Zero(d)), hn::Max(v, hn::Set(d, 1)));
        },
        [](Pel pel, Pel m) { return m != 0 ? Pel{0} : std::max(pel, Pel{1}); }, pels, mask);
}

void ClearWhereSet(const Pel* pels, const Pel* mask, Pel* out, std::size_t count) {
    MapPels(
        out, count, [](auto d, auto v, auto m) { return hn::IfThenElseZero(hn::Eq(m, hn::Zero(d)), v); },
        [](Pel pel, Pel m) { return m != 0 ? Pel{0} : pel; }, pels, mask);
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include <cstring>

namespace tq::kernels {

HWY_EXPORT(AddConstant);
HWY_EXPORT(SubtractConstant);
HWY_EXPORT(SubtractPels);
HWY_EXPORT(AddWrapped);
HWY_EXPORT(SubtractFrom);
HWY_EXPORT(ReplaceUpTo);
HWY_EXPORT(KeepAbove);
HWY_EXPORT(KeepWhereSet);
HWY_EXPORT(KeepWhereZero);
HWY_EXPORT(ClearWhereSet);

void AddSaturated(const Pel* pels, Pel amount, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(AddConstant)(pels, amount, out, count);
}

void SubtractSaturated(const Pel* pels, Pel amount, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(SubtractConstant)(pels, amount, out, count);
}

void SubtractSaturated(const Pel* a, const Pel* b, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(SubtractPels)(a, b, out, count);
}

void AddWrapped(const Pel* pels, Pel amount, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(AddWrapped)(pels, amount, out, count);
}

void SubtractFrom(Pel minuend, const Pel* pels, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(SubtractFrom)(minuend, pels, out, count);
}

void ReplaceUpTo(const Pel* pels, Pel threshold, Pel value, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(ReplaceUpTo)(pels, threshold, value, out, count);
}

void KeepAbove(const Pel* pels, Pel threshold, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(KeepAbove)(pels, threshold, out, count);
}

void KeepMarked(const Pel* pels, const Pel* mask, Keep keep, Pel* out, std::size_t count) {
    if (keep == Keep::kWhereMaskIsSet) return HWY_DYNAMIC_DISPATCH(KeepWhereSet)(pels, mask, out, count);
    HWY_DYNAMIC_DISPATCH(KeepWhereZero)(pels, mask, out, count);
}

void ClearWhereSet(const Pel* pels, const Pel* mask, Pel* out, std::size_t count) {
    HWY_DYNAMIC_DISPATCH(ClearWhereSet)(pels, mask, out, count);
}

// Gather instructions are slower than single loads from a table of 128 KB, so that there is one form for all
// instruction sets; four pels go in and out as one word.
void LookUp(const Pel* pels, const Pel* table, Pel* out, std::size_t count) {
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        std::uint64_t four;
        std::memcpy(&four, pels + i, sizeof four);
        std::uint64_t found = table[four & 0xFFFF];
        found |= std::uint64_t{table[four >> 16 & 0xFFFF]} << 16;
        found |= std::uint64_t{table[four >> 32 & 0xFFFF]} << 32;
        found |= std::uint64_t{table[four >> 48]} << 48;
        std::memcpy(out + i, &found, sizeof found);
    }
    for (; i < count; ++i)
        out[i] = table[pels[i]];
}

// Eight bytes go out as one word.
void LookUp(const Pel* pels, const std::uint8_t* table, std::uint8_t* out, std::size_t count) {
    std::size_t i = 0;
    for (; i + 8 <= count; i += 8) {
        std::uint64_t found = 0;
        for (std::size_t k = 0; k < 8; k += 4) {
            std::uint64_t four;
            std::memcpy(&four, pels + i + k, sizeof four);
            const std::uint32_t bytes = static_cast<std::uint32_t>(table[four & 0xFFFF]) |
                                        static_cast<std::uint32_t>(table[four >> 16 & 0xFFFF]) << 8 |
                                        static_cast<std::uint32_t>(table[four >> 32 & 0xFFFF]) << 16 |
                                        static_cast<std::uint32_t>(table[four >> 48]) << 24;
            found |= std::uint64_t{bytes} << (8 * k);
        }
        std::memcpy(out + i, &found, sizeof found);
    }
    for (; i < count; ++i)
        out[i] = table[pels[i]];
}

}  // namespace tq::kernels
#endif
