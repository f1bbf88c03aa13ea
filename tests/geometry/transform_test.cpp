#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

#include "images.h"
#include "tqimage/transform.h"

namespace {

using namespace tqtest;

using Matrix = std::array<double, 9>;

constexpr Matrix kIdentity{1, 0, 0, 0, 1, 0, 0, 0, 1};
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

constexpr Matrix Shift(double cols, double rows) {
    return {1, 0, cols, 0, 1, rows, 0, 0, 1};
}

TEST(TransformImage, IdentityAndWholePelsAreExactWithEveryKernel) {
    const Image source = RandomImage(23, 17, 5);
    for (const std::int32_t kernel : {0, 1, 2}) {
        Image image = source;
        image.Header().Spare = 0xCAFE;
        const TqImageHeader header = image.Header();
        ASSERT_EQ(tqTransformImage(image.Address(), kIdentity.data(), 0, 0, kernel, 7), 0);
        EXPECT_TRUE(SamePels(source, image));
        EXPECT_TRUE(SameHeader(header, image.Header()));
        // Pel (c, r) of the result is (c + 2, r - 3); what comes from outside is filled.
        ASSERT_EQ(tqTransformImage(image.Address(), Shift(2, -3).data(), 30, 20, kernel, 70000), 0);
        EXPECT_TRUE(SamePels(MakeImage(30, 20,
                                       [&](int col, int row) {
                                           const bool inside = col < 21 && row >= 3;
                                           return inside ? source(col + 2, row - 3) : 65535;
                                       }),
                             image));
        EXPECT_EQ(image.Header().CenterCol, 9.0f);
        EXPECT_EQ(image.Header().CenterRow, 11.0f);
        EXPECT_EQ(image.Header().PelsPerMeterX, 1000.0f);
    }
}

TEST(TransformImage, KernelsBetweenThePels) {
    struct Case {
        std::int32_t kernel;
        double shift;
        int grey;
    };
    // Of 10, 20, 60, 30 around 0.25 beyond the second pel: nearest 20; 20 + 0.25 x 40; by Keys' kernel
    // -0.0703125 x 10 + 0.8671875 x 20 + 0.2265625 x 60 - 0.0234375 x 30 = 29.53. 0.0125 x 40 is a half,
    // rounded to even.
    for (const Case& c : {Case{0, 1.25, 20}, Case{0, 1.75, 60}, Case{1, 1.25, 30}, Case{2, 1.25, 30},
                          Case{1, 1.0125, 20}, Case{1, 1.0375, 22}, Case{0, -0.5, 10}, Case{1, -0.4, 10},
                          Case{2, 3.4, 30}, Case{1, -0.51, 5}, Case{1, 3.5, 5}}) {
        Image image = MakeImage(4, 1, {10, 20, 60, 30});
        ASSERT_EQ(tqTransformImage(image.Address(), Shift(c.shift, 0.0).data(), 1, 1, c.kernel, 5), 0);
        EXPECT_EQ(image(0, 0), c.grey) << c.kernel << " at " << c.shift;
    }
    // A cubic overshoots beyond both ends of the grey levels.
    for (const auto& [low, high, at] : {std::tuple{0, 65535, 0.5}, std::tuple{65535, 0, 0.5}}) {
        Image image = MakeImage(4, 1, {low, low, high, high});
        ASSERT_EQ(tqTransformImage(image.Address(), Shift(at, 0.0).data(), 1, 1, 2, 5), 0);
        EXPECT_EQ(image(0, 0), low);
    }
    // It follows a parabola exactly.
    Image parabola = MakeImage(20, 20, [](int col, int row) { return 16 * col * col + 32 * col * row; });
    ASSERT_EQ(tqTransformImage(parabola.Address(), Shift(5.25, 7.5).data(), 4, 4, 2, 0), 0);
    EXPECT_EQ(parabola(3, 2), static_cast<int>(16 * 8.25 * 8.25 + 32 * 8.25 * 9.5));
}

TEST(TransformImage, AxisAndResolutionsMoveWithTheTarget) {
    Image image = RandomImage(100, 80, 3);
    image.Header().PelsPerMeterX = 1000.0f;
    image.Header().PelsPerMeterY = 500.0f;
    image.Header().CenterCol = 40.0f;
    image.Header().CenterRow = 30.0f;
    // A quarter turn: columns of the result are rows of the image; then twice as many of them.
    const Matrix turned{0, 1, 0, 0.5, 0, 0, 0, 0, 1};
    ASSERT_EQ(tqTransformImage(image.Address(), turned.data(), 160, 100, 1, 0), 0);
    EXPECT_EQ(image.Header().CenterCol, 60.0f);
    EXPECT_EQ(image.Header().CenterRow, 40.0f);
    EXPECT_EQ(image.Header().PelsPerMeterX, 1000.0f);
    EXPECT_EQ(image.Header().PelsPerMeterY, 1000.0f);
    // Perspective: at the axis (60, 40), from which (c, r) -> (c, r) / (1 + (c - 60) / 600) changes the
    // columns by 1 - 60 / 600.
    const Matrix perspective{1, 0, 0, 0, 1, 0, 1.0 / 600, 0, 0.9};
    ASSERT_EQ(tqTransformImage(image.Address(), perspective.data(), 0, 0, 1, 0), 0);
    EXPECT_FLOAT_EQ(image.Header().CenterCol, 60.0f);
    EXPECT_FLOAT_EQ(image.Header().CenterRow, 40.0f);
    EXPECT_FLOAT_EQ(image.Header().PelsPerMeterY, 1000.0f);
    EXPECT_FLOAT_EQ(image.Header().PelsPerMeterX, static_cast<float>(1000.0 / std::hypot(0.9, 40.0 / 600)));

    image.Header().PelsPerMeterX = 0.0f;
    image.Header().CenterCol = std::numeric_limits<float>::quiet_NaN();
    ASSERT_EQ(tqTransformImage(image.Address(), turned.data(), 0, 0, 1, 0), 0);
    EXPECT_EQ(image.Header().PelsPerMeterX, 0.0f);
}

TEST(TransformImage, HorizonsAndDistantPlacesAreFilled) {
    for (const Matrix& matrix :
         {Matrix{1, 0, 0, 0, 1, 0, 1, 0, -3}, Matrix{1e9, 0, 1e12, 0, 1e9, 0, 0, 0, 1}}) {
        for (const std::int32_t kernel : {0, 1, 2}) {
            Image image = RandomImage(9, 9, 1, 100, 200);
            ASSERT_EQ(tqTransformImage(image.Address(), matrix.data(), 0, 0, kernel, 9), 0);
            EXPECT_EQ(image(3, 0), 9);
        }
    }
}

TEST(TransformImage, RefusesWhatHasNoResult) {
    struct Case {
        Matrix matrix;
        std::int32_t cols, rows, kernel, status;
    };
    Image image = RandomImage(9, 9, 1);
    for (const Case& c :
         {Case{{1, 2, 3, 2, 4, 6, 0, 0, 1}, 0, 0, 1, -2}, Case{{}, 0, 0, 1, -2},
          Case{{kNan, 0, 0, 0, 1, 0, 0, 0, 1}, 0, 0, 1, -2},
          Case{{kInfinity, 0, 0, 0, 1, 0, 0, 0, 1}, 0, 0, 1, -2},
          Case{{1e300, 0, 0, 0, 1e300, 0, 0, 0, 1e300}, 0, 0, 1, -2},
          Case{{0.1, 0.2, 0.3, 0.3, 0.6, 0.9, 0.7, 0.1, 1}, -1, -1, 9, -2}, Case{kIdentity, -1, 0, 1, -3},
          Case{kIdentity, 0, 8001, 9, -3}, Case{kIdentity, 0, 0, 3, -4}, Case{kIdentity, 0, 0, -1, -4}}) {
        EXPECT_EQ(tqTransformImage(image.Address(), c.matrix.data(), c.cols, c.rows, c.kernel, 0), c.status);
        EXPECT_TRUE(SamePels(RandomImage(9, 9, 1), image));
    }
    EXPECT_EQ(tqTransformImage(nullptr, kIdentity.data(), 0, 0, 1, 0), -1);
    EXPECT_EQ(tqTransformImage(image.Address(), nullptr, 0, 0, 1, 0), -2);
}

}  // namespace
