#include "tqimage/deviation.h"

#include <cmath>
#include <numeric>

#include "statistics.h"

namespace tqtest {
namespace {

void ExpectNearlyOrNan(double expected, double actual) {
    if (std::isnan(expected)) {
        EXPECT_TRUE(std::isnan(actual)) << actual;
    } else {
        EXPECT_NEAR(expected, actual, std::abs(expected) * 1e-12);
    }
}

TEST(StandardDeviation, OfAnImageReadsSquaresAs32Bits) {
    for (const std::uint32_t high : {300u, 46340u, 46341u, 65535u}) {
        const Image image = RandomImage(61, 47, high, 0, high);
        auto pels = image.Values();
        std::erase(pels, 0);
        // Few enough pels for these sums to be exact in double.
        double sum = 0, squares = 0;
        for (const std::uint32_t pel : pels) {
            sum += pel;
            squares += static_cast<std::int32_t>(pel * pel);
        }
        const auto count = static_cast<double>(pels.size());
        double mean = -9;
        ExpectNearlyOrNan(std::sqrt((count * squares - sum * sum) / (count * count)),
                          tqCalcStdDev(image, &mean));
        EXPECT_EQ(mean, sum / count);
    }
    double mean = -9;
    EXPECT_EQ(tqCalcStdDev(MakeImage(3, 2, {100, 0, 100, 100, 0, 100}), &mean), 0.0);
    EXPECT_EQ(mean, 100.0);
    const Image bright = MakeImage(40, 30, [](auto, auto) { return 50000; });
    EXPECT_TRUE(std::isnan(tqCalcStdDev(bright, &mean))) << "the squares have wrapped";
    EXPECT_EQ(mean, 50000.0);
    EXPECT_EQ(tqCalcStdDevInRegion(bright, &mean, 0, 0, 0, 0), 0.0) << "here they have not";
    EXPECT_TRUE(std::isnan(tqCalcStdDev(Image(5, 5), &mean)));
    EXPECT_TRUE(std::isnan(mean));
}

// Two levels that differ by 1 in a million: sums of squares in double lose all of it.
TEST(StandardDeviation, NothingCancelsOnANearlyUniformImage) {
    Image image = MakeImage(1000, 1000, [](auto, auto) { return 46340; });
    image(500, 500) = 46339;
    const double expected = std::sqrt(999'999.0) / 1e6;
    double mean = -9;
    ExpectNearlyOrNan(expected, tqCalcStdDev(image, &mean));
    ExpectNearlyOrNan(expected, tqCalcStdDevInRegion(image, &mean, 0, 0, 0, 0));
    ExpectNearlyOrNan(46339.999999, mean);
}

TEST(Deviation, OfThePelsOfARectangleThatAreNotZero) {
    const Image image = MakeImage(4, 2, {0, 10, 20, 30, 40, 0, 60, 80});
    struct Case {
        std::int32_t left, top, right, bottom;
        double mean, variance, plus, minus;
        std::vector<int> mura;
    };
    for (const Case& it :
         {Case{0, 0, 0, 0, 40, 3400.0 / 6, 100, -75, {0, 8000, 16000, 24000, 32000, 0, 48000, 64000}},
          {-9,
           kLowest,
           kHighest,
           9,
           40,
           3400.0 / 6,
           100,
           -75,
           {0, 8000, 16000, 24000, 32000, 0, 48000, 64000}},
          {1, 0, 2, 9, 30, 1400.0 / 3, 100, -200.0 / 3, {0, 10667, 21333, 0, 0, 0, 64000, 0}},
          {3, 1, 3, 1, 80, 0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 32000}}}) {
        SCOPED_TRACE(it.mean);
        double mean = -9, plus = -9, minus = -9;
        ExpectNearly(std::sqrt(it.variance),
                     tqCalcStdDevInRegion(image, &mean, it.left, it.top, it.right, it.bottom));
        EXPECT_EQ(mean, it.mean);
        mean = -9;
        EXPECT_EQ(tqCalcDevInRegion(image, &mean, &plus, &minus, it.left, it.top, it.right, it.bottom), 0);
        EXPECT_EQ(mean, it.mean);
        ExpectNearly(it.plus, plus);
        ExpectNearly(it.minus, minus);
        Image mura;
        ASSERT_EQ(tqCalcImageDevInRegion(mura.Address(), image, it.left, it.top, it.right, it.bottom), 0);
        const Image expected = MakeImage(4, 2, it.mura);
        EXPECT_TRUE(SamePels(expected, mura));
        EXPECT_EQ(mura.Header().LuxPerGrey, 1.0f / 32000.0f);
        EXPECT_EQ(mura.Header().MaxPelValue,
                  static_cast<float>(*std::max_element(it.mura.begin(), it.mura.end())));
        EXPECT_EQ(mura.Header().TotalPelValue, std::accumulate(it.mura.begin(), it.mura.end(), 0));
    }
    // Right before left, and a rectangle without data.
    for (const auto& [left, right] : {std::pair{2, 1}, {0, -3}}) {
        double mean = -9, plus = -9, minus = -9;
        Image mura, dark = MakeImage(4, 1, {0, 0, 0, right > 0 ? 9 : 0});
        EXPECT_EQ(tqCalcDevInRegion(dark, &mean, &plus, &minus, left, 0, right, 0), -99);
        EXPECT_EQ(tqCalcImageDevInRegion(mura.Address(), dark, left, 0, right, 0), -99);
        EXPECT_EQ(mean + plus + minus, -27);
        EXPECT_TRUE(std::isnan(tqCalcStdDevInRegion(dark, &mean, left, 0, right, 0)) && std::isnan(mean));
    }
    // A pel far above or below the mean stays within what a pel can hold, and has data.
    Image spread = MakeImage(64, 64, [](auto col, auto row) { return col == 5 && row == 6 ? 65535 : 1; });
    ASSERT_EQ(tqCalcImageDevInRegion(spread.Address(), spread, 0, 0, 0, 0), 0) << "out may hold the image";
    EXPECT_EQ(spread(5, 6), 65535);
    EXPECT_EQ(spread(0, 0), 1882);
    spread = MakeImage(2, 1, {1, 65535});
    ASSERT_EQ(tqCalcImageDevInRegion(spread.Address(), spread, 0, 0, 0, 0), 0);
    EXPECT_EQ(spread(0, 0), 1);
}

}  // namespace
}  // namespace tqtest
