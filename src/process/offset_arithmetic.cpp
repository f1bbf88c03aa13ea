#include "tqimage/offset_arithmetic.h"

#include <algorithm>
#include <cmath>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/replaced_image.h"
#include "kernels/grey_arithmetic.h"
#include "process/scene_overlap.h"

namespace tq {
namespace {

constexpr std::int32_t kOk = 0;
constexpr std::int32_t kInvalidFirst = -2;
constexpr std::int32_t kInvalidSecond = -3;
constexpr std::int32_t kDifferenceNotMade = -5;
constexpr std::int32_t kNotMade = -4;
constexpr std::int32_t kNoOverlap = -100;

/// The largest sum or ratio becomes this pel; hosts rely on the room above it.
constexpr double kLargestResultPel = 65000.0;

SceneOverlap Overlap(const ConstImageView& a, const ConstImageView& b, float offsetX, float offsetY) {
    return {b, AxisMap(ColumnsOf(a), 0, a.cols, ColumnsOf(b), offsetX),
            AxisMap(RowsOf(a), 0, a.rows, RowsOf(b), offsetY)};
}

OwnedImage Difference(const ConstImageView& a, const ConstImageView& b, SceneOverlap overlap) {
    OwnedImage result(a, NewPels::kUnwritten);
    const ImageView out = result.View();
    for (std::int32_t row = 0; row < a.rows; ++row) {
        overlap.VisitRow(row, [&](const RowPiece& piece) {
            const Pel* source = a.Row(row) + piece.first;
            const auto count = static_cast<std::size_t>(piece.count);
            if (piece.other == nullptr) {
                std::copy_n(source, count, out.Row(row) + piece.first);
                return;
            }
            kernels::SubtractLuminances(source, piece.other, a.header->LuxPerGrey, b.header->LuxPerGrey,
                                        out.Row(row) + piece.first, count);
        });
    }
    return result;
}

OwnedImage Sum(const ConstImageView& a, const ConstImageView& b, SceneOverlap overlap) {
    const auto channelsOf = [&](std::int32_t row, const RowPiece& piece) {
        const Pel* pels = a.Row(row) + piece.first;
        const double otherScale = piece.other == nullptr ? 0.0 : b.header->LuxPerGrey;
        return kernels::Channels{{pels, piece.other == nullptr ? pels : piece.other, pels},
                                 {a.header->LuxPerGrey, otherScale, 0.0}};
    };
    double largest = 0.0;
    for (std::int32_t row = 0; row < a.rows; ++row) {
        overlap.VisitRow(row, [&](const RowPiece& piece) {
            largest = std::max(largest, kernels::LargestLuminance(channelsOf(row, piece),
                                                                  static_cast<std::size_t>(piece.count)));
        });
    }
    if (largest == 0.0) largest = 1.0;

    OwnedImage result(a, NewPels::kUnwritten);
    const ImageView out = result.View();
    out.header->LuxPerGrey = static_cast<float>(largest / kLargestResultPel);
    out.header->MaxPelValue = static_cast<float>(kLargestResultPel);
    // By the scale as stored, so that a pel times the header's scale is the luminance again.
    const kernels::LuminanceScale scale{1.0, out.header->LuxPerGrey, 0.5};
    for (std::int32_t row = 0; row < a.rows; ++row) {
        overlap.VisitRow(row, [&](const RowPiece& piece) {
            kernels::WriteLuminances(channelsOf(row, piece), scale, out.Row(row) + piece.first,
                                     static_cast<std::size_t>(piece.count));
        });
    }
    return result;
}

struct Stretch {
    std::int32_t first = 0;
    std::int32_t last = -1;

    std::int32_t Count() const noexcept { return last - first + 1; }
};

/// The pels of an axis that another one, shifted by `offset` metres, covers; none when they share less than
/// a pel. A millionth of a pel is what positions in single precision may lack.
Stretch SharedPels(const SceneAxis& axis, const SceneAxis& other, double offset) noexcept {
    if (!(axis.pelsPerMeter > 0.0) || !(other.pelsPerMeter > 0.0)) return {};
    const double otherBegin = other.First() - offset;
    const double otherEnd = other.Last() - offset;
    if (!(otherBegin <= otherEnd)) return {};  // the other centre or the offset is no number
    const double begin = std::max(axis.First(), otherBegin);
    const double end = std::min(axis.Last(), otherEnd);
    if (!((end - begin) * axis.pelsPerMeter >= 1.0)) return {};
    const auto inside = [&](double pel) {
        return TruncToInt32(std::clamp(pel, 0.0, static_cast<double>(axis.pels - 1)));
    };
    return {inside(std::ceil(begin * axis.pelsPerMeter + axis.center - 1e-6)),
            inside(std::floor(end * axis.pelsPerMeter + axis.center + 1e-6))};
}

OwnedImage Quotient(const ConstImageView& numerator, const ConstImageView& denominator, Stretch cols,
                    Stretch rows, SceneOverlap overlap) {
    OwnedImage result(cols.Count(), rows.Count(), NewPels::kZero);
    TqImageHeader& header = result.Header();
    header = *numerator.header;
    header.PelCols = cols.Count();
    header.PelRows = rows.Count();
    header.CenterCol -= static_cast<float>(cols.first);
    header.CenterRow -= static_cast<float>(rows.first);
    const ImageView out = result.View();

    // A denominator without luminance, a scale that is none included, leaves the ratio at 1.
    const double scale = denominator.header->LuxPerGrey > 0.0f ? denominator.header->LuxPerGrey : 0.0;
    const kernels::LuminanceRatio ratio{numerator.header->LuxPerGrey, scale, 1.0};
    const auto visit = [&](auto&& body) {
        for (std::int32_t row = 0; row < out.rows; ++row) {
            overlap.VisitRow(row, [&](const RowPiece& piece) {
                if (piece.other == nullptr) return;  // no ratio: such pels stay 0
                body(numerator.Row(rows.first + row) + cols.first + piece.first, piece,
                     out.Row(row) + piece.first, static_cast<std::size_t>(piece.count));
            });
        }
    };
    double largest = -1.0;
    visit([&](const Pel* pels, const RowPiece& piece, Pel*, std::size_t count) {
        largest = kernels::LargestRatio(largest, ratio, pels, piece.other, count);
    });
    if (largest <= 0.0) largest = 1.0;
    header.LuxPerGrey = static_cast<float>(largest / kLargestResultPel);
    header.MaxPelValue = static_cast<float>(kLargestResultPel);
    visit([&](const Pel* pels, const RowPiece& piece, Pel* to, std::size_t count) {
        kernels::WriteRatios(ratio, pels, piece.other, header.LuxPerGrey, to, count);
    });
    return result;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqSubtractImageOffset(TqImage** out, const TqImage* a, const TqImage* b, float offsetX,
                                           float offsetY) {
    const ConstImageView first = LocateImage(a);
    if (out == nullptr || !first) return kInvalidFirst;
    const ConstImageView second = LocateImage(b);
    if (!second) return kInvalidSecond;
    return ReplaceImage(out, kDifferenceNotMade,
                        [&] { return Difference(first, second, Overlap(first, second, offsetX, offsetY)); });
}

std::int32_t TQ_CALL tqAddImageOffset(TqImage** out, const TqImage* a, const TqImage* b, float offsetX,
                                      float offsetY) {
    const ConstImageView first = LocateImage(a);
    if (out == nullptr || !first) return kInvalidFirst;
    const ConstImageView second = LocateImage(b);
    if (!second) return kInvalidSecond;
    return ReplaceImage(out, kNotMade,
                        [&] { return Sum(first, second, Overlap(first, second, offsetX, offsetY)); });
}

std::int32_t TQ_CALL tqDivideImageOffset(TqImage** out, const TqImage* numerator, const TqImage* denominator,
                                         float offsetX, float offsetY) {
    const ConstImageView over = LocateImage(numerator);
    if (out == nullptr || !over) return kInvalidFirst;
    const ConstImageView under = LocateImage(denominator);
    if (!under) return kInvalidSecond;
    const Stretch cols = SharedPels(ColumnsOf(over), ColumnsOf(under), offsetX);
    const Stretch rows = SharedPels(RowsOf(over), RowsOf(under), offsetY);
    if (cols.Count() < 1 || rows.Count() < 1) return kNoOverlap;
    return Guarded(kNotMade, [&] {
        const SceneOverlap overlap(
            under, AxisMap(ColumnsOf(over), cols.first, cols.Count(), ColumnsOf(under), offsetX),
            AxisMap(RowsOf(over), rows.first, rows.Count(), RowsOf(under), offsetY));
        CommitImage(out, Quotient(over, under, cols, rows, overlap));
        return kOk;
    });
}
