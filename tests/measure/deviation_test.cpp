#include "tqimage/deviation.h"

#include <cmath>

#include "statistics.h"

namespace tqtest {
namespace {

struct Rectangle {
    std::int32_t left, top, right, bottom;
};

const std::vector<Rectangle> kRectangles = {
    {0, 0, 0, 0},     {1, 2, 9, 7},   {3, 3, 3, 3},
    {-5, -5, 99, 99}, {5, 1, 4, 6},   {2, 5, 6, 4},
    {0, 3, 0, 3},     {-9, 2, -3, 2}, {kLowest, kLowest, kHighest, kHighest}};

std::vector<std::uint16_t> LitPels(const Image& image, const Rectangle& at) {
    auto pels = ValuesAt(image, RectangleReference(image, at.left, at.top, at.right, at.bottom));
    std::erase(pels, 0);
    return pels;
}

struct Moments {
    double mean = 0, deviation = 0;
};

/// In two passes about the mean, as the textbook has it.
Moments MomentsOf(const std::vector<std::uint16_t>& pels) {
    Moments of;
    const auto count = static_cast<double>(pels.size());
    for (const std::uint16_t pel : pels)
        of.mean += pel;
    of.mean /= count;
    for (const std::uint16_t pel : pels)
        of.deviation += (pel - of.mean) * (pel - of.mean);
    of.deviation = std::sqrt(of.deviation / count);
    return of;
}

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
        const auto pels = LitPels(image, {0, 0, 0, 0});
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
    for (const Image& image : StatisticsImages()) {
        for (const Rectangle& at : kRectangles) {
            SCOPED_TRACE(testing::Message() << image.Cols() << " x " << image.Rows() << ": " << at.left
                                            << ", " << at.top << ", " << at.right << ", " << at.bottom);
            const auto pels = LitPels(image, at);
            const Moments of = MomentsOf(pels);
            double mean = -9, plus = -9, minus = -9;
            ExpectNearlyOrNan(of.deviation,
                              tqCalcStdDevInRegion(image, &mean, at.left, at.top, at.right, at.bottom));
            ExpectNearlyOrNan(of.mean, mean);
            mean = -9;
            EXPECT_EQ(tqCalcDevInRegion(image, &mean, &plus, &minus, at.left, at.top, at.right, at.bottom),
                      pels.empty() ? -99 : 0);
            Image mura;
            const std::int32_t status =
                tqCalcImageDevInRegion(mura.Address(), image, at.left, at.top, at.right, at.bottom);
            if (pels.empty()) {
                EXPECT_EQ(status, -99);
                EXPECT_EQ(mura.Get(), nullptr);
                EXPECT_EQ(mean + plus + minus, -27);
                continue;
            }
            ASSERT_EQ(status, 0);
            const auto [low, high] = std::minmax_element(pels.begin(), pels.end());
            ExpectNearlyOrNan(of.mean, mean);
            EXPECT_EQ(plus, (*high - mean) * 100.0 / mean);
            EXPECT_EQ(minus, (*low - mean) * 100.0 / mean);
            Image expected(image.Header());
            double total = 0;
            float largest = 0;
            for (const Position& pel : RectangleReference(image, at.left, at.top, at.right, at.bottom)) {
                if (image(pel.col, pel.row) == 0) continue;
                const double value = std::trunc(32000.0 * image(pel.col, pel.row) / of.mean + 0.5);
                expected(pel.col, pel.row) = static_cast<std::uint16_t>(std::clamp(value, 1.0, 65535.0));
                total += expected(pel.col, pel.row);
                largest = std::max(largest, static_cast<float>(expected(pel.col, pel.row)));
            }
            EXPECT_TRUE(SamePels(expected, mura));
            EXPECT_EQ(mura.Header().LuxPerGrey, 1.0f / 32000.0f);
            EXPECT_EQ(mura.Header().MaxPelValue, largest);
            EXPECT_EQ(mura.Header().TotalPelValue, total);
            EXPECT_EQ(mura.Header().PelsPerMeterX, image.Header().PelsPerMeterX);
        }
    }
    // A pel far above or below the mean stays within what a pel can hold, and has data.
    Image image = MakeImage(64, 64, [](auto col, auto row) { return col == 5 && row == 6 ? 65535 : 1; });
    ASSERT_EQ(tqCalcImageDevInRegion(image.Address(), image, 0, 0, 0, 0), 0) << "out may hold the image";
    EXPECT_EQ(image(5, 6), 65535);
    EXPECT_EQ(image(0, 0), 1882);
    image = MakeImage(2, 1, {1, 65535});
    ASSERT_EQ(tqCalcImageDevInRegion(image.Address(), image, 0, 0, 0, 0), 0);
    EXPECT_EQ(image(0, 0), 1);
}

TEST(Deviation, InvalidImages) {
    const Image invalid(8001, 1), image = RandomImage(17, 13, 1);
    double mean = 7, plus = 7, minus = 7;
    for (const TqImage* bad : {static_cast<const TqImage*>(nullptr), static_cast<const TqImage*>(invalid)}) {
        Image out = image;
        const TqImage* const block = out.Get();
        EXPECT_EQ(tqCalcStdDev(bad, &mean), -2.0);
        EXPECT_EQ(tqCalcStdDevInRegion(bad, &mean, 0, 0, 0, 0), -2.0);
        EXPECT_EQ(tqCalcDevInRegion(bad, &mean, &plus, &minus, 0, 0, 0, 0), -2);
        EXPECT_EQ(tqCalcImageDevInRegion(out.Address(), bad, 0, 0, 0, 0), -2);
        EXPECT_EQ(out.Get(), block);
    }
    EXPECT_EQ(tqCalcImageDevInRegion(nullptr, image, 0, 0, 0, 0), -2);
    EXPECT_EQ(mean + plus + minus, 21);
}

}  // namespace
}  // namespace tqtest
