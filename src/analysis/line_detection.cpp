#include "tqimage/line_detection.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "core/image_block.h"
#include "core/image_view.h"
#include "core/replaced_image.h"
#include "kernels/line_mask.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNotCreated = -3;
constexpr std::int32_t kBadDirection = -4;

/// A pel of the mask, from its centre.
struct Place {
    std::int32_t col;
    std::int32_t row;
};

/// The three pels that weigh 2, by direction: horizontal, vertical, rising and falling to the right.
constexpr std::array<std::array<Place, 3>, 4> kLines{{
    {{{-1, 0}, {0, 0}, {1, 0}}},
    {{{0, -1}, {0, 0}, {0, 1}}},
    {{{1, -1}, {0, 0}, {-1, 1}}},
    {{{-1, -1}, {0, 0}, {1, 1}}},
}};

OwnedImage DetectLines(const ConstImageView& source, const std::array<Place, 3>& line) {
    OwnedImage result(source, NewPels::kZero);
    const ImageView out = result.View();
    const std::int32_t interior = std::max(source.cols - 2, 0);
    for (std::int32_t row = 1; row < source.rows - 1; ++row) {
        const auto at = [&](const Place& place) { return source.Row(row + place.row) + 1 + place.col; };
        kernels::LineResponses(at({0, -1}), at({0, 0}), at({0, 1}), {at(line[0]), at(line[1]), at(line[2])},
                               static_cast<std::size_t>(interior), out.Row(row) + 1);
    }
    return result;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqDetectLine(TqImage** result, const TqImage* source, std::uint32_t direction) {
    const ConstImageView view = LocateImage(source);
    if (result == nullptr || !view) return kInvalidImage;
    if (direction >= kLines.size()) return kBadDirection;
    return ReplaceImage(result, kNotCreated, [&] { return DetectLines(view, kLines[direction]); });
}
