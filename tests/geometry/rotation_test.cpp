#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "images.h"
#include "tqimage/resampling.h"

namespace {

using tqtest::Image;
using tqtest::MakeImage;
using tqtest::RandomImage;
using tqtest::SameHeader;
using tqtest::SamePels;

struct Point {
    float x, y;
};

/// The rotation pel by pel, every step of the way back in single precision.
class Reference {
  public:
    Reference(const Image& source, float angle, float centreCol, float centreRow)
        : source_(source), theta_(static_cast<float>(angle * 0.017453293)), centre_{centreCol, centreRow} {
        for (const int col : {0, source.Cols() - 1}) {
            for (const int row : {0, source.Rows() - 1}) {
                const Point p = Forward(col, row);
                left_ = std::min(left_, p.x), right_ = std::max(right_, p.x);
                bottom_ = std::min(bottom_, p.y), top_ = std::max(top_, p.y);
            }
        }
    }
    int Cols() const { return static_cast<int>(static_cast<double>(right_) - left_); }
    int Rows() const { return static_cast<int>(static_cast<double>(top_) - bottom_); }
    TqImageHeader Header() const {
        TqImageHeader header = source_.Header();
        header.PelCols = Cols();
        header.PelRows = Rows();
        const Point p = Forward(static_cast<int>(header.CenterCol), static_cast<int>(header.CenterRow));
        header.CenterCol = p.x - left_;
        header.CenterRow = top_ - p.y;
        return header;
    }
    Image Pels() const {
        const auto s = static_cast<float>(std::sin(-static_cast<double>(theta_)));
        const auto k = static_cast<float>(std::cos(-static_cast<double>(theta_)));
        return MakeImage(Cols(), Rows(), [&](int c, int r) {
            const float dx = static_cast<float>(c) + left_ - centre_.x;
            const float dy = top_ - static_cast<float>(r) + centre_.y;
            return Truncated(k * dx - s * dy + centre_.x, -(s * dx + k * dy - centre_.y));
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
    int Truncated(float col, float row) const {
        const int cols = source_.Cols(), rows = source_.Rows();
        if (!(col >= 0 && col < static_cast<float>(cols) && row >= 0 && row < static_cast<float>(rows)))
            return 0;
        const int i = std::max(std::min(static_cast<int>(col), cols - 2), 0);
        const int j = std::max(std::min(static_cast<int>(row), rows - 2), 0);
        const int right = std::min(i + 1, cols - 1), below = std::min(j + 1, rows - 1);
        const double fx = cols == 1 ? 0.0 : static_cast<double>(col) - i;
        const double fy = rows == 1 ? 0.0 : static_cast<double>(row) - j;
        double value = (1 - fy) * fx * source_(right, j) + (1 - fy) * (1 - fx) * source_(i, j);
        value = value + fx * fy * source_(right, below);
        return static_cast<int>(value + fy * (1 - fx) * source_(i, below));
    }

    const Image& source_;
    float theta_;
    Point centre_;
    float left_ = 100000, right_ = -100000, bottom_ = 100000, top_ = -100000;
};

TEST(Rotate, EveryPelAndTheHeaderFollow) {
    for (const auto& [cols, rows] : {std::pair{60, 41}, {2, 30}, {1, 40}, {40, 1}, {97, 3}}) {
        for (const float angle : {0.0f, 7.0f, -33.3f, 45.0f, 90.0f, 135.5f, 180.0f, 260.0f, 720.25f, -1e6f}) {
            for (const Point centre :
                 {Point{20.5f, 10.25f}, {0, 0}, {-3000.5f, 700}, {1e5f, -3e4f}, {1e7f, -1e7f}}) {
                SCOPED_TRACE(testing::Message()
                             << cols << " x " << rows << " by " << angle << " about " << centre.x);
                Image before = RandomImage(cols, rows, 12);
                before.Header().CenterCol = 14.75f;
                before.Header().CenterRow = -2.5f;
                before.Header().Spare = 0xDEADBEEF;
                const Reference reference(before, angle, centre.x, centre.y);
                Image image = before;
                const auto side = [](int pels) { return pels >= 1 && pels <= 8000; };
                const bool fits = side(reference.Cols()) && side(reference.Rows());
                ASSERT_EQ(tqRotateImage(image.Address(), angle, centre.x, centre.y), fits ? 0 : -3);
                if (!fits) {
                    EXPECT_TRUE(SamePels(before, image));
                    continue;
                }
                EXPECT_TRUE(SamePels(reference.Pels(), image));
                EXPECT_TRUE(SameHeader(reference.Header(), image.Header()));
            }
        }
    }
}

TEST(Rotate, AnglesAndPlacesThatAreNoNumbersAndSizesTooLargeLeaveTheImage) {
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr float kMax = std::numeric_limits<float>::max();
    const Image before = RandomImage(9, 9, 1);
    for (const auto& [angle, col, row] : {std::tuple{kNan, 1.0f, 1.0f},
                                          {kInfinity, 1.0f, 1.0f},
                                          {5.0f, 1.0f, -kInfinity},
                                          {5.0f, kMax, -kMax}}) {
        Image image = before;
        EXPECT_EQ(tqRotateImage(image.Address(), angle, col, row), -3);
        EXPECT_TRUE(SamePels(before, image));
    }
    Image wide = RandomImage(8000, 2000, 1);
    const TqImage* block = wide.Get();
    EXPECT_EQ(tqRotateImage(wide.Address(), 10.0f, 0.0f, 0.0f), -3);
    EXPECT_EQ(wide.Get(), block);
}

}  // namespace
