#include "kernels/radial_sums.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/radial_sums.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

constexpr std::size_t kMostLanes = 8;
using D = hn::CappedTag<double, kMostLanes>;
using V = hn::Vec<D>;

/// Natural logarithm of normal positive numbers: x = 2^k m with m around 1, and ln m = 2 artanh s with
/// s = (m - 1) / (m + 1), |s| < 0.172. The first term of the series that is left out is below 2^-56.
HWY_INLINE V Log(D d, V x) {
    const hn::RebindToUnsigned<D> du;
    constexpr std::uint64_t kRootOfHalf = 0x3FE6A09E667F3BCDu;  // sqrt(1/2) as bits
    constexpr std::uint64_t kOneBits = 0x3FF0000000000000u;
    constexpr std::uint64_t kTwo52 = 0x4330000000000000u;  // 2^52: its last bits count in ones
    const auto bits = hn::BitCast(du, x);
    const auto shifted = hn::Add(bits, hn::Set(du, kOneBits - kRootOfHalf));
    const auto biased = hn::ShiftRight<52>(shifted);
    const auto k =
        hn::Sub(hn::BitCast(d, hn::Or(biased, hn::Set(du, kTwo52))), hn::Set(d, 4503599627370496.0 + 1023.0));
    const auto mantissa = hn::Add(hn::Sub(bits, hn::ShiftLeft<52>(biased)), hn::Set(du, kOneBits));
    const auto m = hn::BitCast(d, mantissa);
    const auto one = hn::Set(d, 1.0);
    const auto s = hn::Div(hn::Sub(m, one), hn::Add(m, one));
    const auto z = hn::Mul(s, s);
    auto series = hn::Set(d, 1.0 / 21);
    for (const double term :
         {1.0 / 19, 1.0 / 17, 1.0 / 15, 1.0 / 13, 1.0 / 11, 1.0 / 9, 1.0 / 7, 1.0 / 5, 1.0 / 3}) {
        series = hn::Add(hn::Mul(series, z), hn::Set(d, term));
    }
    const auto twice = hn::Add(s, s);
    const auto logOfM = hn::Add(twice, hn::Mul(twice, hn::Mul(z, series)));
    return hn::Add(hn::Mul(k, hn::Set(d, 0.6931471805599453094)), logOfM);
}

HWY_INLINE V SquaredDistance(D d, V x, V y, double centerX, double centerY) {
    const auto dx = hn::Sub(x, hn::Set(d, centerX));
    const auto dy = hn::Sub(y, hn::Set(d, centerY));
    return hn::Max(hn::Add(hn::Mul(dx, dx), hn::Mul(dy, dy)), hn::Set(d, kLeastSquare));
}

/// Calls body(x, y, first) for vectors of places; store(vector, out, first) is handed to it. What is left at
/// the end goes through the same code in a buffer, whatever its number.
template <class Body>
HWY_INLINE void ForPlaces(const Places& places, Body body) {
    const D d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t i = 0;
    for (; i + lanes <= places.count; i += lanes) {
        body(hn::LoadU(d, places.x + i), hn::LoadU(d, places.y + i),
             [&](V value, double* out) HWY_ATTR { hn::StoreU(value, d, out + i); });
    }
    if (i == places.count) return;
    double x[kMostLanes] = {};
    double y[kMostLanes] = {};
    double values[kMostLanes];
    std::copy(places.x + i, places.x + places.count, x);
    std::copy(places.y + i, places.y + places.count, y);
    body(hn::LoadU(d, x), hn::LoadU(d, y), [&](V value, double* out) HWY_ATTR {
        hn::StoreU(value, d, values);
        std::copy(values, values + (places.count - i), out + i);
    });
}

void LogRadialSums(const Centers& centers, const Places& places, double* out) {
    const D d;
    ForPlaces(places, [&](V x, V y, auto store) HWY_ATTR {
        auto total = hn::Zero(d);
        for (std::size_t first = 0; first < centers.count; first += kCenterGroup) {
            const std::size_t end = std::min(first + kCenterGroup, centers.count);
            auto group = hn::Zero(d);
            for (std::size_t c = first; c < end; ++c) {
                const auto square = SquaredDistance(d, x, y, centers.x[c], centers.y[c]);
                const auto term = hn::Mul(square, Log(d, square));
                group = hn::Add(group, hn::Mul(hn::Set(d, centers.weight[c]), term));
            }
            total = hn::Add(total, group);
        }
        store(total, out);
    });
}

void InverseSquareSums(const Centers& centers, const Places& places, double* sums, double* norms) {
    const D d;
    ForPlaces(places, [&](V x, V y, auto store) HWY_ATTR {
        auto sum = hn::Zero(d);
        auto norm = hn::Zero(d);
        for (std::size_t first = 0; first < centers.count; first += kCenterGroup) {
            const std::size_t end = std::min(first + kCenterGroup, centers.count);
            auto groupSum = hn::Zero(d);
            auto groupNorm = hn::Zero(d);
            for (std::size_t c = first; c < end; ++c) {
                const auto square = SquaredDistance(d, x, y, centers.x[c], centers.y[c]);
                const auto inverse = hn::Div(hn::Set(d, 1.0), square);
                groupSum = hn::Add(groupSum, hn::Mul(hn::Set(d, centers.weight[c]), inverse));
                groupNorm = hn::Add(groupNorm, inverse);
            }
            sum = hn::Add(sum, groupSum);
            norm = hn::Add(norm, groupNorm);
        }
        store(sum, sums);
        store(norm, norms);
    });
}

/// The squared distance of the thirteenth nearest centre, infinite when there are fewer: an insertion into
/// thirteen sorted places, in every lane at once.
HWY_INLINE V BoundingSquare(D d, const Centers& centers, V x, V y) {
    const auto infinity = hn::Set(d, std::numeric_limits<double>::infinity());
    V nearest[kBoundingRank];
    for (V& square : nearest)
        square = infinity;
    for (std::size_t c = 0; c < centers.count; ++c) {
        auto square = SquaredDistance(d, x, y, centers.x[c], centers.y[c]);
        for (V& best : nearest) {
            const auto less = hn::Min(best, square);
            square = hn::Max(best, square);
            best = less;
        }
    }
    return nearest[kBoundingRank - 1];
}

void NeighbourMeans(const Centers& centers, const Places& places, double* out) {
    const D d;
    const auto one = hn::Set(d, 1.0);
    ForPlaces(places, [&](V x, V y, auto store) HWY_ATTR {
        const auto bound = BoundingSquare(d, centers, x, y);
        const auto edge = hn::Div(one, hn::Sqrt(bound));
        auto sum = hn::Zero(d);
        auto norm = hn::Zero(d);
        auto edgeSum = hn::Zero(d);
        auto edgeNorm = hn::Zero(d);
        for (std::size_t c = 0; c < centers.count; ++c) {
            const auto square = SquaredDistance(d, x, y, centers.x[c], centers.y[c]);
            const auto nearer = hn::Max(hn::Sub(hn::Div(one, hn::Sqrt(square)), edge), hn::Zero(d));
            const auto weight = hn::Mul(nearer, nearer);
            const auto value = hn::Set(d, centers.weight[c]);
            sum = hn::Add(sum, hn::Mul(weight, value));
            norm = hn::Add(norm, weight);
            const auto within = hn::IfThenElseZero(hn::Le(square, bound), one);
            edgeSum = hn::Add(edgeSum, hn::Mul(within, value));
            edgeNorm = hn::Add(edgeNorm, within);
        }
        const auto all = hn::Eq(norm, hn::Zero(d));
        store(hn::Div(hn::IfThenElse(all, edgeSum, sum), hn::IfThenElse(all, edgeNorm, norm)), out);
    });
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(LogRadialSums);
HWY_EXPORT(InverseSquareSums);
HWY_EXPORT(NeighbourMeans);

void LogRadialSums(const Centers& centers, const Places& places, double* out) {
    HWY_DYNAMIC_DISPATCH(LogRadialSums)(centers, places, out);
}

void InverseSquareSums(const Centers& centers, const Places& places, double* sums, double* norms) {
    HWY_DYNAMIC_DISPATCH(InverseSquareSums)(centers, places, sums, norms);
}

void NeighbourMeans(const Centers& centers, const Places& places, double* out) {
    HWY_DYNAMIC_DISPATCH(NeighbourMeans)(centers, places, out);
}

}  // namespace tq::kernels
#endif
