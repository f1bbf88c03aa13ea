#include "tqimage/equalisation.h"
#include "process_tests.h"

namespace {

using namespace tqtest;

void ExpectRefreshed(const Image& image) {
    EXPECT_EQ(image.Header().MaxPelValue, LargestOf(image));
    EXPECT_EQ(image.Header().TotalPelValue, SumOf(image));
}

TEST(HistoEqualize, SpreadsTheLevelsAndRefreshesBothHeaders) {
    struct Case {
        std::int32_t levels;
        std::vector<int> pels;
    };
    // A quarter of the pels are 0, which counts and stays, a quarter 100 and half 200.
    for (const Case& c :
         {Case{256, {0, 128, 255, 255}}, {1, {0, 0, 0, 0}}, {65536, {0, 32768, 65535, 65535}}}) {
        SCOPED_TRACE(c.levels);
        Image source = MakeImage(4, 1, {0, 100, 200, 200}), out(3, 3);
        source.Header().MaxPelValue = 5.0f;
        ASSERT_EQ(tqHistoEqualize(out.Address(), source, c.levels), 0);
        EXPECT_TRUE(SamePels(MakeImage(4, 1, {0, 100, 200, 200}), source));
        EXPECT_EQ(source.Header().MaxPelValue, 200.0f);
        EXPECT_TRUE(SamePels(MakeImage(4, 1, c.pels), out));
        ExpectRefreshed(out);
    }
}

TEST(HistoEqualize, EqualPelsBecomeTheLastLevelAndTheHeaderTellsHowMany) {
    struct Case {
        std::int32_t levels;
        float stated;
        int level;
    };
    for (const Case& c : {Case{256, 9.0f, 255}, Case{1, 9.0f, 0}, Case{kMax, 9.0f, 65535}, Case{0, 99.9f, 99},
                          Case{-4, 16382.5f, 16382}, Case{0, 16384.0f, 16383}, Case{0, 2147483520.0f, 16383},
                          Case{kMin, -50.0f, 0}, Case{0, kNan, 0}, Case{0, 1e30f, 0}}) {
        SCOPED_TRACE(testing::Message() << c.levels << ", header " << c.stated);
        Image source = MakeImage(7, 5, [](auto, auto) { return 1234; });
        source.Header().MaxPelValue = c.stated;
        const Image expected = MakeImage(7, 5, [&](auto, auto) { return c.level; });
        Image out;
        ASSERT_EQ(tqHistoEqualizeInRegion(out.Address(), source, c.levels, 0, 0, 0, 0), 0);
        EXPECT_TRUE(SamePels(expected, out));
        ASSERT_EQ(tqHistoEqualize(source.Address(), source, c.levels), 0) << "onto itself";
        EXPECT_TRUE(SamePels(expected, source));
    }
}

TEST(HistoEqualizeInRegion, MapsTheRectangleByItsOwnPels) {
    Image source = MakeImage(6, 2, {9, 9, 9, 9, 9, 60000, 9, 0, 100, 200, 200, 9}), out;
    ASSERT_EQ(tqHistoEqualizeInRegion(out.Address(), source, 256, 1, 1, 4, 9), 0);
    EXPECT_TRUE(SamePels(MakeImage(6, 2, {9, 9, 9, 9, 9, 60000, 9, 0, 128, 255, 255, 9}), out));
    ExpectRefreshed(out);
    ASSERT_EQ(tqHistoEqualizeInRegion(out.Address(), source, 256, 2, 0, 1, 1), 0) << "an empty rectangle";
    EXPECT_TRUE(SamePels(source, out));
    ExpectRefreshed(out);
}

TEST(LocalHistoEqualize, RanksEachPelInItsNeighbourhood) {
    const Image line = MakeImage(4, 1, {0, 100, 200, 200}),
                square = MakeImage(3, 3, {10, 20, 30, 40, 50, 60, 70, 80, 90});
    struct Case {
        const Image& source;
        std::int32_t levels, width, height;
        std::vector<int> pels;
    };
    for (const Case& c : {Case{line, 256, 4, kMin, {0, 170, 255, 255}},
                          {line, 256, kMax, kMax, {0, 170, 255, 255}},
                          {line, 256, kMin, 1, {0, 255, 255, 255}},
                          {line, 1, 3, 1, {0, 0, 0, 0}},
                          {square, 256, 3, 3, {28, 57, 85, 113, 142, 170, 198, 227, 255}},
                          {square, 2, 3, 3, {0, 0, 0, 0, 1, 1, 1, 1, 1}}}) {
        SCOPED_TRACE(testing::Message() << c.levels << " levels, " << c.width << " x " << c.height);
        Image source = c.source, out;
        source.Header().MaxPelValue = 5.0f;
        ASSERT_EQ(tqLocalHistoEqualize(out.Address(), source, c.levels, c.width, c.height), 0);
        EXPECT_TRUE(SamePels(MakeImage(source.Cols(), source.Rows(), c.pels), out));
        EXPECT_EQ(source.Header().MaxPelValue, LargestOf(source));
        ExpectRefreshed(out);
    }
}

TEST(Equalisations, OfABlackImageLeaveNothing) {
    Image out(4, 4), black(9, 9);
    EXPECT_EQ(tqHistoEqualize(out.Address(), black, 256), -4);
    EXPECT_EQ(out.Get(), nullptr);
    EXPECT_EQ(tqLocalHistoEqualize(out.Address(), black, 256, 3, 3), -4);
    EXPECT_EQ(tqHistoEqualizeInRegion(black.Address(), black, 256, 2, 2, 6, 6), -4);
    EXPECT_EQ(black.Get(), nullptr);
}

}  // namespace
