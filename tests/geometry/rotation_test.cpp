#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <tuple>
#include <utility>

#include "images.h"
#include "samples.h"
#include "tqimage/resampling.h"

namespace {

using tqtest::Image;
using tqtest::MakeImage;
using tqtest::Noise;
using tqtest::SameHeader;
using tqtest::SamePels;

struct Point {
    float x, y;
};

/// The rotation pel by pel, every step of the way back in single precision.
class Reference {
  public:
    Reference(const Image& source, float angle, Point centre)
        : source_(source), theta_(static_cast<float>(angle * 0.017453293)), centre_(centre) {
        for (const int col : {0, source.Cols() - 1}) {
            for (const int row : {0, source.Rows() - 1}) {
                const Point p = Forward(col, row);
                left_ = std::min(left_, p.x), right_ = std::max(right_, p.x);
                bottom_ = std::min(bottom_, p.y), top_ = std::max(top_, p.y);
            }
        }
        header_ = source.Header();
        const Point p = Forward(static_cast<int>(header_.CenterCol), static_cast<int>(header_.CenterRow));
        header_.PelCols = static_cast<int>(static_cast<double>(right_) - left_);
        header_.PelRows = static_cast<int>(static_cast<double>(top_) - bottom_);
        header_.CenterCol = p.x - left_;
        header_.CenterRow = top_ - p.y;
    }
    const TqImageHeader& Header() const { return header_; }
    Image Pels() const {
        const auto s = static_cast<float>(std::sin(-static_cast<double>(theta_)));
        const auto k = static_cast<float>(std::cos(-static_cast<double>(theta_)));
        return MakeImage(header_.PelCols, header_.PelRows, [&](int c, int r) {
            const float dx = static_cast<float>(c) + left_ - centre_.x;
            const float dy = top_ - static_cast<float>(r) + centre_.y;
            const float col = k * dx - s * dy + centre_.x, row = -(s * dx + k * dy - centre_.y);
            return col < 0 || row < 0 ? 0 : static_cast<int>(tqtest::Sample(source_, col, row));
        });
    }

  private:
    Point Forward(int col, int row) const {
        const double s = static_cast<float>(std::sin(static_cast<double>(theta_)));
        const double k = static_cast<float>(std::cos(static_cast<double>(theta_)));
        const double dx = col - static_cast<double>(centre_.x), dy = -row + static_cast<double>(centre_.y);
        return {static_cast<float>(k * dx - s * dy + centre_.x),
                static_cast<float>(k * dy + s * dx - centre_.y)};
    }

    const Image& source_;
    float theta_;
    Point centre_;
    float left_ = 100000, right_ = -100000, bottom_ = 100000, top_ = -100000;
    TqImageHeader header_{};
};

TEST(Rotate, EveryPelAndTheHeaderFollow) {
    for (const auto& [cols, rows] : {std::pair{60, 41}, {2, 30}, {1, 40}, {40, 1}, {97, 3}}) {
        const Image before = Noise(cols, rows);
        for (const float angle : {0.0f, 7.0f, -33.3f, 45.0f, 90.0f, 135.5f, 180.0f, 260.0f, 720.25f, -1e6f}) {
            for (const Point centre :
                 {Point{20.5f, 10.25f}, {0, 0}, {-3000.5f, 700}, {1e5f, -3e4f}, {1e7f, -1e7f}}) {
                SCOPED_TRACE(testing::Message()
                             << cols << " x " << rows << " by " << angle << " about " << centre.x);
                const Reference expected(before, angle, centre);
                const auto side = [](int pels) { return pels >= 1 && pels <= 8000; };
                const bool fits = side(expected.Header().PelCols) && side(expected.Header().PelRows);
                Image image = before;
                ASSERT_EQ(tqRotateImage(image.Address(), angle, centre.x, centre.y), fits ? 0 : -3);
                EXPECT_TRUE(SamePels(fits ? expected.Pels() : before, image));
                EXPECT_TRUE(SameHeader(fits ? expected.Header() : before.Header(), image.Header()));
            }
        }
    }
}

TEST(Rotate, AnglesAndPlacesThatAreNoNumbersLeaveTheImage) {
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr float kMax = std::numeric_limits<float>::max();
    for (const auto& [angle, col, row] : {std::tuple{kNan, 1.0f, 1.0f},
                                          {kInfinity, 1.0f, 1.0f},
                                          {5.0f, 1.0f, -kInfinity},
                                          {5.0f, kMax, -kMax}}) {
        Image image = Noise(9, 9);
        EXPECT_EQ(tqRotateImage(image.Address(), angle, col, row), -3);
        EXPECT_TRUE(SamePels(Noise(9, 9), image));
    }
}

}  // namespace
