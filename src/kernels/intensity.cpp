#include "kernels/intensity.h"

#include <cmath>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/intensity.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "kernels/vectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tq::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

void AddBlockIntensities(const double* sums, std::size_t count, const SinglePrecisionAxis& axis,
                         std::int32_t row, std::int32_t firstCol, double blockPels, double luxPerGrey,
                         IntensitySums& total) {
    const hn::CappedTag<double, IntensitySums::kLanes> d;
    const hn::Rebind<float, decltype(d)> f;
    const hn::Rebind<std::int32_t, decltype(d)> i32;
    const std::size_t lanes = hn::Lanes(d);
    const float y = (axis.centerRow - static_cast<float>(row)) / axis.pelsPerMeterY;
    const float squaredY = y * y;
    const double squaredDistance = axis.distance * axis.distance;
    const double scale = luxPerGrey / (blockPels * axis.distance);

    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const auto col = hn::Iota(i32, firstCol + static_cast<std::int32_t>(i));
        const auto x = hn::Div(hn::Sub(hn::ConvertTo(f, col), hn::Set(f, axis.centerCol)),
                               hn::Set(f, axis.pelsPerMeterX));
        const auto squaredRho = hn::Add(hn::Mul(x, x), hn::Set(f, squaredY));
        const auto squaredRange = hn::Add(hn::Set(d, squaredDistance), hn::PromoteTo(d, squaredRho));
        const auto cubedRange = hn::Mul(squaredRange, hn::Sqrt(squaredRange));
        const auto grey = hn::Mul(hn::LoadU(d, sums + i), hn::Set(d, scale));
        const auto intensity = hn::PromoteTo(d, ToSingle(d, hn::Mul(cubedRange, grey)));
        double* const running = total.lanes + i % IntensitySums::kLanes;
        hn::StoreU(hn::Add(hn::LoadU(d, running), intensity), d, running);
    }
    for (; i < count; ++i) {
        const auto col = static_cast<float>(firstCol + static_cast<std::int32_t>(i));
        const float x = (col - axis.centerCol) / axis.pelsPerMeterX;
        const float squaredRho = x * x + squaredY;
        const double squaredRange = squaredDistance + static_cast<double>(squaredRho);
        const double cubedRange = squaredRange * std::sqrt(squaredRange);
        const auto intensity = static_cast<float>(cubedRange * (sums[i] * scale));
        total.lanes[i % IntensitySums::kLanes] += static_cast<double>(intensity);
    }
}

}  // namespace tq::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tq::kernels {

HWY_EXPORT(AddBlockIntensities);

void AddBlockIntensities(const double* sums, std::size_t count, const SinglePrecisionAxis& axis,
                         std::int32_t row, std::int32_t firstCol, double blockPels, double luxPerGrey,
                         IntensitySums& total) {
    HWY_DYNAMIC_DISPATCH(AddBlockIntensities)
    (sums, count, axis, row, firstCol, blockPels, luxPerGrey, total);
}

}  // namespace tq::kernels
#endif
