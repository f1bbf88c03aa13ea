#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <random>
#include <tuple>
#include <utility>

#include "images.h"
#include "maps.h"
#include "samples.h"
#include "tqimage/distortion.h"

namespace {

using namespace tqtest;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

TEST(CorrectLensDistortion, PelsWithoutASourceAreZero) {
    Map map(6, 1);
    map.Put(0, 0, -1.0f, 0.0f);
    map.Put(1, 0, 0.0f, -0.001f);
    map.Put(2, 0, kNan, 0.0f);
    map.Put(3, 0, 0.0f, kNan);
    map.Put(4, 0, -0.0f, -0.0f);  // a zero, whatever its sign, is the first pel
    map.Put(5, 0, kInfinity, 9e30f);
    Image image = MakeImage(6, 1, {100, 200, 300, 400, 500, 600});
    ASSERT_EQ(tqCorrectLensDistortion(image.Address(), map), 0);
    EXPECT_TRUE(SamePels(MakeImage(6, 1, {0, 0, 0, 0, 100, 600}), image));
}

TEST(CorrectLensDistortion, EntriesBesideTheMapAreNoSource) {
    // An offset of 3 columns in a map as wide as the image: the last three have no entry, nor has any pel of
    // an image placed far outside.
    Image image = Ramp(10, 4);
    Map map(10, 4);
    map.Fill(OwnPlace);
    map.Head().CenterCol = image.Header().CenterCol + 3.0f;
    ASSERT_EQ(tqCorrectLensDistortion(image.Address(), map), 0);
    for (std::int32_t col = 0; col < 10; ++col)
        EXPECT_EQ(image(col, 2), col < 7 ? 1000 + 16 * col + 512 : 0) << col;
    map.Head().CenterCol = map.Head().CenterRow = 1e9f;
    ASSERT_EQ(tqCorrectLensDistortion(image.Address(), map), 0);
    EXPECT_TRUE(SamePels(Image(10, 4), image));
}

TEST(CorrectLensDistortion, OneColumnOrRowHasNoNeighbour) {
    for (const auto& [cols, rows, grey] :
         {std::tuple{1, 1, 1000}, std::tuple{1, 2, 1000 + 192}, std::tuple{2, 1, 1000 + 12}}) {
        Image image = Ramp(cols, rows);
        Map map(cols, rows);
        map.Fill([](int, int) { return std::pair{0.75f, 0.75f}; });
        ASSERT_EQ(tqCorrectLensDistortion(image.Address(), map), 0);
        EXPECT_EQ(image(0, 0), grey) << cols << " x " << rows;
    }
}

TEST(CorrectLensDistortion, EveryBitOnNoiseBinnedAndCut) {
    // The map's centre (36, 24) lies (3, 2) entries beyond that of the image, in pels of the image.
    for (const auto& [binCols, binRows] : {std::pair{1, 1}, {3, 3}, {2, 4}}) {
        SCOPED_TRACE(binRows);
        // Dark when binned: a black that has a source is marked as seen.
        Image image = RandomImage(67, 45, 11, 0, binCols == 1 ? 65535 : 3);
        image.Header() = {67,
                          45,
                          11,
                          12,
                          36.0f / static_cast<float>(binCols) - 3,
                          24.0f / static_cast<float>(binRows) - 2,
                          9.0,
                          0.5f,
                          7,
                          8,
                          3,
                          static_cast<std::int16_t>(binCols),
                          static_cast<std::int16_t>(binRows),
                          0xCAFE};
        const Image before = image;
        Map map(67 * binCols + 5, 100);  // ends before the image does when rows are binned
        map.Head().CenterCol = 36;
        map.Head().CenterRow = 24;
        std::mt19937 engine(9);
        map.Fill([&](int, int) {
            return std::pair{static_cast<float>(engine() % 100000) * 0.0007f * static_cast<float>(binCols),
                             static_cast<float>(engine() % 100000) * 0.0005f * static_cast<float>(binRows)};
        });
        ASSERT_EQ(tqCorrectLensDistortion(image.Address(), map), 0);
        EXPECT_TRUE(SameHeader(before.Header(), image.Header()));
        EXPECT_TRUE(SamePels(MakeImage(67, 45,
                                       [&, w = binCols, h = binRows](int col, int row) {
                                           if (2 + row * h >= 100) return 0;
                                           const float* entry = map.Entry(3 + col * w, 2 + row * h);
                                           const float x = (entry[0] - 3.0f) / static_cast<float>(w);
                                           const float y = (entry[1] - 2.0f) / static_cast<float>(h);
                                           const double grey = Sample(before, std::clamp(x, 0.0f, 66.0f),
                                                                      std::clamp(y, 0.0f, 44.0f));
                                           return std::max(static_cast<int>(grey), 1);
                                       }),
                             image));
    }
}

TEST(CorrectLensDistortion, AnOffsetOfMinusOneCountsAsZeroAndLessIsRefused) {
    struct Case {
        float colShift, rowShift;
        std::int16_t binCols, binRows;
        std::int32_t status;
    };
    for (const Case& c :
         {Case{-1.0f, -1.75f, 1, 1, 0}, Case{-2.0f, 0.0f, 1, 1, -7}, Case{0.0f, -2.0f, 1, 1, -8},
          Case{-2.0f, -2.0f, 1, 1, -7}, Case{kNan, 0.0f, 1, 1, -7}, Case{0.0f, kNan, 1, 1, -8},
          Case{0.0f, 0.0f, 0, 1, -7}, Case{0.0f, 0.0f, 1, 0, -8}, Case{0.0f, 0.0f, -2, -2, -7},
          Case{kInfinity, 0.0f, 1, 1, -7}}) {
        SCOPED_TRACE(testing::Message() << c.colShift << ", " << c.rowShift << ", " << c.binCols);
        Image image = Ramp(8, 6);
        image.Header().BinCols = c.binCols;
        image.Header().BinRows = c.binRows;
        const TqImage* block = image.Get();
        Map map(8, 6);
        map.Fill(OwnPlace);
        map.Head().CenterCol += c.colShift;
        map.Head().CenterRow += c.rowShift;
        EXPECT_EQ(tqCorrectLensDistortion(image.Address(), map), c.status);
        EXPECT_TRUE(SamePels(Ramp(8, 6), image));
        EXPECT_EQ(image.Get() == block, c.status != 0);
    }
    Image image = Ramp(8, 6);
    EXPECT_EQ(tqCorrectLensDistortion(nullptr, Map(8, 6)), -2);
    EXPECT_EQ(tqCorrectLensDistortion(image.Address(), nullptr), -3);
    EXPECT_EQ(tqCorrectLensDistortion(image.Address(), Map(7, 6)), -3);
    EXPECT_EQ(tqCorrectLensDistortion(image.Address(), Map(8, 5)), -3);
    EXPECT_TRUE(SamePels(Ramp(8, 6), image));
}

}  // namespace
