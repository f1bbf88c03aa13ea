#include "measure/mura.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "core/numerics.h"
#include "kernels/mura.h"
#include "measure/rectangle_region.h"
#include "measure/span_consumers.h"
#include "tqimage/uniformity.h"

using namespace tq;

namespace {

constexpr std::int32_t kInvalidImage = -2;

/// Sum of |v - zero| over the pels from a threshold on, out of the sums on both sides of the zero level.
class MuraTotal {
  public:
    explicit MuraTotal(std::int32_t threshold)
        : counted_(threshold), bright_(std::max(threshold, kMuraZero)) {}

    void operator()(const Pel* pels, std::size_t count) {
        counted_(pels, count);
        bright_(pels, count);
    }

    std::uint64_t Count() const noexcept { return counted_.Count(); }
    /// Every term is an integer below 2^53, so the double is exact.
    double Result() const noexcept {
        const auto brightCount = static_cast<double>(bright_.Count());
        const double darkCount = static_cast<double>(counted_.Count()) - brightCount;
        const double above = bright_.Sum() - brightCount * kMuraZero;
        const double below = darkCount * kMuraZero - (counted_.Sum() - bright_.Sum());
        return above + below;
    }

  private:
    TotalAtLeast counted_;
    TotalAtLeast bright_;
};

/// Squares of the signal. An amount of at most 65535 - 32000 has a square below 2^31, so hosts that square in
/// 32-bit integers find the same; the sum is kept in 64 bits.
struct MuraSquares {
    std::int32_t threshold;
    kernels::SquaresAndCount total;

    void operator()(const Pel* pels, std::size_t count) {
        if (threshold > kLargestPel) return;
        const auto run = kernels::SumSquaredDeviations(pels, count, static_cast<Pel>(kMuraZero),
                                                       static_cast<Pel>(std::max(threshold, 0)));
        total.squares += run.squares;
        total.count += run.count;
    }
};

}  // namespace

double TQ_CALL tqGetTotalMuraInRegion(const TqImage* image, std::int32_t* count, std::int32_t left,
                                      std::int32_t top, std::int32_t right, std::int32_t bottom,
                                      std::int32_t threshold) {
    *count = 0;
    const Region region(image, {left, top, right, bottom});
    if (!region) return kInvalidImage;
    MuraTotal total(threshold);
    region.Feed(total);
    *count = static_cast<std::int32_t>(total.Count());
    return total.Result();
}

double TQ_CALL tqGetRMSMuraInRegion(const TqImage* image, std::int32_t* count, std::int32_t left,
                                    std::int32_t top, std::int32_t right, std::int32_t bottom,
                                    std::int32_t threshold) {
    *count = 0;
    const Region region(image, {left, top, right, bottom});
    if (!region) return kInvalidImage;
    MuraSquares found{threshold, {}};
    region.Feed(found);
    // Pels at the zero level are not counted, unlike in the total: hosts rely on it.
    if (found.total.count == 0) return 0.0;
    *count = static_cast<std::int32_t>(found.total.count);
    return std::sqrt(static_cast<double>(found.total.squares) / static_cast<double>(found.total.count));
}
