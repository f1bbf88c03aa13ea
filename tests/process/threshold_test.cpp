#include "process_tests.h"
#include "tqimage/thresholds.h"

namespace {

using namespace tqtest;

constexpr std::int32_t kCols = 61, kRows = 23;

Image Source() {
    Image image = Noise(3);
    image.Header().TotalPelValue = 17.0;
    image.Header().MaxPelValue = 23.0f;
    return image;
}

/// Sum, maximum, and nothing else of the header has changed.
void ExpectRefreshed(const Image& before, const Image& image, bool total) {
    TqImageHeader expected = before.Header();
    expected.MaxPelValue = LargestOf(image);
    if (total) {
        expected.TotalPelValue = SumOf(image);
        expected.CenterPelValue = image(kCols / 2, kRows / 2);
    }
    EXPECT_TRUE(SameHeader(expected, image.Header()));
}

TEST(Threshold, ClearsBelowAndKeepsOrMarksTheRest) {
    struct Case {
        std::int32_t threshold, value;
        std::function<int(int)> rule;
    };
    const Case cases[] = {
        {30000, 0, [](int pel) { return pel < 30000 ? 0 : pel; }},
        {30000, -5, [](int pel) { return pel < 30000 ? 0 : pel; }},
        {30000, 1, [](int pel) { return pel < 30000 ? 0 : 1; }},
        {30000, 70000, [](int pel) { return pel < 30000 ? 0 : 65535; }},
        {kMin, 9, [](int) { return 9; }},
        {1, 9, [](int pel) { return pel == 0 ? 0 : 9; }},
        {65535, 0, [](int pel) { return pel == 65535 ? pel : 0; }},
        {65536, 9, [](int) { return 0; }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.threshold << " -> " << c.value);
        const Image before = Source();
        Image whole = before;
        ASSERT_EQ(tqThresholdImage(whole.Address(), c.threshold, c.value), 0);
        EXPECT_TRUE(SamePels(MapImage(before, c.rule), whole));
        ExpectRefreshed(before, whole, true);
        for (const Rectangle& r : kRectangles) {
            Image image = before;
            ASSERT_EQ(tqThresholdImageInRegion(image.Address(), c.threshold, c.value, r.left, r.top, r.right,
                                               r.bottom),
                      0);
            EXPECT_TRUE(
                SamePels(Within(before, r, [&](auto x, auto y) { return c.rule(before(x, y)); }), image));
            EXPECT_TRUE(SameHeader(before.Header(), image.Header()));
        }
    }
}

TEST(Band, KeepsOrReplaces) {
    struct Case {
        std::int32_t low, high, replacement, stored;
    };
    for (const Case& c : {Case{20000, 40000, 5, 5}, Case{20000, 0, -5, 0}, Case{-3, 70000, 1, 1},
                          Case{65536, 0, 70000, 65535}, Case{5, -1, 9, 9}, Case{40000, 20000, 3, 3},
                          Case{kMin, kMax, 3, 3}}) {
        SCOPED_TRACE(testing::Message() << c.low << " .. " << c.high);
        const auto inside = [&](int pel) { return pel >= c.low && pel <= (c.high == 0 ? 65535 : c.high); };
        const Image before = Source();
        Image band = before;
        ASSERT_EQ(tqThresholdImage2(band.Address(), c.low, c.high), 0);
        EXPECT_TRUE(SamePels(MapImage(before, [&](int pel) { return inside(pel) ? pel : 0; }), band));
        ExpectRefreshed(before, band, false);
        for (const Rectangle& r : kRectangles) {
            Image image = before;
            ASSERT_EQ(
                tqThresholdImage2InRegion(image.Address(), c.low, c.high, r.left, r.top, r.right, r.bottom),
                0);
            int largest = 0;
            const Image expected = Within(before, r, [&](auto x, auto y) {
                const int pel = inside(before(x, y)) ? before(x, y) : 0;
                largest = std::max(largest, pel);
                return pel;
            });
            EXPECT_TRUE(SamePels(expected, image));
            EXPECT_EQ(image.Header().MaxPelValue, static_cast<float>(largest));
        }
        Image replaced = before;
        std::int32_t count = -1, expectedCount = 0;
        ASSERT_EQ(tqThresholdImage3(replaced.Address(), c.low, c.high, c.replacement, &count), 0);
        const Image expected = MapImage(before, [&](int pel) {
            if (pel == 0 || inside(pel)) return pel;
            ++expectedCount;
            return c.stored;
        });
        EXPECT_TRUE(SamePels(expected, replaced));
        EXPECT_EQ(count, expectedCount);
        ExpectRefreshed(before, replaced, false);
        EXPECT_EQ(tqThresholdImage3(replaced.Address(), c.low, c.high, 1, nullptr), 0);
    }
}

TEST(ThresholdEdge, ClearsInTheBorderBandOnly) {
    struct Case {
        float percent;
        std::int32_t cols, rows;
    };
    // 29 % of 100 pels are 29 multiplied first and 28 divided first: the two axes differ.
    for (const Case& c : {Case{0.0f, 0, 0}, Case{-10.0f, 0, 0}, Case{kNan, 0, 0}, Case{kInfinity, 0, 0},
                          Case{10.0f, 10, 10}, Case{29.0f, 29, 28}, Case{0.999f, 0, 0}, Case{49.9f, 49, 49},
                          Case{50.0f, 50, 50}, Case{100.0f, 100, 100}, Case{1e6f, 100, 100}}) {
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
