#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/numerics.h"
#include "core/rectangle.h"
#include "measure/block_sweep.h"
#include "tqimage/appending.h"

using namespace tq;

namespace {

constexpr std::int32_t kOk = 0;
constexpr std::int32_t kInvalidAccumulated = -2;
constexpr std::int32_t kInvalidAdded = -3;
constexpr std::int32_t kNotJoined = -4;
constexpr std::int32_t kNotSmoothed = -5;

/// Along one axis: the size of the joined image and where the two begin in it.
struct JoinedAxis {
    std::int32_t pels = 0;
    std::int32_t first = 0;
    std::int32_t second = 0;
};

std::optional<JoinedAxis> JoinAxis(float center1, std::int32_t pels1, float center2, std::int32_t pels2) {
    if (!std::isfinite(center1) || !std::isfinite(center2)) return {};
    const double center = std::max(center1, center2);
    const double rest = std::max(static_cast<double>(pels1) - center1, static_cast<double>(pels2) - center2);
    // Neither image then starts beyond this either, so the sums below are small.
    if (!(center + rest < kMaxSide + 1)) return {};
    JoinedAxis axis;
    axis.first = TruncToInt32(center - center1);
    axis.second = TruncToInt32(center - center2);
    // Each image fits inside the truncated extent, unless a sum was rounded downwards.
    axis.pels = std::max({TruncToInt32(center + rest), axis.first + pels1, axis.second + pels2});
    if (!IsValidSide(axis.pels)) return {};
    return axis;
}

/// An image with its place in the joined one.
struct Piece {
    ImageView image;
    std::int32_t left;
    std::int32_t top;

    Rect Place() const noexcept { return {left, top, left + image.cols - 1, top + image.rows - 1}; }
    Pel* At(std::int32_t col, std::int32_t row) const noexcept { return image.Row(row - top) + (col - left); }
};

void ScaleTo(double luxPerGrey, const ImageView& image) noexcept {
    const double own = image.header->LuxPerGrey;
    if (own == luxPerGrey) return;
    const double factor = own / luxPerGrey;
    std::transform(image.pels, image.pels + image.Count(), image.pels,
                   [=](Pel pel) { return ClampToPel(TruncToInt32(pel * factor)); });
}

void Paste(const Piece& piece, const ImageView& joined) noexcept {
    for (std::int32_t row = 0; row < piece.image.rows; ++row)
        std::copy_n(piece.image.Row(row), piece.image.cols, joined.Row(piece.top + row) + piece.left);
}

Rect Overlap(const Rect& a, const Rect& b) noexcept {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

Pel Mix(Pel a, Pel b) noexcept {
    if (a == 0) return b;
    return b == 0 ? a : static_cast<Pel>((a + b) / 2);
}

void MixOverlap(const Piece& a, const Piece& b, const Rect& overlap, const ImageView& joined) noexcept {
    if (overlap.Empty()) return;
    for (std::int32_t row = overlap.top; row <= overlap.bottom; ++row) {
        const Pel* pels = a.At(overlap.left, row);
        std::transform(pels, pels + overlap.Width(), b.At(overlap.left, row), joined.Row(row) + overlap.left,
                       Mix);
    }
}

/// What smoothing needs, all of it allocated beforehand.
class Smoother {
  public:
    Smoother(const ImageView& joined, const Rect& overlap, std::int32_t width, std::int32_t height)
        : joined_(joined),
          overlap_(overlap),
          smoothed_(joined, NewPels::kUnwritten),
          blocks_(MakeBlockSweep(joined, BlockShape::kRectangle, std::max(width, 1), std::max(height, 1),
                                 overlap.left, overlap.right)) {}

    OwnedImage Smooth() noexcept {
        const ImageView out = smoothed_.View();
        std::copy_n(joined_.pels, joined_.Count(), out.pels);
        for (std::int32_t row = overlap_.top; row <= overlap_.bottom; ++row) {
            blocks_->MoveTo(row);
            std::transform(blocks_->Sums().begin(), blocks_->Sums().end(), blocks_->Counts().begin(),
                           out.Row(row) + overlap_.left, [](double sum, double count) {
                               return ClampToPel(TruncToInt32(sum / count + 0.5));
                           });
        }
        return std::move(smoothed_);
    }

  private:
    ImageView joined_;
    Rect overlap_;
    OwnedImage smoothed_;
    std::unique_ptr<BlockSweep> blocks_;
};

OwnedImage NewJoined(const ImageView& first, const ImageView& second, const JoinedAxis& cols,
                     const JoinedAxis& rows) {
    OwnedImage joined(cols.pels, rows.pels);
    TqImageHeader& header = joined.Header();
    header = *first.header;
    header.PelCols = cols.pels;
    header.PelRows = rows.pels;
    header.CenterCol = std::max(header.CenterCol, second.header->CenterCol);
    header.CenterRow = std::max(header.CenterRow, second.header->CenterRow);
    header.LuxPerGrey = std::max(header.LuxPerGrey, second.header->LuxPerGrey);
    return joined;
}

bool HasScale(const ImageView& image) noexcept {
    return image.header->LuxPerGrey > 0.0f;
}

}  // namespace

std::int32_t TQ_CALL tqAppendImage(TqImage** accumulated, TqImage* added, std::int32_t blockWidth,
                                   std::int32_t blockHeight) {
    const ImageView first = accumulated == nullptr ? ImageView{} : LocateImage(*accumulated);
    if (!first) return kInvalidAccumulated;
    const ImageView second = LocateImage(added);
    if (!second) return kInvalidAdded;
    const auto cols = JoinAxis(first.header->CenterCol, first.cols, second.header->CenterCol, second.cols);
    const auto rows = JoinAxis(first.header->CenterRow, first.rows, second.header->CenterRow, second.rows);
    if (!cols || !rows || !HasScale(first) || !HasScale(second)) return kNotJoined;
    return Guarded(kNotJoined, [&] {
        OwnedImage result = NewJoined(first, second, *cols, *rows);
        const ImageView joined = result.View();
        const Piece a{first, cols->first, rows->first};
        const Piece b{second, cols->second, rows->second};
        const Rect overlap = Overlap(a.Place(), b.Place());
        return Guarded(kNotSmoothed, [&] {
            std::optional<Smoother> smoother;
            const bool wanted = blockWidth > 1 || blockHeight > 1;
            if (wanted && !overlap.Empty()) smoother.emplace(joined, overlap, blockWidth, blockHeight);
            // Nothing fails from here on: the images are changed only when the joined one will stand.
            ScaleTo(joined.header->LuxPerGrey, first);
            ScaleTo(joined.header->LuxPerGrey, second);
            Paste(a, joined);
            Paste(b, joined);
            MixOverlap(a, b, overlap, joined);
            CommitImage(accumulated, smoother ? smoother->Smooth() : std::move(result));
            return kOk;
        });
    });
}
