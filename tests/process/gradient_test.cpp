#include "process_tests.h"
#include "tqimage/gradients.h"

namespace {

using namespace tqtest;

using Pels = std::vector<int>;
using Gradient = decltype(&tqCalcGradient0);

Image Transposed(const Image& image) {
    return MakeImage(image.Rows(), image.Cols(), [&](auto col, auto row) { return image(row, col); });
}

void ExpectGradient(Gradient gradient, std::int32_t method, const Image& image, const Image& expected) {
    Image out;
    ASSERT_EQ(gradient(out.Address(), image, method), 0);
    EXPECT_TRUE(SamePels(expected, out)) << "method " << method;
    EXPECT_TRUE(
        SameHeader(With(image.Header(), &TqImageHeader::MaxPelValue, LargestOf(expected)), out.Header()));
}

/// A line in both directions; the magnitude of a line is its gradient alone.
TEST(Gradients, OfLines) {
    struct Case {
        std::int32_t method;
        Pels line, gradient;
        bool hasHoles = false;
    };
    const Pels line = {10, 25, 60, 31, 100, 90}, holes = {10, 25, 60, 0, 31, 100, 90, 0, 7};
    for (const Case& c : {Case{0, line, {30, 50, 6, 40, 59, 20}},
                          {2, line, {15, 35, 29, 69, 10, 10}},
                          {3, line, {15, 25, 3, 20, 30, 10}},
                          {5, line, {15, 25, 3, 21, 30, 10}},
                          // Each run of pels with data ends as a line does; a run of one has no gradient.
                          {0, holes, {30, 50, 70, 0, 138, 59, 20, 0, 0}, true},
                          {2, holes, {15, 35, 35, 0, 69, 10, 10, 0, 0}, true},
                          {3, holes, {15, 25, 35, 0, 69, 30, 10, 0, 0}, true},
                          {5, holes, {15, 25, 35, 0, 69, 30, 10, 0, 0}, true},
                          {0, {7}, {0}},
                          {5, {7, 9}, {2, 2}}}) {
        const auto pels = static_cast<std::int32_t>(c.line.size());
        const Image image = MakeImage(pels, 1, c.line), gradient = MakeImage(pels, 1, c.gradient);
        ExpectGradient(tqCalcGradX0, c.method, image, gradient);
        ExpectGradient(tqCalcGradY0, c.method, Transposed(image), Transposed(gradient));
        ExpectGradient(tqCalcGradX0, c.method, Transposed(image), Image(1, pels));
        if (c.hasHoles) continue;
        ExpectGradient(tqCalcGradient, c.method, image, gradient);
        ExpectGradient(tqCalcGradient, c.method, Transposed(image), Transposed(gradient));
        ExpectGradient(tqCalcGradient0, c.method, image, Image(pels, 1));
    }
}

TEST(Gradients, OfASquare) {
    const Image image = MakeImage(3, 3, {1, 2, 4, 8, 16, 32, 64, 128, 256});
    ExpectGradient(tqCalcGradX0, 0, image, MakeImage(3, 3, {2, 3, 4, 162, 243, 324, 128, 192, 256}));
    ExpectGradient(tqCalcGradY0, 0, image, MakeImage(3, 3, {14, 126, 56, 63, 567, 252, 112, 1008, 448}));
    ExpectGradient(tqCalcGradient, 0, image, MakeImage(3, 3, {14, 126, 56, 173, 616, 410, 170, 1026, 515}));
    for (const auto& [method, centre] : {std::pair{0, 616}, {2, 113}, {3, 64}, {5, 0}})
        ExpectGradient(tqCalcGradient0, method, image, MakeImage(3, 3, {0, 0, 0, 0, centre, 0, 0, 0, 0}));
    // The lines beside count only where what is read there is data.
    const Image hole = MakeImage(3, 3, {0, 2, 4, 8, 16, 32, 64, 128, 256});
    ExpectGradient(tqCalcGradX0, 0, hole, MakeImage(3, 3, {0, 4, 4, 16, 24, 324, 128, 192, 256}));
    ExpectGradient(tqCalcGradient0, 0, hole, Image(3, 3));
}

TEST(Gradients, AreCappedAndTheHeaderHoldsTheLargestBefore) {
    const Image image = MakeImage(2, 1, {0, 65535});
    Image out;
    ASSERT_EQ(tqCalcGradient(out.Address(), image, 0), 0);
    EXPECT_TRUE(SamePels(MakeImage(2, 1, {65535, 65535}), out));
    EXPECT_EQ(out.Header().MaxPelValue, 131070.0f);
}

/// Images of many rows and holes: the gradient at a place is that of the 5 x 5 pels around it.
TEST(Gradients, AreTheSameWhereverTheyLie) {
    const Image large = RandomImageWithHoles(71, 23, 32, 9);
    for (const Gradient gradient : {tqCalcGradient, tqCalcGradient0}) {
        for (const std::int32_t method : {0, 2, 3, 5}) {
            Image whole, part;
            ASSERT_EQ(gradient(whole.Address(), large, method), 0);
            for (std::int32_t col = 2; col < 69; ++col) {
                const Image around =
                    MakeImage(5, 5, [&](auto x, auto y) { return large(col - 2 + x, 9 + y); });
                ASSERT_EQ(gradient(part.Address(), around, method), 0);
                ASSERT_EQ(whole(col, 11), part(2, 2)) << col << ", method " << method;
            }
        }
    }
}

TEST(Gradients, RefuseOtherMethods) {
    Image image = RandomImage(9, 7, 1), out;
    for (const std::int32_t method : {-1, 1, 4, 6, kMax}) {
        EXPECT_EQ(tqCalcGradient(out.Address(), image, method), -3);
        for (const auto gradient : {tqCalcGradient0, tqCalcGradX0, tqCalcGradY0})
            EXPECT_EQ(gradient(out.Address(), image, method), 1);
    }
    EXPECT_EQ(out.Get(), nullptr);
    EXPECT_EQ(tqCalcGradient0(out.Address(), nullptr, 9), -2) << "the image speaks first";
}

TEST(CombineGradients, ScalesTheWeightedRootToItsLargestValue) {
    const auto lit = [](const std::vector<int>& pels, float luxPerGrey) {
        Image image = MakeImage(3, 1, pels);
        image.Header().LuxPerGrey = luxPerGrey;
        return image;
    };
    // The roots of 6^2 / 4 + 8^2 9 / 4 = 153, of 0, and of 6^2 / 4 + 4^2 9 / 4 = 45.
    const Image a = lit({12, 0, 12}, 0.5f), b = lit({4, 0, 0}, 2.0f), c = lit({0, 0, 4}, 1.0f);
    Image out;
    ASSERT_EQ(tqCombineGradients(out.Address(), a, b, c, -0.25f, 2.25f), 0);
    EXPECT_NEAR(out.Header().LuxPerGrey, std::sqrt(153.0) / 65000.0, 1e-9);
    EXPECT_TRUE(SamePels(MakeImage(3, 1, {65000, 0, 35251}), out));
    const TqImageHeader header = With(a.Header(), &TqImageHeader::MaxPelValue, 65000);
    EXPECT_TRUE(SameHeader(With(header, &TqImageHeader::LuxPerGrey, out.Header().LuxPerGrey), out.Header()));

    // No gradient: a scale of 65000, and no division by zero.
    const Image dark(3, 1), other(3, 2);
    ASSERT_EQ(tqCombineGradients(out.Address(), dark, dark, dark, 1.0f, 1.0f), 0);
    EXPECT_TRUE(SamePels(dark, out));
    EXPECT_EQ(out.Header().LuxPerGrey, 1.0f / 65000.0f);
    EXPECT_EQ(tqCombineGradients(out.Address(), dark, dark, other, 1, 1), -5);
    EXPECT_EQ(tqCombineGradients(out.Address(), dark, other, nullptr, 1, 1), -4)
        << "before the sizes are compared";
}

}  // namespace
