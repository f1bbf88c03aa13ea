#include <cstdlib>

#include "process_tests.h"
#include "tqimage/gradients.h"

namespace {

using namespace tqtest;

constexpr std::int32_t kMethods[] = {0, 2, 3, 5};

Image Transposed(const Image& image) {
    return MakeImage(image.Rows(), image.Cols(),
                     [&](std::int32_t col, std::int32_t row) { return image(row, col); });
}

/// The horizontal gradient, written out case by case.
std::int32_t HorizontalGradient(const Image& image, std::int32_t method, std::int32_t x, std::int32_t y) {
    const std::int32_t last = image.Cols() - 1;
    const auto p = [&](std::int32_t dx, std::int32_t dy = 0) -> std::int32_t {
        return image(x + dx, y + dy);
    };
    if (last == 0) return 0;
    if (method == 0) {
        const std::int32_t l = x == 0 ? 0 : -1, r = x == last ? 0 : 1, factor = x == 0 || x == last ? 2 : 1;
        if (y == 0 || y == image.Rows() - 1) return factor * (p(r) - p(l));
        return factor * ((p(r, -1) - p(l, -1)) + 2 * (p(r) - p(l)) + (p(r, 1) - p(l, 1)));
    }
    if (x == last) return p(0) - p(-1);
    if (x == 0 || method == 2) return p(1) - p(0);
    if (method == 5 && x >= 2 && x <= last - 2)
        return static_cast<std::int32_t>((p(-2) - 8 * p(-1) + 8 * p(1) - p(2)) / 12.0 + 0.5);
    return static_cast<std::int32_t>((p(1) - p(-1)) * 0.5 + 0.5);
}

std::int32_t Magnitude(std::int32_t x, std::int32_t y) {
    const auto gx = static_cast<float>(x), gy = static_cast<float>(y);
    return static_cast<std::int32_t>(std::sqrt(gx * gx + gy * gy));
}

/// The expected image of a gradient, its largest value before the cap included.
template <class Fn>
Image GradientImage(const Image& source, Fn&& gradient) {
    Image expected(source.Header());
    std::int32_t largest = 0;
    for (std::int32_t row = 0; row < source.Rows(); ++row) {
        for (std::int32_t col = 0; col < source.Cols(); ++col) {
            const std::int32_t value = gradient(col, row);
            largest = std::max(largest, value);
            expected(col, row) = static_cast<std::uint16_t>(std::min(value, 65535));
        }
    }
    expected.Header().MaxPelValue = static_cast<float>(largest);
    return expected;
}

void ExpectSame(const Image& expected, const Image& actual) {
    ASSERT_TRUE(SamePels(expected, actual));
    EXPECT_TRUE(SameHeader(expected.Header(), actual.Header()));
}

TEST(Gradient, IsTheMagnitudeOfBothDirectionsByEveryMethod) {
    for (const std::int32_t method : kMethods) {
        for (const auto& [cols, rows] :
             {std::pair{71, 13}, {1, 1}, {1, 6}, {7, 1}, {2, 2}, {3, 4}, {4, 3}, {5, 5}, {2, 30}}) {
            for (const std::uint32_t high : {65535U, 12U}) {
                SCOPED_TRACE(testing::Message() << method << ": " << cols << " x " << rows << " to " << high);
                const Image image = RandomImage(cols, rows, 31, 0, high);
                const Image turned = Transposed(image);
                const Image expected = GradientImage(image, [&](std::int32_t x, std::int32_t y) {
                    return Magnitude(HorizontalGradient(image, method, x, y),
                                     HorizontalGradient(turned, method, y, x));
                });
                Image out;
                ASSERT_EQ(tqCalcGradient(out.Address(), image.Get(), method), 0);
                ExpectSame(expected, out);
            }
        }
    }
}

TEST(Gradient0, MeasuresWhereNoPelAroundIsZero) {
    for (const std::int32_t method : kMethods) {
        const std::int32_t radius = method == 5 ? 2 : 1;
        const Image image = RandomImageWithHoles(71, 23, 32, 40);
        const Image turned = Transposed(image);
        const Image expected = GradientImage(image, [&](std::int32_t x, std::int32_t y) {
            for (std::int32_t row = y - radius; row <= y + radius; ++row) {
                for (std::int32_t col = x - radius; col <= x + radius; ++col) {
                    if (col < 0 || row < 0 || col >= 71 || row >= 23 || image(col, row) == 0) return 0;
                }
            }
            return Magnitude(HorizontalGradient(image, method, x, y),
                             HorizontalGradient(turned, method, y, x));
        });
        Image out;
        ASSERT_EQ(tqCalcGradient0(out.Address(), image.Get(), method), 0);
        ExpectSame(expected, out);
    }
    for (const auto& [cols, rows] : {std::pair{2, 50}, {50, 2}, {1, 1}}) {
        const Image small = RandomImage(cols, rows, 3, 1);
        Image out;
        ASSERT_EQ(tqCalcGradient0(out.Address(), small.Get(), 0), 0);
        EXPECT_TRUE(SamePels(Image(cols, rows), out));
    }
}

/// A run of pels with data as an image of three rows of its own, which HorizontalGradient then measures;
/// Sobel's other rows stand in only where they may.
std::int32_t GradientInRun(const Image& image, std::int32_t method, std::int32_t x, std::int32_t y) {
    if (image(x, y) == 0) return 0;
    std::int32_t first = x, last = x;
    while (first > 0 && image(first - 1, y) != 0)
        --first;
    while (last < image.Cols() - 1 && image(last + 1, y) != 0)
        ++last;
    const std::int32_t low = std::max(x - 1, first), high = std::min(x + 1, last);
    bool smoothed = method == 0 && y > 0 && y < image.Rows() - 1;
    for (const std::int32_t col : {low, high}) {
        for (std::int32_t row = y - 1; smoothed && row <= y + 1; ++row) {
            if (image(col, row) == 0 && (col != x || x == first || x == last)) smoothed = false;
        }
    }
    const Image run = MakeImage(last - first + 1, smoothed ? 3 : 1, [&](std::int32_t col, std::int32_t row) {
        return image(first + col, smoothed ? y - 1 + row : y);
    });
    return std::abs(HorizontalGradient(run, method, x - first, smoothed ? 1 : 0));
}

TEST(GradientsInRuns, TakeAPelOfZeroForTheBorder) {
    for (const std::int32_t method : kMethods) {
        for (const std::uint32_t oneIn : {3U, 12U, 1000U}) {
            SCOPED_TRACE(testing::Message() << method << ": one in " << oneIn);
            const Image image = RandomImageWithHoles(61, 33, 33, oneIn);
            Image turned = Transposed(image);
            Image out;
            ASSERT_EQ(tqCalcGradX0(out.Address(), image.Get(), method), 0);
            ExpectSame(
                GradientImage(image, [&](auto x, auto y) { return GradientInRun(image, method, x, y); }),
                out);
            ASSERT_EQ(tqCalcGradY0(out.Address(), image.Get(), method), 0);
            const Image vertical =
                GradientImage(turned, [&](auto x, auto y) { return GradientInRun(turned, method, x, y); });
            EXPECT_TRUE(SamePels(Transposed(vertical), out));
        }
    }
}

TEST(Gradients, RefuseOtherMethods) {
    Image image = RandomImage(9, 7, 1), out;
    for (const std::int32_t method : {-1, 1, 4, 6, kMax, kMin}) {
        EXPECT_EQ(tqCalcGradient(out.Address(), image, method), -3);
        for (const auto gradient : {tqCalcGradient0, tqCalcGradX0, tqCalcGradY0})
            EXPECT_EQ(gradient(out.Address(), image, method), 1);
    }
    EXPECT_EQ(out.Get(), nullptr);
    for (const auto gradient : {tqCalcGradient, tqCalcGradient0, tqCalcGradX0, tqCalcGradY0}) {
        EXPECT_EQ(gradient(out.Address(), nullptr, 9), -2) << "the image speaks first";
    }
}

TEST(CombineGradients, ScalesTheWeightedRootToItsLargestValue) {
    Image a = RandomImage(37, 9, 1), b = RandomImage(37, 9, 2), c = RandomImage(37, 9, 3);
    a.Header().LuxPerGrey = 0.3f;
    b.Header().LuxPerGrey = 0.7f;
    c.Header().LuxPerGrey = 1.9f;
    constexpr float kWeightA = -0.25f, kWeightBc = 1.5f;
    std::vector<float> values;
    float largest = 0.0f;
    for (std::size_t i = 0; i < a.Count(); ++i) {
        const float la = static_cast<float>(a.Pels()[i]) * 0.3f, lb = static_cast<float>(b.Pels()[i]) * 0.7f,
                    lc = static_cast<float>(c.Pels()[i]) * 1.9f;
        values.push_back(std::sqrt(la * la * 0.25f + (lb * lb + lc * lc) * kWeightBc));
        largest = std::max(largest, values.back());
    }
    const float scale = 65000.0f / largest;
    Image out;
    ASSERT_EQ(tqCombineGradients(out.Address(), a, b, c, kWeightA, kWeightBc), 0);
    for (std::size_t i = 0; i < a.Count(); ++i)
        ASSERT_EQ(out.Pels()[i], static_cast<std::int32_t>(values[i] * scale)) << i;
    TqImageHeader header = a.Header();
    header.MaxPelValue = 65000.0f;
    header.LuxPerGrey = 1.0f / scale;
    EXPECT_TRUE(SameHeader(header, out.Header()));

    // No gradient: a scale of 65000, and no division by zero.
    Image dark(37, 9);
    ASSERT_EQ(tqCombineGradients(out.Address(), dark, dark, dark, 1.0f, 1.0f), 0);
    EXPECT_TRUE(SamePels(dark, out));
    EXPECT_EQ(out.Header().LuxPerGrey, 1.0f / 65000.0f);
}

TEST(CombineGradients, RefusesInTheOrderOfItsImages) {
    Image image(4, 4), other(4, 5), nothing, out;
    EXPECT_EQ(tqCombineGradients(out.Address(), nothing, nothing, nothing, 1, 1), -2);
    EXPECT_EQ(tqCombineGradients(out.Address(), image, nothing, nothing, 1, 1), -3);
    EXPECT_EQ(tqCombineGradients(out.Address(), image, other, nothing, 1, 1), -4);
    EXPECT_EQ(tqCombineGradients(out.Address(), image, other, image, 1, 1), -5);
    EXPECT_EQ(tqCombineGradients(out.Address(), image, image, other, 1, 1), -5);
}

}  // namespace
