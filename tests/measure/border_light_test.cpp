#include "tqimage/border_light.h"

#include <cmath>
#include <functional>
#include <limits>
#include <utility>

#include "statistics.h"

namespace tqtest {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct Strips {
    std::int32_t left, top, right, bottom, gap, depth, ceiling;
};

struct Light {
    std::int32_t status = -9;
    double left = -9, top = -9, right = -9, bottom = -9, mean = -9, maximum = -9;
    std::int32_t column = -9, row = -9;
    bool operator==(const Light&) const = default;
};

void PrintTo(const Light& it, std::ostream* out) {
    *out << it.status << ": " << it.left << ", " << it.top << ", " << it.right << ", " << it.bottom << "; "
         << it.mean << ", " << it.maximum << " at " << it.column << ", " << it.row;
}

Light Measure(const TqImage* image, const Strips& s) {
    Light light;
    light.status = tqMeasureBorderLight(image, s.left, s.top, s.right, s.bottom, s.gap, s.depth, s.ceiling,
                                        &light.left, &light.top, &light.right, &light.bottom, &light.mean,
                                        &light.maximum, &light.column, &light.row);
    return light;
}

Light Remove(Image& image, const Strips& s, std::int32_t mode, double strength) {
    Light light;
    light.status = tqRemoveBorderLight(
        image.Address(), s.left, s.top, s.right, s.bottom, s.gap, s.depth, s.ceiling, &light.left, &light.top,
        &light.right, &light.bottom, &light.mean, &light.maximum, &light.column, &light.row, mode, strength);
    return light;
}

/// Asks every pel of the image which strip it lies in; the area is given as clamped.
Light MeasureReference(const Image& image, const Strips& s) {
    Light light{0, 0, 0, 0, 0, 0, 0, -1, -1};
    const std::int64_t gap = std::max(s.gap, 0), depth = std::max(s.depth, 1);
    const auto within = [&](std::int64_t distance) { return distance > gap && distance <= gap + depth; };
    double sums[5] = {}, counts[5] = {};
    for (std::int32_t row = 0; row < image.Rows(); ++row) {
        for (std::int32_t col = 0; col < image.Cols(); ++col) {
            const int pel = image(col, row);
            if (pel == 0 || (s.ceiling > 0 && pel > s.ceiling)) continue;
            const bool beside = row >= s.top && row <= s.bottom, over = col >= s.left && col <= s.right;
            const int side = beside && within(s.left - col)    ? 0
                             : over && within(s.top - row)     ? 1
                             : beside && within(col - s.right) ? 2
                             : over && within(row - s.bottom)  ? 3
                                                               : -1;
            if (side < 0) continue;
            for (const int of : {side, 4})
                sums[of] += pel, counts[of] += 1;
            if (pel > light.maximum) light.maximum = pel, light.column = col, light.row = row;
        }
    }
    double* const means[] = {&light.left, &light.top, &light.right, &light.bottom, &light.mean};
    for (int i = 0; i < 5; ++i)
        *means[i] = counts[i] > 0 ? sums[i] / counts[i] : 0.0;
    if (light.column < 0) light.status = -99;
    return light;
}

TEST(BorderLight, MeasuresFourStripsWithoutTheirCorners) {
    std::vector<Image> images = {RandomImageWithHoles(60, 40, 71), RandomImage(60, 40, 72, 0, 3),
                                 RandomImage(5, 9, 73), Image(60, 40)};
    for (const Image& image : images) {
        const std::int32_t lastCol = image.Cols() - 1, lastRow = image.Rows() - 1;
        for (const auto& [l, t, r, b] : std::vector<std::array<std::int32_t, 4>>{
                 {lastCol / 3, lastRow / 4, 2 * lastCol / 3, lastRow / 2},
                 {0, 2, lastCol, 3},
                 {1, 1, lastCol - 1, lastRow - 1},
                 {0, 0, lastCol, lastRow}}) {
            for (const std::int32_t gap : {0, 1, 5, -3, kLowest, kHighest}) {
                for (const std::int32_t depth : {1, 4, 0, 30, kLowest, kHighest}) {
                    for (const std::int32_t ceiling : {0, 1, 30000, 65535, -1, kHighest}) {
                        const Strips strips{l, t, r, b, gap, depth, ceiling};
                        ASSERT_EQ(Measure(image, strips), MeasureReference(image, strips))
                            << image.Cols() << " x " << image.Rows() << ", " << l << ", " << t << ", " << r
                            << ", " << b << ", gap " << gap << ", depth " << depth << ", to " << ceiling;
                    }
                }
            }
        }
    }
}

TEST(BorderLight, FailuresOfTheMeasurement) {
    const Image image = RandomImage(20, 10, 74, 1);
    const auto failed = [](std::int32_t status) { return Light{status, 0, 0, 0, 0, 0, 0, -1, -1}; };
    EXPECT_EQ(Measure(nullptr, {}), failed(-2));
    EXPECT_EQ(Measure(image, {9, 2, 8, 5, 0, 1, 0}), failed(-3));
    EXPECT_EQ(Measure(image, {0, 0, 0, 0, 0, 1, 0}), failed(-99)) << "nothing around the whole image";
    EXPECT_EQ(Measure(Image(20, 10), {5, 3, 8, 5, 0, 1, 0}), failed(-99));
    EXPECT_EQ(tqMeasureBorderLight(image, 5, 3, 8, 5, 0, 1, 0, nullptr, nullptr, nullptr, nullptr, nullptr,
                                   nullptr, nullptr, nullptr),
              0);
}

/// A display of zeros in light that is known everywhere, so that what is left is the error.
struct Scene {
    std::function<double(double col, double row)> light;
    Strips strips{30, 20, 90, 60, 3, 5, 0};

    Image Render() const {
        return MakeImage(
            121, 81, [this](auto col, auto row) { return static_cast<int>(std::lround(light(col, row))); });
    }
    /// Largest error of the background inside the area, and up to `around` pels outside it.
    double LargestError(std::int32_t mode, std::int32_t around = 0) const {
        constexpr int kDisplay = 20000;
        const Image spilled = Render();
        Image image = spilled;
        for (std::int32_t row = strips.top; row <= strips.bottom; ++row) {
            for (std::int32_t col = strips.left; col <= strips.right; ++col)
                image(col, row) = static_cast<std::uint16_t>(image(col, row) + kDisplay);
        }
        EXPECT_EQ(Remove(image, strips, mode, 0.5), MeasureReference(spilled, strips));
        double worst = 0;
        for (std::int32_t row = strips.top - around; row <= strips.bottom + around; ++row) {
            for (std::int32_t col = strips.left - around; col <= strips.right + around; ++col) {
                const bool inside =
                    row >= strips.top && row <= strips.bottom && col >= strips.left && col <= strips.right;
                const double left = spilled(col, row) + (inside ? kDisplay : 0) - 0.5 * light(col, row);
                worst = std::max(worst, std::abs(image(col, row) - left));
            }
        }
        return worst;
    }
};

TEST(BorderLight, RecoversKnownLight) {
    // Half the light is subtracted, so half a grey of the background is a quarter; the rounded pel and the
    // rounded result add theirs.
    const double kHalfGrey = 0.25 + 0.5 + 1e-9;
    const Scene flat{[](double, double) { return 700; }};
    const Scene plane{[](double col, double row) { return 900 + 3.17 * col - 4.43 * row; }};
    const Scene bowl{[](double col, double row) {
        return 900 + 0.08 * (col - 60) * (col - 60) + 0.1 * (row - 40) * (row - 40) + 2 * col;
    }};
    for (const std::int32_t mode : {0, 1, 2})
        EXPECT_LE(flat.LargestError(mode, 20), kHalfGrey) << "mode " << mode;
    for (const std::int32_t mode : {1, 2})
        EXPECT_LE(plane.LargestError(mode, mode == 1 ? 20 : 5), kHalfGrey) << "mode " << mode;
    EXPECT_GT(plane.LargestError(0), 50);
    EXPECT_GT(bowl.LargestError(1), 20);
    EXPECT_LE(bowl.LargestError(2), 6) << "a patch bends with its profiles";
}

TEST(BorderLight, TheCoonsPatchKeepsTheStepsOfItsProfilesAndBridgesTheirGaps) {
    Image image(50, 40);
    const Strips strips{10, 10, 39, 29, 2, 1, 0};
    for (std::int32_t col = 10; col <= 39; ++col)
        image(col, 7) = image(col, 32) = col < 25 ? 1000 : 3000;
    for (std::int32_t row = 10; row <= 29; ++row) {
        image(7, row) = 1000;
        image(42, row) = 3000;
    }
    // Half the pels of a strip hold no data: places inside are bridged, those at the end take their
    // neighbour.
    for (std::int32_t row = 20; row <= 29; ++row)
        image(42, row) = 0;
    for (const std::int32_t col : {12, 13, 14})
        image(col, 32) = 0;
    for (std::int32_t row = 11; row <= 28; ++row) {
        for (std::int32_t col = 11; col <= 38; ++col)
            image(col, row) = 10000;
    }
    ASSERT_EQ(Remove(image, strips, 2, 1.0).status, 0);
    // The corners lie on the extended slopes of the profiles; their rises, like the profiles' own, cancel on
    // the way along the blend, so across the step the patch drops by its whole height.
    for (const std::int32_t row : {11, 20, 28}) {
        EXPECT_NEAR(image(24, row) - image(25, row), 2000, 20) << row;
        EXPECT_NEAR(image(12, row) - image(13, row), image(36, row) - image(37, row), 2) << row;
    }
}

TEST(BorderLight, StrengthRoundingAndClamping) {
    const Strips strips{2, 2, 5, 4, 0, 1, 0};
    const auto result = [&](int border, int pel, double strength) {
        Image image = MakeImage(8, 7, [&](auto col, auto row) {
            return col >= 2 && col <= 5 && row >= 2 && row <= 4 ? pel : border;
        });
        image.Header().Spare = 77;
        const TqImageHeader header = image.Header();
        EXPECT_EQ(Remove(image, strips, 0, strength).status, 0);
        EXPECT_TRUE(SameHeader(header, image.Header()));
        return image(3, 3);
    };
    EXPECT_EQ(result(100, 500, 1.0), 400);
    EXPECT_EQ(result(100, 500, 0.125), 488) << "487.5 and a half";
    EXPECT_EQ(result(100, 500, -1.0), 600);
    EXPECT_EQ(result(100, 60, 1.0), 0);
    EXPECT_EQ(result(60000, 60000, -1.0), 65535);
    for (const double strength : {kNaN, HUGE_VAL, -HUGE_VAL, 1e300})
        EXPECT_EQ(result(100, 500, strength), 0) << strength;
}

TEST(BorderLight, WithoutABackgroundTheImageStays) {
    const Strips strips{3, 3, 6, 6, 0, 1, 0};
    const Image full = RandomImage(10, 10, 75, 1);
    const auto stays = [&](const Image& before, std::int32_t mode, std::int32_t status) {
        Image image = before;
        Light expected = MeasureReference(before, strips);
        expected.status = status;
        EXPECT_EQ(Remove(image, strips, mode, 1.0), expected) << "mode " << mode;
        EXPECT_TRUE(SamePels(before, image));
    };
    for (const std::int32_t mode : {-1, 3, kLowest, kHighest})
        stays(full, mode, -4);
    Image few(10, 10);
    few(2, 3) = few(2, 4) = 500;
    stays(few, 1, -4);
    stays(few, 2, -4);
    few(3, 2) = 400;  // on a slant with (2, 3)
    few(2, 4) = 0;
    stays(few, 1, -4);
    few(4, 7) = 300;
    EXPECT_EQ(Remove(few, strips, 1, 1.0).status, 0) << "three pels span a plane";
    EXPECT_EQ(few(2, 3) + few(3, 2) + few(4, 7), 0) << "which goes through all three";

    Image image = full;
    EXPECT_EQ(Remove(image, {6, 3, 5, 6, 0, 1, 0}, 0, 1.0).status, -3);
    EXPECT_EQ(Remove(image, {0, 0, 0, 0, 0, 1, 0}, 0, 1.0).status, -99);
}

}  // namespace
}  // namespace tqtest
