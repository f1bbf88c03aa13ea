#include "kernels/bilinear.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/bilinear.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "kernels/bilinear-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

void PairUp(const Pel* row, const RowPlaces& places, PelPair* pairs) {
    std::size_t i = 0;
// Without an instruction for it a shuffle is slower than the loads it replaces.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_SSE2
    const hn::FixedTag<std::uint8_t, sizeof(PlaceGroup::bytes)> d;
    for (std::size_t g = 0; g < places.groupCount; ++g, i += PlaceGroup::kPlaces) {
        const PlaceGroup& group = places.groups[g];
        const auto pels = hn::LoadU(d, reinterpret_cast<const std::uint8_t*>(row + group.first));
        const auto four = hn::TableLookupBytes(pels, hn::LoadU(d, group.bytes));
        hn::StoreU(four, d, reinterpret_cast<std::uint8_t*>(pairs + i));
    }
#endif
    if (places.cols == 1) {
        std::fill_n(pairs, places.count, MakePair(row, 0));
        return;
    }
    for (; i < places.count; ++i)
        pairs[i] = MakePair(row + places.cells[i], 1);
}

void BlendRow(const PelPair* near, const PelPair* far, const double* weights, std::size_t count, double fy,
              double bias, Pel* out) {
    std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
    const Numbers d;
    const hn::Rebind<PelPair, Numbers> pairs;
    const std::size_t lanes = hn::Lanes(d);
    const auto down = hn::Set(d, fy);
    const auto half = hn::Set(d, bias);
    for (; i + lanes <= count; i += lanes) {
        const auto value = BlendPairs(hn::LoadU(pairs, near + i), hn::LoadU(pairs, far + i),
                                      hn::LoadU(d, weights + i), down);
        hn::StoreU(WrapToPels(hn::Add(value, half)), hn::Rebind<Pel, Numbers>(), out + i);
    }
#endif
    for (; i < count; ++i)
        out[i] = WrapToPel(TruncToInt32(BlendPairs(near[i], far[i], weights[i], fy) + bias));
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(PairUp);
HWY_EXPORT(BlendRow);

std::vector<PlaceGroup> GroupPlaces(const std::int32_t* cells, std::size_t count, std::int32_t cols) {
    std::vector<PlaceGroup> groups;
    if (cols < PlaceGroup::kReach) return groups;
    groups.reserve(count / PlaceGroup::kPlaces);
    for (std::size_t i = 0; i + PlaceGroup::kPlaces <= count; i += PlaceGroup::kPlaces) {
        const auto [low, high] = std::minmax_element(cells + i, cells + i + PlaceGroup::kPlaces);
        if (*high + 1 - *low >= PlaceGroup::kReach) break;
        PlaceGroup group{};
        group.first = std::min(*low, cols - PlaceGroup::kReach);
        for (std::size_t byte = 0; byte < sizeof group.bytes; ++byte) {
            const std::int32_t cell = cells[i + byte / sizeof(PelPair)] - group.first;
            group.bytes[byte] = static_cast<std::uint8_t>(static_cast<std::size_t>(cell) * sizeof(Pel) +
                                                          byte % sizeof(PelPair));
        }
        groups.push_back(group);
    }
    return groups;
}

void PairUp(const Pel* row, const RowPlaces& places, PelPair* pairs) {
    HWY_DYNAMIC_DISPATCH(PairUp)(row, places, pairs);
}

void BlendRow(const PelPair* near, const PelPair* far, const double* weights, std::size_t count, double fy,
              double bias, Pel* out) {
    HWY_DYNAMIC_DISPATCH(BlendRow)(near, far, weights, count, fy, bias, out);
}

}  // namespace tq::kernels
#endif
