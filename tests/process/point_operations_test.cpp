#include "tqimage/point_operations.h"
#include "process_tests.h"
#include "tqimage/thresholds.h"

namespace {

using namespace tqtest;

using Row = std::vector<int>;

const Row kRow = {0, 1, 99, 100, 101, 40000, 65535};

std::vector<std::uint16_t> Reversed() {
    std::vector<std::uint16_t> table(65536);
    std::iota(table.rbegin(), table.rend(), std::uint16_t{0});
    return table;
}

struct Operation {
    const char* name;
    std::int32_t (*call)(TqImage** i);
    Row after;  ///< what becomes of kRow
};

#define CALL(call) #call, [](TqImage * *i) { return call; }

const Row kDark(7), kBright(7, 65535), kLit = {0, 65535, 65535, 65535, 65535, 65535, 65535};

const Operation kKeepHeaders[] = {
    {CALL(tqAddConstant(*i, 300)), {300, 301, 399, 400, 401, 40300, 65535}},
    {CALL(tqAddConstant(*i, -100)), {0, 0, 0, 0, 1, 39900, 65435}},
    {CALL(tqAddConstant(*i, kMax)), kBright},
    {CALL(tqAddConstant(*i, kMin)), kDark},
    {CALL(tqSubtractValue(i, 100)), {0, 0, 0, 0, 1, 39900, 65435}},
    {CALL(tqSubtractValue(i, -5)), kRow},
    {CALL(tqSubtractValue(i, kMax)), kDark},
    {CALL(tqReplaceDarkPels0(*i, 99, 7)), {0, 7, 7, 100, 101, 40000, 65535}},
    {CALL(tqReplaceDarkPels0(*i, 100, 70000)), {0, 65535, 65535, 65535, 101, 40000, 65535}},
    {CALL(tqReplaceDarkPels0(*i, kMax, -3)), kDark},
    {CALL(tqReplaceDarkPels0(*i, -1, 7)), kRow},
    // Rounded, stopped above 65535 whatever the size, wrapped below 0; 0 times infinity is no number.
    {CALL(tqScaleImage2(*i, 0.3f)), {0, 0, 30, 30, 30, 12000, 19661}},
    {CALL(tqScaleImage2(*i, -1.0f)), {0, 0, 65438, 65437, 65436, 25537, 2}},
    {CALL(tqScaleImage2(*i, 1e9f)), kLit},
    {CALL(tqScaleImage2(*i, kInfinity)), kLit},
    {CALL(tqCorrectLinearity(*i, Reversed().data())), {65535, 65534, 65436, 65435, 65434, 25535, 0}},
};

const Operation kStoreMaxima[] = {
    {CALL(tqInvertImage(*i)), {65535, 65534, 65436, 65435, 65434, 25535, 0}},
    {CALL(tqBrightnessCorrectionInRegion(i, 3, 0, 0, 0, 0)), {3, 4, 102, 103, 104, 40003, 2}},
    // About the mean of 15119.4.
    {CALL(tqContrastCorrectionInRegion(i, 2, 0, 0, 0, 0)), {50417, 50419, 50615, 50617, 50619, 64880, 50414}},
    {CALL(tqContrastCorrectionInRegion(i, 0, 0, 0, 0, 0)), Row(7, 15119)},
    {CALL(tqContrastCorrectionInRegion(i, kNan, 0, 0, 0, 0)), kDark},
    {CALL(tqContrastCorrectionInRegion(i, 1e9f, 0, 0, 0, 0)), kDark},
    {CALL(tqThresholdImage2(i, 100, 40000)), {0, 0, 0, 100, 101, 40000, 0}},
    {CALL(tqThresholdImage2(i, 100, 0)), {0, 0, 0, 100, 101, 40000, 65535}},
    {CALL(tqThresholdImage2(i, -3, 70000)), kRow},
    {CALL(tqThresholdImage2(i, 65536, 0)), kDark},
    {CALL(tqThresholdImage2(i, 40000, 100)), kDark},
    {CALL(tqThresholdImage3(i, 100, 40000, 5, nullptr)), {0, 5, 5, 100, 101, 40000, 5}},
    {CALL(tqThresholdImage3(i, 100, 0, -5, nullptr)), {0, 0, 0, 100, 101, 40000, 65535}},
    {CALL(tqThresholdImage3(i, 65536, 0, 70000, nullptr)), {0, 65535, 65535, 65535, 65535, 65535, 65535}},
};

const Operation kStoreAll[] = {
    {CALL(tqThresholdImage(i, 100, -5)), {0, 0, 0, 100, 101, 40000, 65535}},
    {CALL(tqThresholdImage(i, 100, 70000)), {0, 0, 0, 65535, 65535, 65535, 65535}},
    {CALL(tqThresholdImage(i, kMin, 9)), Row(7, 9)},
    {CALL(tqThresholdImage(i, 65536, 9)), kDark},
};

TEST(PointOperations, MakeThisOfARow) {
    const auto check = [](const Operation& operation, bool maximum, bool all) {
        SCOPED_TRACE(operation.name);
        Image image = MakeImage(7, 1, kRow);
        image.Header().Spare = 0xDEADBEEF;
        image.Header().MaxPelValue = 23.0f;
        TqImageHeader header = image.Header();
        ASSERT_EQ(operation.call(image.Address()), 0);
        EXPECT_TRUE(SamePels(MakeImage(7, 1, operation.after), image));
        if (maximum) header.MaxPelValue = LargestOf(image);
        if (all) header.TotalPelValue = SumOf(image), header.CenterPelValue = image(3, 0);
        EXPECT_TRUE(SameHeader(header, image.Header()));
    };
    for (const Operation& operation : kKeepHeaders)
        check(operation, false, false);
    for (const Operation& operation : kStoreMaxima)
        check(operation, true, false);
    for (const Operation& operation : kStoreAll)
        check(operation, true, true);
    EXPECT_EQ(tqAddConstant(nullptr, 0), 0) << "nothing to add is done before the image is looked at";
    EXPECT_EQ(tqInvertImage(Image(0, 4)), -9);
}

TEST(PointOperations, CountWhatTheyLeaveOrReplace) {
    struct Case {
        std::int32_t threshold, count;
        Row after;
    };
    // Even a 0 is greater than a negative threshold.
    for (const Case& c :
         {Case{99, 4, {0, 0, 0, 100, 101, 40000, 65535}}, {0, 6, kRow}, {-1, 7, kRow}, {kMax, 0, kDark}}) {
        Image image = MakeImage(7, 1, kRow);
        std::int32_t count = -5;
        ASSERT_EQ(tqRemoveDarkPels(image, &count, c.threshold), 0);
        EXPECT_EQ(count, c.count);
        EXPECT_TRUE(SamePels(MakeImage(7, 1, c.after), image));
        ASSERT_EQ(tqThresholdImage3(image.Address(), 65536, 0, 1, &count), 0);
        EXPECT_EQ(count, std::min(c.count, 6)) << "a pel of 0 is not replaced";
    }
}

TEST(PointOperations, TheBrightestNeighbourhoodGetsTheNewMaximum) {
    // Eight pels of 1000 and one of 10000 have a mean of 2000.
    const Image source =
        MakeImage(9, 9, [](auto col, auto row) { return col == 4 && row == 4 ? 10000 : 1000; });
    for (const auto& [wanted, around, bright] :
         {std::tuple{4000, 2000, 20000}, {65535, 32767, 65535}, {kMax, 32767, 65535}, {-7, 0, 0}}) {
        Image image = source;
        ASSERT_EQ(tqSetMaxGrayValue(image, wanted), 0);
        EXPECT_EQ(image(0, 8), around);
        EXPECT_EQ(image(4, 4), bright);
        EXPECT_TRUE(
            SameHeader(With(source.Header(), &TqImageHeader::MaxPelValue, std::clamp(wanted, 0, 65535)),
                       image.Header()));
    }
    // Without a neighbourhood the stored maximum counts, and a maximum of 0 leaves the pels.
    Image tiny = MakeImage(2, 2, {10, 20, 30, 40});
    for (const auto& [stored, wanted] : {std::pair{40.0f, 80}, {0.0f, 9}}) {
        tiny.Header().MaxPelValue = stored;
        ASSERT_EQ(tqSetMaxGrayValue(tiny, wanted), 0);
        EXPECT_TRUE(SamePels(MakeImage(2, 2, {20, 40, 60, 80}), tiny));
        EXPECT_EQ(tiny.Header().MaxPelValue, static_cast<float>(wanted));
    }
    tiny.Header().MaxPelValue = 1e-6f;
    ASSERT_EQ(tqSetMaxGrayValue(tiny, 65535), 0);
    EXPECT_TRUE(SamePels(MakeImage(2, 2, Row(4, 65535)), tiny));
}

TEST(ThresholdEdge, ClearsInTheBorderBandOnly) {
    struct Case {
        float percent;
        std::int32_t cols, rows;
    };
    // 29 % of 100 pels are 29 multiplied first and 28 divided first: the two axes differ.
    for (const Case& c :
         {Case{0.0f, 0, 0}, Case{-10.0f, 0, 0}, Case{kNan, 0, 0}, Case{kInfinity, 100, 100},
          Case{29.0f, 29, 28}, Case{0.999f, 0, 0}, Case{49.9f, 49, 49}, Case{1e6f, 100, 100}}) {
        SCOPED_TRACE(c.percent);
        const Image before = RandomImageWithHoles(100, 100, 9);
        Image image = before;
        ASSERT_EQ(tqThresholdImageEdge(image.Address(), 30000, c.percent), 0);
        const Image expected = MakeImage(100, 100, [&](auto x, auto y) {
            const bool inBand = x < c.cols || y < c.rows || x >= 100 - c.cols || y >= 100 - c.rows;
            return inBand && before(x, y) < 30000 ? 0 : before(x, y);
        });
        EXPECT_TRUE(SamePels(expected, image));
        EXPECT_TRUE(SameHeader(before.Header(), image.Header()));
    }
}

}  // namespace
