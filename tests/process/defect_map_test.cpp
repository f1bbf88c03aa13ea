#include <cstdlib>
#include <utility>

#include "process_tests.h"
#include "tqimage/defects.h"

namespace {

using namespace tqtest;

Image Fixed(Image image, const Image& map, std::int32_t width, std::int32_t height) {
    for (std::int32_t row = 0; row < image.Rows(); ++row) {
        for (std::int32_t col = 0; col < image.Cols(); ++col) {
            if (map(col, row) == 0) continue;
            const auto [left, right] = Shifted(col, width, image.Cols());
            const auto [top, bottom] = Shifted(row, height, image.Rows());
            std::int64_t sum = 0, count = 0;
            for (std::int32_t y = top; y <= bottom; ++y) {
                for (std::int32_t x = left; x <= right; ++x) {
                    const bool core = std::abs(x - col) <= 1 && std::abs(y - row) <= 1;
                    if (core || image(x, y) == 0 || map(x, y) != 0) continue;
                    sum += image(x, y);
                    ++count;
                }
            }
            if (count != 0) image(col, row) = static_cast<std::uint16_t>(sum / count);
        }
    }
    return image;
}

TEST(FixDefects, AgreesWithTheRuleForFewAndManyMarks) {
    const Image image = RandomImageWithHoles(43, 31, 1, 6);
    // One mark in 2 goes through sums of columns, one in 1500 pel by pel, from some window on.
    for (const std::uint32_t oneIn : {1u, 2u, 9u, 200u, 1500u}) {
        Image map = RandomImage(43, 31, 2, 0, oneIn - 1);
        for (std::size_t i = 0; i < map.Count(); ++i)
            map.Pels()[i] = map.Pels()[i] == 0 ? 1 : 0;
        for (const std::int32_t width : {0, 1, 3, 4, 8, 43}) {
            for (const std::int32_t height : {0, 1, 3, 6, 31}) {
                Image repaired = image;
                EXPECT_EQ(tqFixDefects(repaired, map, width, height), 0);
                EXPECT_TRUE(SamePels(Fixed(image, map, width, height), repaired))
                    << oneIn << " " << width << " x " << height;
            }
        }
    }
}

TEST(FixDefects, CodesInTheirOrder) {
    Image image = RandomImage(6, 4, 3);
    const Image kept = image;
    EXPECT_EQ(tqFixDefects(image, nullptr, -1, 0), -3);
    EXPECT_EQ(tqFixDefects(image, Image(4, 6), -1, 0), -4);
    for (const auto& [width, height] : {std::pair{-1, 3}, {7, 3}, {3, -1}, {3, 5}, {kMin, 0}, {0, kMax}})
        EXPECT_EQ(tqFixDefects(image, kept, width, height), -5);
    // An image that is its own map has no healthy neighbour left.
    EXPECT_EQ(tqFixDefects(image, image, 5, 3), 0);
    EXPECT_TRUE(SamePels(kept, image));
}

Image WithoutHot(Image image, std::int32_t threshold, float factor, std::int32_t width, std::int32_t height) {
    for (std::int32_t row = 0; row < image.Rows(); ++row) {
        for (std::int32_t col = 0; col < image.Cols(); ++col) {
            if (image(col, row) <= threshold) continue;
            const auto [left, right] = Shifted(col, OddSize(width, image.Cols()), image.Cols());
            const auto [top, bottom] = Shifted(row, OddSize(height, image.Rows()), image.Rows());
            auto pels = WindowPels(image, {left, right}, {top, bottom});
            std::erase_if(pels, [&](std::uint16_t pel) { return pel > threshold; });
            const auto sum = static_cast<double>(AllOf(pels).sum), count = static_cast<double>(pels.size());
            if (count == 0) continue;
            const double value = std::max(factor, 0.0f) * sum / count;
            image(col, row) = static_cast<std::uint16_t>(std::min(value, 65535.0));
        }
    }
    return image;
}

TEST(ReplaceHotPixels, ReplacedPelsServeTheNextOnes) {
    const Image image = RandomImage(43, 31, 6);
    for (const std::int32_t threshold : {0, 20000, 65534}) {
        for (const float factor : {-1.0f, 0.5f, 1.0f, 1.75f, 40.0f}) {
            for (const auto& [width, height] : {std::pair{kMin, 3}, {3, 3}, {4, 6}, {15, 1}, {kMax, kMax}}) {
                Image cooled = image;
                EXPECT_EQ(tqReplaceHotPixels(cooled, threshold, factor, width, height), 0);
                EXPECT_TRUE(SamePels(WithoutHot(image, threshold, factor, width, height), cooled))
                    << threshold << " " << factor << " " << width << " x " << height;
            }
        }
    }
}

TEST(ReplaceHotPixels, HostileNumbers) {
    const Image image = RandomImage(9, 7, 7, 1);
    for (const std::int32_t threshold : {kMin, -1, 65535, kMax}) {
        Image same = image;
        EXPECT_EQ(tqReplaceHotPixels(same, threshold, 1.0f, 3, 3), 0);
        EXPECT_TRUE(SamePels(image, same)) << "nothing is healthy, or nothing hot";
    }
    for (const auto& [factor, pel] : {std::pair{kNan, 0}, {3e38f, 65535}, {kInfinity, 65535}}) {
        Image row = MakeImage(3, 1, {10, 90, 10});
        EXPECT_EQ(tqReplaceHotPixels(row, 50, factor, 3, 1), 0);
        EXPECT_EQ(row(1, 0), pel);
    }
}

Image Edited(Image image, std::int32_t threshold, std::int32_t value, std::int32_t width,
             std::int32_t height) {
    for (std::int32_t row = 0; row < image.Rows(); ++row) {
        for (std::int32_t col = 0; col < image.Cols(); ++col) {
            if (image(col, row) <= threshold) continue;
            const auto [left, right] = Clipped(col, width, image.Cols());
            const auto [top, bottom] = Clipped(row, height, image.Rows());
            for (std::int32_t y = top; y <= bottom; ++y) {
                for (std::int32_t x = left; x <= right; ++x)
                    image(x, y) = static_cast<std::uint16_t>(std::min(value, 65535));
            }
        }
    }
    return image;
}

TEST(EditSpikes, FillsAndSpreadsAsIfPelByPel) {
    // Few spikes leave room between their rectangles, so that what spreads is told from what does not.
    Image image = RandomImage(37, 29, 8, 0, 1000);
    image(5, 3) = image(30, 9) = image(17, 20) = 40000;
    image(18, 21) = 50000;
    for (const std::int32_t threshold : {-1, 500, 990, 30000, 45000, 65534}) {
        for (const std::int32_t value : {0, 700, 35000, 60000, kMax}) {
            for (const auto& [width, height] :
                 {std::pair{0, 0}, {3, 1}, {3, 3}, {4, 6}, {-1, 5}, {200, 200}}) {
                Image edited = image;
                EXPECT_EQ(tqEditSpikes(edited, threshold, value, width, height), 0);
                EXPECT_TRUE(SamePels(Edited(image, threshold, value, width, height), edited))
                    << threshold << " " << value << " " << width << " x " << height;
            }
        }
    }
}

TEST(EditSpikes, ANegativeValueIsTheMeanOfTheHeader) {
    const double totals[] = {4 * 12.9, 0, -4e9, 4e9, 1e300, kNan};
    const std::uint16_t means[] = {12, 0, 0, 65535, 0, 0};
    for (std::size_t i = 0; i < std::size(totals); ++i) {
        Image image = MakeImage(4, 1, {500, 1, 2, 3});
        image.Header().TotalPelValue = totals[i];
        EXPECT_EQ(tqEditSpikes(image, 499, -1, 1, 1), 0);
        EXPECT_TRUE(SamePels(MakeImage(4, 1, {means[i], 1, 2, 3}), image)) << totals[i];
    }
}

TEST(EditSpikes, HostileNumbers) {
    const Image image = RandomImage(9, 7, 9, 1, 65535);
    for (const auto& [threshold, width, height] :
         {std::tuple{kMax, 3, 3}, {65535, 3, 3}, {0, -2, 3}, {0, 3, kMin}}) {
        Image same = image;
        EXPECT_EQ(tqEditSpikes(same, threshold, 5, width, height), 0);
        EXPECT_TRUE(SamePels(image, same));
    }
    for (const std::int32_t threshold : {kMin, 0}) {
        Image filled = image;
        EXPECT_EQ(tqEditSpikes(filled, threshold, 5, kMax, kMax), 0);
        EXPECT_TRUE(SamePels(MakeImage(9, 7, [](std::int32_t, std::int32_t) { return 5; }), filled));
    }
}

}  // namespace
