#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "failing_allocator.h"
#include "images.h"
#include "tqimage/comparison.h"
#include "tqimage/line_detection.h"
#include "tqimage/moments.h"

namespace tqtest {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

/// Truncated, in the low 16 bits; what is no number is 0.
std::uint16_t Level(double value) {
    if (!(std::abs(value) < 2147483648.0)) return 0;
    return static_cast<std::uint16_t>(static_cast<std::int32_t>(value));
}

Image Compared(const Image& reference, const Image& test) {
    Image result;
    EXPECT_EQ(tqCompareImages(result.Address(), reference, test), 0);
    return result;
}

TEST(CompareImages, EveryPelByTheRule) {
    for (const auto& [referenceLux, testLux] : {std::pair{1.0f, 1.0f},
                                                {0.013f, 0.017f},
                                                {-0.5f, 0.25f},
                                                {1e-45f, 3e38f},
                                                {0.0f, 1.0f},
                                                {2.0f, kInfinity}}) {
        Image reference = RandomImage(67, 23, 1, 200), test = RandomImage(67, 23, 2);
        reference(9, 9) = 0;
        test(9, 9) = 0;  // no difference at all, and no largest one
        reference.Header().LuxPerGrey = referenceLux;
        test.Header().LuxPerGrey = testLux;
        reference.Header().Spare = 77;
        const auto difference = [&, r0 = double{referenceLux}, t0 = double{testLux}](auto col, auto row) {
            const double r = reference(col, row) * r0, t = test(col, row) * t0;
            return std::abs(t - r) / r;
        };
        double largest = 0.0;
        for (std::int32_t row = 0; row < 23; ++row) {
            for (std::int32_t col = 0; col < 67; ++col) {
                if (difference(col, row) > largest) largest = difference(col, row);
            }
        }
        TqImageHeader header = reference.Header();
        header.MaxPelValue = 64000.0f;
        header.LuxPerGrey = largest == 0.0 ? 1.0f : static_cast<float>(largest / 64000.0);
        const Image expected = MakeImage(67, 23, [&](auto col, auto row) {
            return Level(difference(col, row) / double{header.LuxPerGrey} + 0.4999);
        });
        SCOPED_TRACE(referenceLux);
        const Image result = Compared(reference, test);
        EXPECT_TRUE(SamePels(expected, result));
        EXPECT_TRUE(SameHeader(header, result.Header()));
    }
}

TEST(CompareImages, LevelsNextToAHalfTruncateAsHostsKnowThem) {
    // The first difference sets the scale to 1/64000; the second is |32766.5 - 64000| = 31233.5 of its
    // levels.
    Image reference = MakeImage(2, 1, {64000, 64000}), test = MakeImage(2, 1, {0, 65533});
    test.Header().LuxPerGrey = 0.5f;
    EXPECT_EQ(Compared(reference, test).Values(), (std::vector<std::uint16_t>{64000, 31233}))
        << "0.4999 and not a half";
}

TEST(CompareImages, ItselfAndDarkReferences) {
    Image image = RandomImage(50, 20, 3, 1);
    const Image same = Compared(image, image);
    EXPECT_TRUE(SamePels(Image(50, 20), same));
    EXPECT_EQ(same.Header().LuxPerGrey, 1.0f);
    const Image bright = image;
    image(3, 3) = 0;
    EXPECT_EQ(tqCompareImages(image.Address(), image, bright), 0) << "in place of an input";
    EXPECT_EQ(image.Header().LuxPerGrey, kInfinity);
    EXPECT_TRUE(SamePels(Image(50, 20), image));
}

/// One window by the rule, every step in single precision.
float MomentReference(const Image& image, std::int32_t order, std::int32_t left, std::int32_t top,
                      std::int32_t width, std::int32_t height) {
    float sum = 0.0f, moment = 0.0f;
    std::int32_t count = 0;
    const auto each = [&](auto&& visit) {
        for (std::int32_t row = top; row < top + height; ++row) {
            for (std::int32_t col = left; col < left + width; ++col) {
                if (image(col, row) != 0) visit(static_cast<float>(image(col, row)));
            }
        }
    };
    each([&](float v) { sum += v, ++count; });
    if (count == 0) return 0.0f;
    const float mean = sum / static_cast<float>(count);
    each([&](float v) {
        float base = std::abs(v - mean), power = 1.0f;
        for (auto left2 = static_cast<std::uint32_t>(std::llabs(order)); left2 != 0; left2 >>= 1) {
            if (left2 % 2 == 1) power *= base;
            base *= base;
        }
        moment += order < 0 ? 1.0f / power : power;
    });
    return moment / static_cast<float>(count);
}

Image MomentImageReference(const Image& image, std::int32_t order, std::int32_t width, std::int32_t height) {
    std::vector<float> moments;
    float largest = 0.0f;
    for (std::int32_t row = 0; row < image.Rows(); ++row) {
        for (std::int32_t col = 0; col < image.Cols(); ++col) {
            moments.push_back(
                MomentReference(image, order, std::clamp(col - width / 2, 0, image.Cols() - width),
                                std::clamp(row - height / 2, 0, image.Rows() - height), width, height));
            largest = std::max(largest, moments.back());
        }
    }
    Image result(image.Header());
    result.Header().MaxPelValue = 65000.0f;
    const float scale = result.Header().LuxPerGrey = largest / 65000.0f;
    for (std::size_t i = 0; largest != 0.0f && i < moments.size(); ++i)
        result.Pels()[i] = Level(static_cast<double>(moments[i] / scale));
    return result;
}

TEST(Moment, EveryWindowOrderAndHole) {
    struct Case {
        std::int32_t order, asked[2], used[2];
    };
    for (const Image& image :
         {RandomImage(75, 21, 4, 1), RandomImageWithHoles(75, 21, 5), RandomImageWithHoles(75, 21, 6, 1)}) {
        for (const Case& it : {Case{2, {3, 3}, {3, 3}},
                               {2, {15, 16}, {15, 15}},
                               {1, {5, 0}, {5, 1}},
                               {3, {kLowest, 4}, {1, 3}},
                               {4, {80, 3}, {75, 3}},
                               {2, {74, kHighest}, {73, 21}},
                               {0, {3, 3}, {3, 3}},
                               {-1, {3, 3}, {3, 3}},
                               {-8, {5, 5}, {5, 5}},
                               {9, {5, 5}, {5, 5}},
                               {kLowest, {3, 3}, {3, 3}},
                               {kHighest, {3, 3}, {3, 3}}}) {
            SCOPED_TRACE(testing::Message()
                         << "order " << it.order << ", " << it.asked[0] << " x " << it.asked[1]);
            Image result;
            ASSERT_EQ(tqCalcMoment(result.Address(), image, it.order, it.asked[0], it.asked[1]), 0);
            const Image expected = MomentImageReference(image, it.order, it.used[0], it.used[1]);
            EXPECT_TRUE(SamePels(expected, result));
            EXPECT_TRUE(SameHeader(expected.Header(), result.Header()));
        }
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
    Image own = RandomImage(20, 9, 7);
    const Image expected = MomentImageReference(own, 2, 3, 3);
    EXPECT_EQ(tqCalcMoment(own.Address(), own, 2, 3, 3), 0);
    EXPECT_TRUE(SamePels(expected, own));
}

TEST(ProducedImage, RefusesInOrderAndLeavesTheResult) {
    const Image image(9, 8), other(8, 9), wide(8001, 1);
    Image result(2, 2);
    TqImage** const out = result.Address();
    TqImage* const before = result.Get();
    EXPECT_EQ(tqCompareImages(nullptr, image, image), -2);
    EXPECT_EQ(tqCompareImages(out, nullptr, nullptr), -2);
    EXPECT_EQ(tqCompareImages(out, wide, image), -2);
    EXPECT_EQ(tqCompareImages(out, image, wide), -3);
    EXPECT_EQ(tqCompareImages(out, image, nullptr), -3);
    EXPECT_EQ(tqCompareImages(out, image, other), -4);
    EXPECT_EQ(tqCalcMoment(nullptr, image, 2, 3, 3), -2);
    EXPECT_EQ(tqCalcMoment(out, nullptr, 2, 1, 1), -2);
    EXPECT_EQ(tqCalcMoment(out, wide, 2, 3, 3), -2);
    EXPECT_EQ(tqDetectLine(nullptr, image, 0), -2);
    EXPECT_EQ(tqDetectLine(out, nullptr, 9), -2);
    EXPECT_EQ(tqDetectLine(out, wide, 0), -2);
    EXPECT_EQ(tqDetectLine(out, image, 4), -4);
    EXPECT_EQ(tqDetectLine(out, image, 0xFFFFFFFFu), -4);
    EXPECT_EQ(result.Get(), before);
    if (!CanFailAllocations()) return;
    const auto stays = [&] { EXPECT_EQ(result.Get(), before); };
    for (int nth = 1; nth <= 3; ++nth) {
        const AllocationFailure failing(nth);
        EXPECT_EQ(tqCalcMoment(out, image, 2, 3, 3), nth == 1 ? -3 : -1);
        stays();
    }
}

TEST(DetectLine, EveryDirectionByItsMask) {
    constexpr int kMasks[4][9] = {{-1, -1, -1, 2, 2, 2, -1, -1, -1},
                                  {-1, 2, -1, -1, 2, -1, -1, 2, -1},
                                  {-1, -1, 2, -1, 2, -1, 2, -1, -1},
                                  {2, -1, -1, -1, 2, -1, -1, -1, 2}};
    for (const auto& [cols, rows] : {std::pair{70, 9}, {3, 3}, {2, 9}, {9, 2}, {1, 1}}) {
        Image image = RandomImage(cols, rows, 8);
        image.Header().Spare = 99;
        for (std::uint32_t direction = 0; direction < 4; ++direction) {
            const Image expected = MakeImage(cols, rows, [&, c = cols, r = rows](auto col, auto row) {
                if (col == 0 || row == 0 || col == c - 1 || row == r - 1) return 0;
                int sum = 0;
                for (int i = 0; i < 9; ++i)
                    sum += kMasks[direction][i] * image(col + i % 3 - 1, row + i / 3 - 1);
                return std::min(std::abs(sum), 65535);
            });
            Image result;
            ASSERT_EQ(tqDetectLine(result.Address(), image, direction), 0);
            EXPECT_TRUE(SamePels(expected, result)) << direction;
            EXPECT_TRUE(SameHeader(image.Header(), result.Header()));
        }
    }
}

}  // namespace
}  // namespace tqtest
