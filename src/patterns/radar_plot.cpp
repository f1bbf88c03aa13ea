#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "core/guard.h"
#include "core/image_view.h"
#include "core/numerics.h"
#include "patterns/azimuth.h"
#include "patterns/pattern_image.h"
#include "patterns/positions.h"
#include "tqimage/plots.h"

namespace tq {
namespace {

constexpr std::int32_t kBadArgument = -1;
constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoMemory = -3;

/// Samplers take a place of the polar image: column 0 <= col < cols, row 0 <= row <= rows - 1.
class NearestPolarPel {
  public:
    explicit NearestPolarPel(const ConstImageView& polar) noexcept : polar_(polar) {}
    Pel operator()(double col, double row) const noexcept {
        return polar_.At(NearestPel(col) % polar_.cols, NearestPel(row));
    }

  private:
    ConstImageView polar_;
};

/// The bilinear mean of the pels that have data.
class PolarMean {
  public:
    explicit PolarMean(const ConstImageView& polar) noexcept : polar_(polar) {}

    Pel operator()(double col, double row) const noexcept {
        const std::int32_t left = TruncToInt32(col);
        const std::int32_t right = left + 1 == polar_.cols ? 0 : left + 1;
        const std::int32_t top = TruncToInt32(row);
        const Pel* upper = polar_.Row(top);
        const Pel* lower = polar_.Row(std::min(top + 1, polar_.rows - 1));
        const double x = col - left;
        const double y = row - top;
        Mean mean;
        mean.Add(upper[left], (1.0 - x) * (1.0 - y));
        mean.Add(upper[right], x * (1.0 - y));
        mean.Add(lower[left], (1.0 - x) * y);
        mean.Add(lower[right], x * y);
        return mean.weight > 0.0 ? ClampToPel(TruncToInt32(mean.sum / mean.weight + 0.5)) : Pel{0};
    }

  private:
    struct Mean {
        double sum = 0.0;
        double weight = 0.0;

        void Add(Pel pel, double share) noexcept {
            sum += pel * share;
            weight += pel == 0 ? 0.0 : share;
        }
    };

    ConstImageView polar_;
};

template <class Sampler>
void FillDisc(const ConstImageView& polar, const ImageView& disc) {
    const Sampler sampler(polar);
    const AzimuthTable azimuths;
    const double radius = (disc.cols - 1) * 0.5;
    const double lastRow = polar.rows - 1;
    const double rowsPerPel = radius > 0.0 ? lastRow / radius : 0.0;
    for (std::int32_t row = 0; row < disc.rows; ++row) {
        Pel* pels = disc.Row(row);
        const double y = radius - row;
        for (std::int32_t col = 0; col < disc.cols; ++col) {
            const double x = col - radius;
            const double square = x * x + y * y;
            pels[col] = 0;
            if (square > radius * radius) continue;
            const double place = azimuths.Turns(x, y) * polar.cols;
            // The product of a turn just below 1 may round to all the columns, which is the first again.
            pels[col] =
                sampler(place < polar.cols ? place : 0.0, std::min(std::sqrt(square) * rowsPerPel, lastRow));
        }
    }
}

template <class Sampler>
std::int32_t CreateRadarPlot(TqImage** out, const TqImage* polar, std::int32_t size) {
    if (out == nullptr || !IsValidSide(size)) return kBadArgument;
    const ConstImageView source = LocateImage(polar);
    if (!source) return kInvalidImage;
    return Guarded(kNoMemory, [&] {
        OwnedImage disc = MakeDrawnImage(size, size, NewPels::kUnwritten);
        FillDisc<Sampler>(source, disc.View());
        disc.Header().LuxPerGrey = source.header->LuxPerGrey;
        CommitImage(out, std::move(disc));
        return 0;
    });
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqCreateRadarPlot(TqImage** out, const TqImage* polar, std::int32_t size) {
    return CreateRadarPlot<PolarMean>(out, polar, size);
}

std::int32_t TQ_CALL tqCreateRadarPlotNoInterp(TqImage** out, const TqImage* polar, std::int32_t size) {
    return CreateRadarPlot<NearestPolarPel>(out, polar, size);
}
