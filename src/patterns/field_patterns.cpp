#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "core/numerics.h"
#include "patterns/pattern_image.h"
#include "patterns/positions.h"
#include "patterns/shapes.h"
#include "tqimage/test_patterns.h"

using namespace tq;

namespace {

constexpr Pel kWhite = static_cast<Pel>(kLargestPel);
constexpr std::int32_t kTooFewSteps = -3;

template <class PelAt>
std::vector<Pel> MakeRow(std::int32_t cols, PelAt&& pelAt) {
    std::vector<Pel> row(static_cast<std::size_t>(cols));
    for (std::int32_t col = 0; col < cols; ++col)
        row[static_cast<std::size_t>(col)] = pelAt(col);
    return row;
}

/// The field, from 0, that a pel of an axis belongs to when field k ends with pel
/// NearestQuotient((k + 1) x (pels - 1), fields). More fields than pels leave some of them empty.
std::int64_t FieldOf(std::int64_t pel, std::int64_t fields, std::int32_t pels) noexcept {
    if (pel == 0) return 0;
    const std::int64_t length = std::int64_t{pels} - 1;
    // So many ends lie half a pel before this one or earlier. The last of them is this pel's when it lies
    // there exactly and is rounded up.
    const std::int64_t ends = (2 * pel - 1) * fields / (2 * length);
    return ends > 0 && NearestQuotient(ends * length, fields) >= pel ? ends - 1 : ends;
}

void DrawCheckerboard(const ImageView& view, std::int64_t fieldsX, std::int64_t fieldsY, bool whiteFirst) {
    const auto rowOf = [&](bool white) {
        return MakeRow(view.cols, [&, white](std::int32_t col) {
            return (FieldOf(col, fieldsX, view.cols) % 2 == 0) == white ? kWhite : Pel{0};
        });
    };
    const std::array<std::vector<Pel>, 2> rows{rowOf(whiteFirst), rowOf(!whiteFirst)};
    for (std::int32_t row = 0; row < view.rows; ++row)
        FillRows(view, {row, row}, rows[static_cast<std::size_t>(FieldOf(row, fieldsY, view.rows) % 2)]);
}

/// Nested frames of one width in each direction; a width below 1 means none in that direction.
class Frames {
  public:
    Frames(std::int32_t count, const std::uint16_t* values, std::int32_t interior) noexcept
        : count_(count), values_(values), interior_(ClampToPel(interior)) {}

    static std::int64_t Level(std::int32_t pel, std::int32_t pels, std::int32_t width) noexcept {
        if (width < 1) return std::numeric_limits<std::int64_t>::max();
        return std::min(pel, pels - 1 - pel) / width;
    }
    Pel At(std::int64_t level) const noexcept {
        if (level >= count_) return interior_;
        if (values_ == nullptr) return level % 2 == 0 ? kWhite : Pel{0};
        return values_[level];
    }

  private:
    std::int32_t count_;
    const std::uint16_t* values_;
    Pel interior_;
};

void DrawFrames(const ImageView& view, const Frames& frames, std::int32_t frameX, std::int32_t frameY) {
    const std::vector<Pel> sides = MakeRow(
        view.cols, [&](std::int32_t col) { return frames.At(Frames::Level(col, view.cols, frameX)); });
    for (std::int32_t row = 0; row < view.rows; ++row) {
        FillRows(view, {row, row}, sides);
        const std::int64_t level = Frames::Level(row, view.rows, frameY);
        // Between the sides further out this row is the top or bottom of a frame.
        const std::int64_t first = frameX < 1 ? 0 : std::min<std::int64_t>(level, view.cols) * frameX;
        const std::int64_t behind = view.cols - first;
        if (first < behind) std::fill(view.Row(row) + first, view.Row(row) + behind, frames.At(level));
    }
}

/// A quarter of the image; of an odd number of pels the middle one belongs to the left and upper quarters.
struct Quadrant {
    bool right;
    bool lower;
};

void DrawQuadrant(const ImageView& view, Quadrant quadrant) noexcept {
    const auto half = [](bool second, std::int64_t pels) {
        const std::int64_t middle = (pels + 1) / 2;
        return second ? Run{middle, pels - 1} : Run{0, middle - 1};
    };
    DrawRectangle(view, half(quadrant.right, view.cols), half(quadrant.lower, view.rows));
}

}  // namespace

std::int32_t TQ_CALL tqCreateCheckerboardPattern(TqImage** image, std::int32_t cols, std::int32_t rows,
                                                 std::int32_t fieldsX, std::int32_t fieldsY,
                                                 std::int32_t whiteFirst) {
    return CreatePattern(image, cols, rows, NewPels::kUnwritten, [=](const ImageView& view) {
        DrawCheckerboard(view, std::max(fieldsX, 2), std::max(fieldsY, 2), whiteFirst != 0);
    });
}

std::int32_t TQ_CALL tqCreateBorderPattern(TqImage** image, std::int32_t count, const std::uint16_t* values,
                                           std::int32_t cols, std::int32_t rows, std::int32_t frameX,
                                           std::int32_t frameY, std::int32_t interior) {
    return CreatePattern(image, cols, rows, NewPels::kUnwritten, [=](const ImageView& view) {
        DrawFrames(view, Frames(count, values, interior), frameX, frameY);
    });
}

std::int32_t TQ_CALL tqCreateFourColorImage(TqImage** red, TqImage** green, TqImage** blue, TqImage** white,
                                            std::int32_t cols, std::int32_t rows,
                                            std::int32_t fourPrimaries) {
    constexpr Quadrant kRed{false, false}, kGreen{true, false}, kBlue{false, true}, kWhiteField{true, true};
    // A fourth primary lights the white field alone, so there is no pattern without its plane.
    const bool lightsOwnWhite = fourPrimaries != 0;
    if (red == nullptr || green == nullptr || blue == nullptr || (lightsOwnWhite && white == nullptr)) {
        return kPatternNotCreated;
    }
    return Guarded(kPatternNotCreated, [&] {
        struct Plane {
            TqImage** host;
            Quadrant field;
            OwnedImage image;
        };
        std::array<Plane, 4> planes{
            {{red, kRed, {}}, {green, kGreen, {}}, {blue, kBlue, {}}, {white, kWhiteField, {}}}};
        for (Plane& plane : planes) {
            if (plane.host == nullptr) continue;
            plane.image = MakeDrawnImage(cols, rows, NewPels::kZero);
            const ImageView view = plane.image.View();
            if (view.Count() == 0) continue;
            DrawQuadrant(view, plane.field);
            if (!lightsOwnWhite) DrawQuadrant(view, kWhiteField);
        }
        for (Plane& plane : planes) {
            if (plane.host != nullptr) CommitImage(plane.host, std::move(plane.image));
        }
        return 0;
    });
}

std::int32_t TQ_CALL tqCreateGrayScaleImage(TqImage** image, std::int32_t steps, std::int32_t cols,
                                            std::int32_t rows) {
    if (image != nullptr && steps < 2) return kTooFewSteps;
    return CreatePattern(image, cols, rows, NewPels::kUnwritten, [=](const ImageView& view) {
        const std::int32_t width = NearestPel(static_cast<double>(cols) / steps + 0.5);
        const std::vector<Pel> bands = MakeRow(cols, [=](std::int32_t col) {
            const std::int64_t band = std::min(col / width, steps - 1);
            return static_cast<Pel>(band * kLargestPel / (steps - 1));
        });
        FillRows(view, {0, std::int64_t{rows} - 1}, bands);
    });
}
