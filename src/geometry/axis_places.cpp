#include "geometry/axis_places.h"

#include <utility>

#include "kernels/bilinear.h"

namespace tq {
namespace {

/// Two neighbouring rows of the source as the columns of the result need them. A row that two rows of the
/// result lie next to is paired up once.
class PairedRows {
  public:
    PairedRows(const ConstImageView& source, const AxisPlaces& cols)
        : source_(source),
          groups_(kernels::GroupPlaces(cols.cells.data(), cols.cells.size(), source.cols)),
          places_{cols.cells.data(), cols.cells.size(), source.cols, groups_.data(), groups_.size()},
          weights_(cols.weights.data()),
          near_(places_.count),
          far_(places_.count) {}
    PairedRows(const PairedRows&) = delete;
    PairedRows& operator=(const PairedRows&) = delete;

    void GoTo(std::int32_t row) noexcept {
        if (row == farRow_ && row != nearRow_) {
            std::swap(near_, far_);
            std::swap(nearRow_, farRow_);
        }
        Load(row, nearRow_, near_);
        // An axis of one pel has that pel only.
        Load(std::min(row + 1, source_.rows - 1), farRow_, far_);
    }
    void Blend(double fy, double bias, Pel* out) const noexcept {
        kernels::BlendRow(near_.data(), far_.data(), weights_, places_.count, fy, bias, out);
    }

  private:
    void Load(std::int32_t row, std::int32_t& held, std::vector<kernels::PelPair>& pairs) const noexcept {
        if (row == held) return;
        kernels::PairUp(source_.Row(row), places_, pairs.data());
        held = row;
    }

    ConstImageView source_;
    std::vector<kernels::PlaceGroup> groups_;
    kernels::RowPlaces places_;
    const double* weights_;
    std::vector<kernels::PelPair> near_;
    std::vector<kernels::PelPair> far_;
    std::int32_t nearRow_ = -1;
    std::int32_t farRow_ = -1;
};

}  // namespace

void ResampleImage(const ConstImageView& source, const AxisPlaces& cols, const AxisPlaces& rows,
                   PelRounding rounding, const ImageView& out) {
    PairedRows pairs(source, cols);
    const double bias = rounding == PelRounding::kNearest ? 0.5 : 0.0;
    for (std::int32_t row = 0; row < out.rows; ++row) {
        Pel* pels = out.Row(row);
        if (cols.cells.empty() || !rows.Contains(row)) {
            std::fill_n(pels, out.cols, Pel{0});
            continue;
        }
        const auto at = static_cast<std::size_t>(row - rows.first);
        pairs.GoTo(rows.cells[at]);
        std::fill_n(pels, cols.first, Pel{0});
        pairs.Blend(rows.weights[at], bias, pels + cols.first);
        std::fill(pels + cols.End(), pels + out.cols, Pel{0});
    }
}

}  // namespace tq
