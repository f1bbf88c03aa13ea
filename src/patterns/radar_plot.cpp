#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/image_view.h"
#include "core/numerics.h"
#include "core/replaced_image.h"
#include "patterns/azimuth.h"
#include "patterns/pattern_image.h"
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
        const std::int32_t nearest = Nearest(col);
        return polar_.At(nearest == polar_.cols ? 0 : nearest, Nearest(row));
    }

  private:
    /// NearestPel without a call of the C library: above 2^52 a double has no fraction, so the addition
    /// rounds it away, halves to the even number.
    static std::int32_t Nearest(double place) noexcept { return TruncToInt32((place + 0x1p52) - 0x1p52); }

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
        const Pel pels[] = {upper[left], upper[right], lower[left], lower[right]};
        const double shares[] = {(1.0 - x) * (1.0 - y), x * (1.0 - y), (1.0 - x) * y, x * y};
        double sum = 0.0;
        double weight = 0.0;
        bool complete = true;
        for (std::size_t i = 0; i < 4; ++i) {
            sum += pels[i] * shares[i];
            weight += pels[i] == 0 ? 0.0 : shares[i];
            complete = complete && pels[i] != 0;
        }
        if (complete) return ClampToPel(TruncToInt32(sum + 0.5));
        return weight > 0.0 ? ClampToPel(TruncToInt32(sum / weight + 0.5)) : Pel{0};
    }

  private:
    ConstImageView polar_;
};

/// A pel of the disc as the polar image sees it.
struct PolarPlace {
    double turns;
    double row;
};

/// The four quarters of a disc are mirror images, so azimuths and radii are computed for the upper right one.
template <class Sampler>
class DiscPainter {
  public:
    DiscPainter(const ConstImageView& polar, const ImageView& disc)
        : sampler_(polar),
          polarCols_(polar.cols),
          lastPolarRow_(polar.rows - 1),
          disc_(disc),
          radius_((disc.cols - 1) * 0.5) {
        quarter_.reserve(static_cast<std::size_t>(disc.cols));
    }

    void Paint() {
        for (std::int32_t row = 0; row < (disc_.rows + 1) / 2; ++row) {
            FindPlaces(radius_ - row);
            const std::int32_t below = disc_.rows - 1 - row;
            PaintRow(disc_.Row(row), [](double turns) { return turns; });
            // A direction just below the first one would round to the full turn.
            const auto downward = [](double turns) { return 1.0 - turns < 1.0 ? 1.0 - turns : 0.0; };
            if (below != row) PaintRow(disc_.Row(below), downward);
        }
    }

  private:
    std::int32_t FirstRightCol() const noexcept { return disc_.cols / 2; }

    /// Those of a row in the upper half, from the middle to the rim.
    void FindPlaces(double y) {
        const double rowsPerPel = radius_ > 0.0 ? lastPolarRow_ / radius_ : 0.0;
        quarter_.clear();
        for (std::int32_t col = FirstRightCol(); col < disc_.cols; ++col) {
            const double x = col - radius_;
            const double square = x * x + y * y;
            if (square > radius_ * radius_) return;
            quarter_.push_back(
                {azimuths_.Turns(x, y), std::min(std::sqrt(square) * rowsPerPel, lastPolarRow_)});
        }
    }

    template <class Turn>
    void PaintRow(Pel* pels, Turn&& turn) const noexcept {
        std::fill_n(pels, disc_.cols, Pel{0});
        std::int32_t right = FirstRightCol();
        std::int32_t left = disc_.cols - 1 - right;
        for (const PolarPlace& place : quarter_) {
            pels[left--] = Sample(turn(0.5 - place.turns), place.row);
            // The middle column is its own mirror image, and belongs to the right.
            pels[right++] = Sample(turn(place.turns), place.row);
        }
    }

    Pel Sample(double turns, double row) const noexcept {
        const double col = turns * polarCols_;
        // The product of a turn just below 1 may round to all the columns, which is the first again.
        return sampler_(col < polarCols_ ? col : 0.0, row);
    }

    Sampler sampler_;
    AzimuthTable azimuths_;
    double polarCols_;
    double lastPolarRow_;
    ImageView disc_;
    double radius_;
    std::vector<PolarPlace> quarter_;
};

template <class Sampler>
std::int32_t CreateRadarPlot(TqImage** out, const TqImage* polar, std::int32_t size) {
    if (out == nullptr || !IsValidSide(size)) return kBadArgument;
    const ConstImageView source = LocateImage(polar);
    if (!source) return kInvalidImage;
    return ReplaceImage(out, kNoMemory, [&] {
        OwnedImage disc = MakeDrawnImage(size, size, NewPels::kUnwritten);
        DiscPainter<Sampler>(source, disc.View()).Paint();
        disc.Header().LuxPerGrey = source.header->LuxPerGrey;
        return disc;
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
