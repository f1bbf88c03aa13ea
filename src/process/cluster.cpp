#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/numerics.h"
#include "core/out_value.h"
#include "tqimage/clustering.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoMemory = -3;

/// Finds the first cluster whose seed is near a pel without asking all of them. Seeds are sorted into cells
/// as large as the limit, so that a near seed lies in the pel's cell or one next to it; and pels come row by
/// row, so it lies in the current row of cells or the one above. Seeds keep more than the limit from each
/// other, so a cell holds a handful at most.
class SeedGrid {
  public:
    SeedGrid(std::int32_t limit, std::int32_t cols)
        : limit_(static_cast<float>(limit)),
          cell_(std::clamp(limit, 1, kMaxSide)),
          above_(static_cast<std::size_t>(cols / cell_) + 1),
          current_(above_.size()) {}

    void MoveTo(std::int32_t row) noexcept {
        if (row / cell_ == cellRow_) return;
        cellRow_ = row / cell_;
        std::swap(above_, current_);
        for (Cell& cell : current_)
            cell.clear();
    }

    /// The smallest label of a seed near the pel, 0 for none.
    std::int32_t Find(std::int32_t col, std::int32_t row) const noexcept {
        const auto at = static_cast<std::size_t>(col / cell_);
        std::int32_t label = 0;
        for (const auto* cells : {&above_, &current_}) {
            for (std::size_t i = at == 0 ? 0 : at - 1; i <= std::min(at + 1, cells->size() - 1); ++i) {
                for (const Seed& seed : (*cells)[i]) {
                    if (label != 0 && seed.label >= label) continue;
                    if (Near(seed, col, row)) label = seed.label;
                }
            }
        }
        return label;
    }

    void Add(std::int32_t col, std::int32_t row, std::int32_t label) {
        current_[static_cast<std::size_t>(col / cell_)].push_back({col, row, label});
    }

  private:
    struct Seed {
        std::int32_t col;
        std::int32_t row;
        std::int32_t label;
    };
    using Cell = std::vector<Seed>;

    /// Distances are single precision numbers: above 4096 pels they round, and rounded they are compared.
    bool Near(const Seed& seed, std::int32_t col, std::int32_t row) const noexcept {
        const auto dx = static_cast<float>(col - seed.col);
        const auto dy = static_cast<float>(row - seed.row);
        return std::sqrt(dx * dx + dy * dy) <= limit_;
    }

    float limit_;
    std::int32_t cell_;
    std::int32_t cellRow_ = 0;
    std::vector<Cell> above_;
    std::vector<Cell> current_;
};

std::int32_t LabelPels(const ConstImageView& view, std::int32_t limit, const ImageView& out) {
    SeedGrid seeds(limit, view.cols);
    std::int32_t count = 0;
    for (std::int32_t row = 0; row < view.rows; ++row) {
        seeds.MoveTo(row);
        for (std::int32_t col = 0; col < view.cols; ++col) {
            if (view.At(col, row) == 0) continue;
            // No two pels are closer than 1: below that every pel is a cluster.
            std::int32_t label = limit < 1 ? 0 : seeds.Find(col, row);
            if (label == 0) {
                label = ++count;
                if (limit >= 1) seeds.Add(col, row, label);
            }
            out.At(col, row) = ClampToPel(label);
        }
    }
    return count;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqClusterImage(TqImage** out, const TqImage* image, std::int32_t distanceLimit,
                                    std::int32_t* clusterCount) {
    const ConstImageView view = LocateImage(image);
    if (out == nullptr || !view) return kInvalidImage;
    return Guarded(kNoMemory, [&] {
        OwnedImage result(view, NewPels::kZero);
        const std::int32_t count = LabelPels(view, distanceLimit, result.View());
        result.Header().TotalPelValue = count;
        result.Header().MaxPelValue = static_cast<float>(count);
        CommitImage(out, std::move(result));
        StoreIfAsked(clusterCount, count);
        return 0;
    });
}
