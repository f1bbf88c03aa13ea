#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <tuple>
#include <utility>

#include "images.h"
#include "samples.h"
#include "tqimage/resampling.h"

namespace {

using namespace tqtest;

/// A degree as the function takes it.
constexpr double kDegree = 0.017453293;

TEST(Rotate, EveryPelComesFromWhereTheTurnTakesItFrom) {
    for (const auto& [cols, rows] : {std::pair{60, 41}, {2, 30}, {1, 40}, {97, 3}}) {
        const Image before = Ramp(cols, rows);
        for (const double angle : {7.0, -33.3, 45.5, 135.5, 200.0, 260.0, 725.25}) {
            for (const auto& [x, y] : {std::pair{20.5, 10.25}, {0.0, 0.0}, {-300.5, 70.0}}) {
                SCOPED_TRACE(testing::Message() << cols << " x " << rows << " by " << angle << ", " << x);
                Image image = before;
                ASSERT_EQ(tqRotateImage(image.Address(), static_cast<float>(angle), static_cast<float>(x),
                                        static_cast<float>(y)),
                          0);
                const double s = std::sin(angle * kDegree), k = std::cos(angle * kDegree);
                const double width = (cols - 1) * std::abs(k) + (rows - 1) * std::abs(s);
                const double height = (cols - 1) * std::abs(s) + (rows - 1) * std::abs(k);
                ASSERT_EQ(image.Cols(), static_cast<int>(width));
                ASSERT_EQ(image.Rows(), static_cast<int>(height));
                // The middle of the box is that of the source, wherever it is turned about.
                for (int row = 0; row < image.Rows(); ++row) {
                    for (int col = 0; col < image.Cols(); ++col) {
                        const double dx = col - width / 2, dy = row - height / 2;
                        const double sourceCol = k * dx - s * dy + (cols - 1) / 2.0;
                        const double sourceRow = s * dx + k * dy + (rows - 1) / 2.0;
                        const auto near = [](double place, double limit) {
                            return std::abs(place - limit) < 1e-3;
                        };
                        if (near(sourceCol, 0) || near(sourceCol, cols) || near(sourceRow, 0) ||
                            near(sourceRow, rows))
                            continue;
                        const bool inside = sourceCol > 0 && sourceRow > 0;
                        const double grey = inside ? Sample(before, sourceCol, sourceRow) : 0.0;
                        ASSERT_NEAR(image(col, row), grey, 1.1) << col << ", " << row;
                    }
                }
            }
        }
    }
}

TEST(Rotate, TheHeaderAndTheSizeAreThoseOfTheBox) {
    // By 0 degrees a column and a row are lost, and the centre is moved by whole pels.
    Image image = Noise(100, 50);
    ASSERT_EQ(tqRotateImage(image.Address(), 0.0f, 3.0f, 4.0f), 0);
    TqImageHeader header = DistinctHeader(99, 49);
    header.CenterCol = 10.0f;
    header.CenterRow = 4.0f;
    EXPECT_TRUE(SameHeader(header, image.Header()));
    // The box is looked for between -100000 and 100000: what lies beyond leaves a wider one.
    image = Noise(60, 41);
    ASSERT_EQ(tqRotateImage(image.Address(), 180.0f, 51000.25f, 0.0f), 0);
    EXPECT_EQ(image.Cols(), 2000);
}

TEST(Rotate, WhatHasNoSizeLeavesTheImage) {
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr float kMax = std::numeric_limits<float>::max();
    for (const auto& [angle, col, row] :
         {std::tuple{kNan, 1.0f, 1.0f}, std::tuple{kInfinity, 1.0f, 1.0f}, std::tuple{5.0f, 1.0f, -kInfinity},
          std::tuple{5.0f, kMax, -kMax}, std::tuple{180.0f, 60000.0f, 0.0f}}) {
        Image image = Noise(9, 9);
        EXPECT_EQ(tqRotateImage(image.Address(), angle, col, row), -3);
        EXPECT_TRUE(SamePels(Noise(9, 9), image));
    }
}

}  // namespace
