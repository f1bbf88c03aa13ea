#include "tqimage/image_arithmetic.h"
#include "process_tests.h"
#include "tqimage/point_operations.h"

namespace {

using namespace tqtest;

using Row = std::vector<int>;

const Row kA = {0, 1, 99, 100, 101, 40000, 65535};
const Row kB = {7, 0, 100, 3, 65535, 2, 65535};
const Row kDark(7);

Image Lit(const Row& pels, float luxPerGrey) {
    Image image = MakeImage(7, 1, pels);
    image.Header().LuxPerGrey = luxPerGrey;
    image.Header().Spare = 0xDEADBEEF;
    return image;
}

TEST(Averages, AreMeansOfLuminancesInTheCoarserScale) {
    struct Case {
        float scaleA, scaleB;
        std::int32_t count;
        Row mean;
    };
    for (const Case& c : {Case{1, 1, 2, {3, 0, 99, 51, 32818, 20001, 65535}},
                          {1, 1, 3, {2, 0, 99, 67, 21912, 26667, 65535}},
                          {0.5f, 1, 2, {3, 0, 74, 26, 32792, 10001, 49151}},
                          {1, 1, kMax, {0, 0, 99, 99, 101, 39999, 65535}},
                          // A negative scale makes means below 0, which wrap; none at all makes no number.
                          {-2, 1, 2, {3, 65535, 65487, 65438, 32666, 25537, 32769}},
                          {0, 0, 2, kDark},
                          {kNan, kNan, 3, kDark}}) {
        SCOPED_TRACE(testing::Message() << c.scaleA << ", " << c.scaleB << ", " << c.count);
        const Image a = Lit(kA, c.scaleA), b = Lit(kB, c.scaleB);
        const Image expected = MakeImage(7, 1, c.mean);
        const TqImageHeader header =
            With(With(a.Header(), &TqImageHeader::LuxPerGrey, std::max(c.scaleA, c.scaleB)),
                 &TqImageHeader::MaxPelValue, LargestOf(expected));
        Image average = a;
        ASSERT_EQ(tqRunningAverage(average.Address(), b, c.count), 0);
        EXPECT_TRUE(SamePels(expected, average));
        EXPECT_TRUE(SameHeader(header, average.Header()));
        if (c.count != 2) continue;
        Image both;
        ASSERT_EQ(tqAverageImages(both.Address(), a, b), 0);
        EXPECT_TRUE(SamePels(expected, both));
        EXPECT_TRUE(SameHeader(header, both.Header()));
    }
}

TEST(Averages, BeginWithACopy) {
    const Image fresh = Noise(23);
    Image average;
    ASSERT_EQ(tqRunningAverage(average.Address(), fresh, 9), 0);
    EXPECT_TRUE(SamePels(fresh, average));
    average = Image(3, 3);  // of any size
    ASSERT_EQ(tqRunningAverage(average.Address(), fresh, 1), 0);
    EXPECT_TRUE(SamePels(fresh, average));
    EXPECT_TRUE(SameHeader(fresh.Header(), average.Header()));
    const TqImage* block = average.Get();
    ASSERT_EQ(tqRunningAverage(average.Address(), average, -4), 0);
    EXPECT_EQ(average.Get(), block);
    EXPECT_EQ(tqRunningAverage(average.Address(), Image(61, 22), 2), -5);
    EXPECT_EQ(tqRunningAverage(Image(0, 4).Address(), fresh, 2), -4);
}

TEST(RootSumSquare, RunsInSinglePrecisionWithTheLargerWeightAsOne) {
    struct Case {
        float weightA, weightB;
        Row root;
    };
    for (const Case& c : {Case{1, 1, {7, 1, 140, 100, 65535, 40000, 27144}},
                          {3, 4, {7, 0, 131, 86, 65535, 34641, 21158}},
                          {-1, 2, {7, 0, 71, 0, 65534, 0, 46340}},  // no number where the sum is negative
                          {0, 0, kDark}}) {
        SCOPED_TRACE(testing::Message() << c.weightA << ", " << c.weightB);
        const Image a = Lit(kA, 0.5f);
        Image out = a;  // also an input
        ASSERT_EQ(tqRootSumSquare(out.Address(), out, Lit(kB, 1), c.weightA, c.weightB), 0);
        EXPECT_TRUE(SamePels(MakeImage(7, 1, c.root), out));
        EXPECT_TRUE(SameHeader(a.Header(), out.Header()));
    }
}

TEST(DivideImage, MapsTheLargestRatioTo65000) {
    struct Case {
        float scaleA, scaleB;
        double largest;
        Row quotient;
    };
    // A ratio to 0 is 0; below 0 the largest is that 0.
    for (const Case& c : {Case{1, 1, 20000, {0, 0, 3, 108, 0, 65000, 3}},
                          {0.5f, 0.125f, 80000, {0, 0, 3, 108, 0, 65000, 3}},
                          {1, 0, 0, kDark},
                          {0, 1, 0, kDark},
                          {-1, 1, 0, kDark}}) {
        SCOPED_TRACE(testing::Message() << c.scaleA << ", " << c.scaleB);
        const Image a = Lit(kA, c.scaleA);
        Image out = Lit(kB, c.scaleB);  // freed first, yet an input
        ASSERT_EQ(tqDivideImage(out.Address(), a, out), 0);
        EXPECT_TRUE(SamePels(MakeImage(7, 1, c.quotient), out));
        EXPECT_EQ(out.Header().LuxPerGrey, static_cast<float>(c.largest / 65000.0));
        EXPECT_EQ(out.Header().MaxPelValue, 65000.0f);
        EXPECT_EQ(out.Header().Spare, 0xDEADBEEF);
    }
}

TEST(DivideImage, FreesTheOutputBeforeItChecks) {
    const Image image = Noise(29), other(61, 22);
    for (const auto& [numerator, denominator, status] :
         {std::tuple<const TqImage*, const TqImage*, int>{nullptr, image, -2},
          {image, nullptr, -3},
          {image, other, -4}}) {
        Image out = image;
        EXPECT_EQ(tqDivideImage(out.Address(), numerator, denominator), status);
        EXPECT_EQ(out.Get(), nullptr);
    }
}

TEST(NormalizeImage, DividesByTheFlatField) {
    Image image = MakeImage(7, 1, kA), flat = MakeImage(7, 1, kB);
    flat.Header().MaxPelValue = 65535.0f;  // stands where there is no neighbourhood
    image.Header().CenterCol = 2.2f;
    ASSERT_EQ(tqNormalizeImage(image.Address(), flat), 0);
    const Image expected = MakeImage(7, 1, {0, 0, 64879, 65535, 101, 65535, 65535});
    EXPECT_TRUE(SamePels(expected, image));
    EXPECT_EQ(image.Header().TotalPelValue, SumOf(expected));
    EXPECT_EQ(image.Header().MaxPelValue, 65535.0f);
    EXPECT_EQ(image.Header().CenterPelValue, 64879.0f);

    // The brightest neighbourhood of the field has a mean of 42837.2.
    flat = MakeImage(5, 5, [](auto col, auto row) { return col == 2 && row == 2 ? 65535 : 40000; });
    image = MakeImage(5, 5, [](auto, auto) { return 20000; });
    ASSERT_EQ(tqNormalizeImage(image.Address(), flat), 0);
    EXPECT_EQ(image(0, 0), 21418);
    EXPECT_EQ(image(2, 2), 13073);
    EXPECT_NEAR(flat.Header().MaxPelValue, 42837.22, 0.01) << "the field's own header is refreshed";

    Image own = MakeImage(2, 2, {10, 20, 0, 40});  // its own flat field
    own.Header().MaxPelValue = 100.0f;
    ASSERT_EQ(tqNormalizeImage(own.Address(), own), 0);
    EXPECT_TRUE(SamePels(MakeImage(2, 2, {100, 100, 0, 100}), own));
    EXPECT_EQ(tqNormalizeImage(image.Address(), Image(5, 5)), -8) << "a black field";
    EXPECT_EQ(tqNormalizeImage(own.Address(), Image(2, 3)), -4);
}

TEST(CombineImages, SpansTheLevelsOfADisplay) {
    const Image a = Lit(kA, 0.5f), b = Lit(kB, 0.25f), c = Lit({1000, 0, 0, 0, 0, 0, 0}, 1);
    struct Case {
        const TqImage *first, *second, *third;
        double largest;
        Row levels;
    };
    for (const Case& it : {Case{a, b, nullptr, 49151.25, {0, 0, 0, 0, 85, 103, 255}},
                           {nullptr, b, nullptr, 16383.75, {0, 0, 0, 0, 255, 0, 255}},
                           {nullptr, b, c, 16383.75, {15, 0, 0, 0, 255, 0, 255}},
                           {a, nullptr, c, 32767.5, {7, 0, 0, 0, 0, 155, 255}}}) {
        Image out = a;
        ASSERT_EQ(tqCombineImages(out.Address(), it.first, it.second, it.third), 0);
        EXPECT_TRUE(SamePels(MakeImage(7, 1, it.levels), out)) << it.largest;
        EXPECT_EQ(out.Header().LuxPerGrey, static_cast<float>(it.largest / 255.0));
        EXPECT_EQ(out.Header().MaxPelValue, 255.0f);
        EXPECT_EQ(out.Header().TotalPelValue, SumOf(out));
        EXPECT_EQ(out.Header().CenterPelValue, out(3, 0));
        EXPECT_EQ(out.Header().Spare, 0xDEADBEEF) << "the header of the first that is there";
    }
    Image black(5, 4), out;
    black.Header().CenterRow = -1.0f;
    ASSERT_EQ(tqCombineImages(out.Address(), nullptr, black, nullptr), 0);
    EXPECT_EQ(out.Header().LuxPerGrey, static_cast<float>(1.0 / 255.0));
    EXPECT_EQ(out.Header().CenterPelValue, 0.0f);
    EXPECT_EQ(tqCombineImages(out.Address(), nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(tqCombineImages(out.Address(), black, nullptr, a), -1) << "of another size";
}

/// An image whose centre fields place the other image in it.
Image PlacedAt(Image image, float col, float row) {
    image.Header().CenterCol = col;
    image.Header().CenterRow = row;
    return image;
}

TEST(SubtractImage, SubtractsAtTheOffsetAndStopsAtZero) {
    // Fractions are cut off toward zero; anything from -1.99 up counts as no offset.
    for (const auto& [offset, difference] :
         {std::pair{-1.99f, Row{3, 20, 0}}, {0.99f, {3, 20, 0}}, {3.7f, {7, 0, 28}}}) {
        Image image = MakeImage(3, 1, {10, 20, 30});
        image.Header().Spare = 0xDEADBEEF;
        const TqImageHeader header = image.Header();
        ASSERT_EQ(tqSubtractImage(image.Address(), PlacedAt(MakeImage(7, 1, kB), offset, 0)), 0);
        EXPECT_TRUE(SamePels(MakeImage(3, 1, difference), image)) << offset;
        EXPECT_TRUE(SameHeader(image.Header(), header));
    }
}

TEST(MultiplyImages, MultipliesWhereBothAreAndKeepsTheRest) {
    struct Case {
        float offsetCol;
        std::int32_t divisor;
        Row product;
    };
    for (const Case& c : {Case{-1.9f, 10, {0, 0, 990, 30, 65535, 8000, 65535}},
                          {0, -5, {0, 0, 63556, 65476, 52449, 49536, 13120}},  // in single precision, wrapped
                          {0, 0, {0, 0, 65535, 65535, 65535, 65535, 65535}},
                          {5.9f, 2, {0, 32767, 99, 100, 101, 40000, 65535}},
                          {7.0f, 2, kA}}) {
        SCOPED_TRACE(testing::Message() << c.offsetCol << ", " << c.divisor);
        Image image = Lit(kA, 3);
        const TqImageHeader header = image.Header();
        ASSERT_EQ(tqMultiplyImages(image.Address(), PlacedAt(MakeImage(7, 1, kB), c.offsetCol, 0), c.divisor),
                  0);
        EXPECT_TRUE(SamePels(MakeImage(7, 1, c.product), image));
        EXPECT_TRUE(SameHeader(header, image.Header()));
    }
}

/// The second image must cover the first when it is subtracted; only its offset counts when it is a factor.
TEST(OffsetsOfCentres, AreRefusedInTheOrderOfTheChecks) {
    struct Case {
        std::int32_t cols, rows;
        float offsetCol, offsetRow;
        std::int32_t subtract, multiply;
    };
    for (const Case& c : {
             Case{9, 8, 0.0f, 0.0f, -8, 0},         // a column short
             Case{10, 7, 0.0f, 0.0f, -8, 0},        // a row short
             Case{12, 8, 3.0f, 0.0f, -8, 0},        // pushed out to the right
             Case{10, 8, -2.0f, 0.0f, -7, -7},      // misplaced
             Case{10, 8, 0.0f, -2.0f, -8, -8},      //
             Case{10, 8, -2.0f, -2.0f, -7, -7},     // the column speaks first
             Case{7, 8, -2.0f, 0.0f, -8, -7},       // but after the size
             Case{9, 8, -1.0f, 0.0f, -8, 0},        // -1 is 0, and then a column is missing
             Case{10, 8, kNan, 0.0f, -7, -7},       // no number is no place
             Case{10, 8, kInfinity, 0.0f, -7, -7},  //
             Case{10, 8, 2147483520.0f, 0.0f, -8, 0},
         }) {
        SCOPED_TRACE(testing::Message()
                     << c.cols << " x " << c.rows << " at " << c.offsetCol << ", " << c.offsetRow);
        const Image before = RandomImage(10, 8, 1);
        const Image second = PlacedAt(RandomImage(c.cols, c.rows, 2), c.offsetCol, c.offsetRow);
        Image image = before;
        EXPECT_EQ(tqSubtractImage(image.Address(), second), c.subtract);
        EXPECT_TRUE(SamePels(before, image));
        EXPECT_EQ(tqMultiplyImages(image.Address(), second, 1), c.multiply);
        EXPECT_EQ(static_cast<bool>(SamePels(before, image)), c.multiply != 0 || c.offsetCol > 10);
    }
}

}  // namespace
