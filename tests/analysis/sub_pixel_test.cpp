#include "tqimage/sub_pixel.h"

#include <cmath>
#include <limits>

#include "scenes.h"

namespace tqtest {
namespace {

Image Spot(double col, double row, double sigmaX, double sigmaY, double background, double peak) {
    return MakeImage(31, 27, [=](std::int32_t c, std::int32_t r) {
        const double x = (c - col) / sigmaX, y = (r - row) / sigmaY;
        return ToPel(background + peak * std::exp(-0.5 * (x * x + y * y)));
    });
}

struct Found {
    std::int32_t status = -77;
    double col = -7.0, row = -7.0, peak = -7.0;
};

Found Find(const TqImage* image, std::int32_t threshold, std::int32_t mode, std::int32_t left = 0,
           std::int32_t top = 0, std::int32_t right = 30, std::int32_t bottom = 26) {
    Found found;
    found.status = tqFindSubPixelInRegion(image, &found.col, &found.row, &found.peak, threshold, left, top,
                                          right, bottom, mode);
    return found;
}

TEST(SubPixel, GaussianSpotsOfEveryPhaseWidthAndBackground) {
    for (const double sigma : {1.0, 1.3, 2.0}) {
        for (const double background : {0.0, 1200.0}) {
            for (const double shift : {-0.45, -0.2, 0.0, 0.1, 0.33, 0.49}) {
                const double col = 15.0 + shift, row = 12.0 - 0.7 * shift;
                const Image image = Spot(col, row, sigma, 1.2 * sigma, background, 50000.0);
                const Found gauss = Find(image, 5000, 0);
                SCOPED_TRACE(testing::Message() << "sigma " << sigma << ", shift " << shift);
                EXPECT_EQ(gauss.status, 0);
                EXPECT_NEAR(gauss.col, col, 0.0005);
                EXPECT_NEAR(gauss.row, row, 0.0005);
                EXPECT_NEAR(gauss.peak, background + 50000.0, 60.0);
                const Found square = Find(image, 5000, 1);
                EXPECT_EQ(square.status, 0);
                EXPECT_NEAR(square.col, col, 0.1);
                const Found centroid = Find(image, static_cast<std::int32_t>(background), 2);
                EXPECT_EQ(centroid.status, 0);
                EXPECT_NEAR(centroid.col, col, 0.01);
                EXPECT_NEAR(centroid.row, row, 0.01);
            }
        }
    }
}

TEST(SubPixel, AParaboloidOfGreyLevelsIsFoundExactly) {
    const Image image = MakeImage(9, 9, [](std::int32_t c, std::int32_t r) {
        const double x = c - 4.25, y = r - 4.0;
        return ToPel(9000.0 - 160.0 * x * x - 320.0 * y * y);
    });
    const Found found = Find(image, 0, 1);
    EXPECT_EQ(found.status, 0);
    EXPECT_NEAR(found.col, 4.25, 1e-12);
    EXPECT_NEAR(found.row, 4.0, 1e-12);
    EXPECT_NEAR(found.peak, 9000.0, 1e-9);
}

TEST(SubPixel, WholePelsWhereThereIsNoSummit) {
    const Image edge = Spot(0.3, 12.0, 1.5, 1.5, 0.0, 40000.0);
    const Image flat = MakeImage(31, 27, [](auto, auto) { return 300; });
    const Image ramp = MakeImage(31, 27, [](auto col, auto) { return col == 30 ? 0 : 100 + 50 * col; });
    for (const std::int32_t mode : {0, 1}) {
        struct Case {
            const char* what;
            const Image& image;
            double col, row, peak;
        };
        for (const Case& it : {Case{"edge", edge, 0, 12, 1.0 * edge(0, 12)}, Case{"flat", flat, 0, 0, 300},
                               Case{"border", ramp, 29, 0, 1550}}) {
            SCOPED_TRACE(it.what);
            const Found found = Find(it.image, 10, mode);
            EXPECT_EQ(found.status, 1);
            EXPECT_EQ(found.col, it.col);
            EXPECT_EQ(found.row, it.row);
            EXPECT_EQ(found.peak, it.peak);
        }
    }
    // Neither a flat neighbourhood nor a ridge has one, whatever the logarithms of its levels are rounded to.
    for (std::int32_t level = 3; level < 65536; level += 113) {
        const Image notched =
            MakeImage(8, 8, [&](auto col, auto row) { return col == 6 && row == 5 ? level / 2 : level; });
        const Image ridge = MakeImage(8, 8, [&](auto, auto row) { return row == 3 ? level : level / 3; });
        for (const std::int32_t mode : {0, 1}) {
            EXPECT_EQ(Find(notched, 0, mode, 2, 2, 6, 6).status, 1) << level;
            EXPECT_EQ(Find(ridge, 0, mode, 2, 2, 6, 6).status, 1) << level;
        }
    }
    // The fit's summit lies 1.5 pels to the right of the brightest pel.
    const Image leaning =
        MakeImage(5, 5, {0, 0, 0, 0, 0, 0, 0, 0, 50, 0, 0, 0, 100, 50, 0, 0, 0, 0, 50, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(Find(leaning, 10, 1).status, 1);
    EXPECT_EQ(Find(leaning, 10, 1).col, 2.0);
}

TEST(SubPixel, TellsWhatIsMissing) {
    const Image image = Spot(15.0, 12.0, 1.5, 1.5, 0.0, 40000.0);
    EXPECT_EQ(Find(image, std::numeric_limits<std::int32_t>::min(), 2).status, 0);
    EXPECT_EQ(Find(image, 0, 7, 9, 0, 8, 20).status, -2);
    EXPECT_EQ(Find(image, 0, 0, 0, 27, 8, 40).status, -2);
    EXPECT_EQ(Find(image, 65535, 3).status, -4);
    for (const std::int32_t mode : {0, 1, 2}) {
        const Found found = Find(image, 40000, mode);
        EXPECT_EQ(found.status, -99);
        EXPECT_EQ(found.col, -7.0);
    }
    EXPECT_EQ(tqFindSubPixelInRegion(image, nullptr, nullptr, nullptr, 0, -5, -5, 99, 99, 0), 0);
}

}  // namespace
}  // namespace tqtest
