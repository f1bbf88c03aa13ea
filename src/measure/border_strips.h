#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "core/image_view.h"
#include "core/rectangle.h"

namespace tq {

enum class Side : std::uint8_t { kLeft, kTop, kRight, kBottom };
inline constexpr std::array kSides = {Side::kLeft, Side::kTop, Side::kRight, Side::kBottom};

/// The strips along the four sides of a display's active area in which its spilled light is measured.
class BorderStrips {
  public:
    /// `area` lies inside the image and is not empty. Gaps below 0 count as 0, depths below 1 as 1; a ceiling
    /// of 0 or less leaves no pel out.
    BorderStrips(const ConstImageView& view, const Rect& area, std::int32_t gap, std::int32_t depth,
                 std::int32_t ceiling);

    /// Cut to the image, so it may be empty.
    const Rect& Strip(Side side) const noexcept { return strips_[static_cast<std::size_t>(side)]; }
    /// Twice the way from an end of the area to the middles of the strips around its corner, before they are
    /// cut.
    std::int64_t CornerReach() const noexcept { return cornerReach_; }

    /// Calls visit(col, row, pel) for the pels of a strip that count.
    template <class Visit>
    void VisitPels(Side side, Visit&& visit) const {
        const Rect& strip = Strip(side);
        for (std::int32_t row = strip.top; row <= strip.bottom; ++row) {
            const Pel* const pels = view_.Row(row);
            for (std::int32_t col = strip.left; col <= strip.right; ++col) {
                if (pels[col] != 0 && pels[col] <= ceiling_) visit(col, row, pels[col]);
            }
        }
    }

  private:
    ConstImageView view_;
    std::int32_t ceiling_;
    std::int64_t cornerReach_;
    std::array<Rect, 4> strips_;
};

/// What the strips tell.
struct BorderLight {
    std::array<double, 4> sideMeans{};  ///< by Side; 0 without a pel
    double mean = 0.0;
    std::int32_t maximum = 0;
    std::int32_t maxCol = -1;
    std::int32_t maxRow = -1;
    /// The pel in the middle of the measured ones.
    std::int32_t middleCol = 0;
    std::int32_t middleRow = 0;
    std::int64_t count = 0;
};

BorderLight MeasureBorderLight(const BorderStrips& strips);

}  // namespace tq
