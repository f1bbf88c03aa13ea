#include <cmath>
#include <limits>

#include "images.h"
#include "tqimage/comparison.h"
#include "tqimage/line_detection.h"
#include "tqimage/moments.h"

namespace tqtest {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

using Pels = std::vector<int>;

Image Line(const Pels& pels, float luxPerGrey = 1) {
    Image image = MakeImage(static_cast<std::int32_t>(pels.size()), 1, pels);
    image.Header().LuxPerGrey = luxPerGrey;
    image.Header().Spare = 77;
    return image;
}

TEST(CompareImages, LevelsAreSharesOfTheLargestRelativeDifference) {
    struct Case {
        Image reference, test;
        float scale;
        Pels levels;
    };
    const Case cases[] = {
        // Differences of 1, 1/2, 0 and 1/4; nothing at all where both are dark.
        {Line({100, 100, 100, 200, 0}),
         Line({400, 100, 200, 300, 0}, 0.5f),
         1 / 64000.0f,
         {64000, 32000, 0, 16000, 0}},
        // The first sets the scale; the second is 2.5 of its levels, and 0.4999 is added, not a half.
        {Line({1000, 64000}), Line({11000, 64025}), 10 / 64000.0f, {64000, 2}},
        {Line({100, 200}), Line({100, 200}), 1, {0, 0}},
        // Light is infinitely far from a dark reference.
        {Line({0, 200}), Line({100, 300}), kInfinity, {0, 0}},
        // By a negative luminance differences are -2 and -2.5: none is the largest, and they wrap.
        {Line({100, 200}, -1), Line({100, 300}), 1, {65535, 65534}},
    };
    for (const Case& it : cases) {
        SCOPED_TRACE(&it - cases);
        Image result;
        ASSERT_EQ(tqCompareImages(result.Address(), it.reference, it.test), 0);
        EXPECT_TRUE(SamePels(Line(it.levels), result));
        TqImageHeader header = it.reference.Header();
        header.MaxPelValue = 64000.0f;
        header.LuxPerGrey = it.scale;
        EXPECT_TRUE(SameHeader(header, result.Header()));
        Image own = it.reference;
        ASSERT_EQ(tqCompareImages(own.Address(), own, it.test), 0) << "in place of an input";
        EXPECT_TRUE(SamePels(result, own));
    }
    Image result(2, 2);
    EXPECT_EQ(tqCompareImages(result.Address(), Image(9, 8), Image(8, 9)), -4);
    EXPECT_EQ(result.Cols(), 2);
}

/// Moments of a window of three along a line, shifted inside at its ends; pels of 0 hold no data.
TEST(Moment, OfEveryOrder) {
    struct Case {
        std::int32_t order;
        Pels line;
        double left, right;  ///< moments of the first three pels and of the last three
    };
    for (const Case& it : {Case{2, {1, 4, 4, 13}, 2, 18},
                           {1, {1, 4, 4, 13}, 4.0 / 3, 4},
                           {3, {1, 2, 9, 9}, 160.0 / 3, 42.345679},
                           {9, {1, 4, 4, 13}, 514.0 / 3, 3372354},
                           {0, {1, 4, 4, 13}, 1, 1},
                           {-1, {1, 4, 4, 13}, 5.0 / 6, 5.0 / 18},
                           {-2, {1, 2, 12, 29}, 0.0646730915, 0.0649654571},
                           {2, {0, 4, 0, 8}, 0, 4}}) {
        SCOPED_TRACE(testing::Message() << it.order << " of " << it.line[1] << ", " << it.line[2]);
        const double largest = std::max(it.left, it.right);
        for (const auto& [width, height] : {std::pair{3, kLowest}, {4, kHighest}}) {
            Image image = Line(it.line, 3), result(2, 2);
            ASSERT_EQ(tqCalcMoment(result.Address(), image, it.order, width, height), 0);
            EXPECT_FLOAT_EQ(result.Header().LuxPerGrey, static_cast<float>(largest / 65000));
            EXPECT_EQ(result.Header().MaxPelValue, 65000.0f);
            EXPECT_EQ(result.Header().Spare, 77u);
            for (std::int32_t col = 0; col < 4; ++col)
                EXPECT_NEAR(result(col, 0), (col < 2 ? it.left : it.right) / largest * 65000 - 0.5, 0.51)
                    << col;
            ASSERT_EQ(tqCalcMoment(image.Address(), image, it.order, width, height), 0);
            EXPECT_TRUE(SamePels(result, image));
        }
    }
    // Of equal distances every order is a power; with all nine pels in each window all are alike.
    const Image square = MakeImage(3, 3, {4, 8, 4, 8, 0, 8, 4, 8, 4});
    for (const auto& [order, moment] :
         {std::pair{5, 32.0f}, {-8, 1.0f / 256}, {kHighest, kInfinity}, {kLowest, 0.0f}}) {
        Image result;
        ASSERT_EQ(tqCalcMoment(result.Address(), square, order, 80, 3), 0);
        EXPECT_EQ(result.Header().LuxPerGrey, moment / 65000) << order;
    }
}

TEST(Moment, EqualPelsAndSinglePels) {
    const Image even = MakeImage(20, 9, [](auto col, auto) { return col % 3 == 0 ? 0 : 700; });
    Image result(2, 2);
    TqImage* const before = result.Get();
    for (const std::int32_t side : {1, 2, 0, kLowest}) {
        EXPECT_EQ(tqCalcMoment(result.Address(), even, 2, side, side), 0);
        EXPECT_EQ(result.Get(), before);
    }
    EXPECT_EQ(tqCalcMoment(result.Address(), even, 2, 5, 5), 0);
    EXPECT_TRUE(SamePels(Image(20, 9), result));
    EXPECT_EQ(result.Header().LuxPerGrey, 0.0f);
}

TEST(DetectLine, EveryDirectionByItsMask) {
    Image image = MakeImage(3, 3, {1, 2, 4, 8, 16, 32, 64, 128, 256});
    image.Header().Spare = 99;
    const int centres[] = {2 * 56 - 7 - 448, 2 * 146 - 73 - 292, 2 * 84 - 427, 2 * 273 - 238};
    Image result;
    for (std::uint32_t direction = 0; direction < 4; ++direction) {
        ASSERT_EQ(tqDetectLine(result.Address(), image, direction), 0);
        EXPECT_TRUE(SamePels(MakeImage(3, 3, {0, 0, 0, 0, std::abs(centres[direction]), 0, 0, 0, 0}), result))
            << direction;
        EXPECT_TRUE(SameHeader(image.Header(), result.Header()));
        // Its own line on black lights up; the image is its own place.
        Image line = MakeImage(70, 9, [&](auto col, auto row) {
            const int places[] = {row - 4, col - 4, col + row - 8, col - row};
            return places[direction] == 0 ? 20000 : 0;
        });
        ASSERT_EQ(tqDetectLine(line.Address(), line, direction), 0);
        EXPECT_EQ(line(4, 4), 65535) << "120000, stopped";
        EXPECT_EQ(line(40, 7), 0);
        EXPECT_EQ(line(direction == 1 ? 4 : 0, direction == 0 ? 4 : 0), 0) << "the border";
    }
    ASSERT_EQ(tqDetectLine(result.Address(), RandomImage(2, 9, 8), 1), 0);
    EXPECT_TRUE(SamePels(Image(2, 9), result));
    for (const std::uint32_t unknown : {4u, 0xFFFFFFFFu})
        EXPECT_EQ(tqDetectLine(result.Address(), image, unknown), -4);
}

}  // namespace
}  // namespace tqtest
