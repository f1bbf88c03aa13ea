#include "tqimage/focus.h"

#include <cmath>

#include "scenes.h"

namespace tqtest {
namespace {

struct Found {
    std::int32_t status = -77;
    double smallest = -7.0, largest = -7.0, mean = -7.0;
};

Found Analyze(const TqImage* image) {
    Found found;
    found.status = tqAnalyzeFocusImage(image, &found.smallest, &found.largest, &found.mean);
    return found;
}

/// 1 in every other stretch of `period` / 2, blurred by a Gaussian; from -1 to 1.
double Square(double x, double period, double sigma) {
    double sum = 0.0;
    if (sigma == 0.0) return std::fmod(x + 100.0 * period, period) < 0.5 * period ? 1.0 : -1.0;
    for (int k = 1; k < 400; k += 2) {
        const double w = 2.0 * kPi * k / period;
        sum += 4.0 / (kPi * k) * std::sin(w * x) * std::exp(-0.5 * w * w * sigma * sigma);
    }
    return sum;
}

Image Checkerboard(double sigma, double dark, double bright, std::int32_t cols = 800,
                   std::int32_t rows = 600) {
    constexpr double kPeriod = 48.0;
    std::vector<double> x, y;
    for (std::int32_t i = 0; i < cols; ++i)
        x.push_back(Square(i + 0.5, kPeriod, sigma));
    for (std::int32_t i = 0; i < rows; ++i)
        y.push_back(Square(i + 0.5, kPeriod, sigma));
    return MakeImage(cols, rows, [&](auto col, auto row) {
        const double product = x[static_cast<std::size_t>(col)] * y[static_cast<std::size_t>(row)];
        return ToPel(0.5 * (dark + bright) + 0.5 * (bright - dark) * product);
    });
}

TEST(Focus, FallsWithTheBlurAndNotWithTheExposure) {
    struct Case {
        double sigma, quotient;
    };
    for (const Case& it : {Case{0.0, 0.50}, Case{1.0, 0.31}, Case{2.0, 0.18}, Case{4.0, 0.095}}) {
        const Found bright = Analyze(Checkerboard(it.sigma, 1000.0, 61000.0));
        const Found faint = Analyze(Checkerboard(it.sigma, 250.0, 15250.0));
        EXPECT_EQ(bright.status, 0);
        EXPECT_NEAR(bright.smallest, it.quotient, 0.007);
        EXPECT_NEAR(bright.largest, it.quotient, 0.007);
        EXPECT_NEAR(bright.mean, it.quotient, 0.007);
        EXPECT_NEAR(faint.mean, bright.mean, 0.0002);
    }
}

TEST(Focus, NineRegionsOfWhichEachCounts) {
    // Extent 100: region ends are the percentages of 99, to the nearest pel: 1-9, 46-53, 90-98.
    const Image flat = MakeImage(100, 100, [](auto, auto) { return 400; });
    for (const std::int32_t row : {5, 50, 95}) {
        for (const std::int32_t col : {5, 50, 95}) {
            Image image = flat;
            image(col, row) = 800;
            const Found found = Analyze(image);
            EXPECT_EQ(found.status, 0);
            EXPECT_EQ(found.smallest, 0.0) << "a region without contrast counts";
            EXPECT_EQ(found.largest, 0.25) << "2 * 400 / 8 / 400 beside the pel";
            EXPECT_EQ(found.mean, 0.25 / 9);
        }
    }
    for (const std::int32_t col : {0, 1, 9, 10, 45, 46, 98, 99}) {
        Image image = flat;
        image(col, 50) = 800;
        const bool inside = col == 1 || col == 9 || col == 46 || col == 98;
        EXPECT_EQ(Analyze(image).largest > 0.0, inside) << col;
    }
}

TEST(Focus, SaysWhatItCannotMeasure) {
    const Image tiny(20, 200), low(200, 1), enough(40, 40);
    for (const auto& [image, status] :
         {std::pair<const TqImage*, std::int32_t>{nullptr, -2}, {tiny, -3}, {low, -3}}) {
        const Found found = Analyze(image);
        EXPECT_EQ(found.status, status);
        EXPECT_TRUE(found.smallest == 1e7 && found.largest == 0.0 && found.mean == 0.0);
    }
    EXPECT_EQ(tqAnalyzeFocusImage(enough, nullptr, nullptr, nullptr), 0);
}

}  // namespace
}  // namespace tqtest
