#include "tqimage/appending.h"

#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "images.h"
#include "tqimage/pel_block.h"

namespace tqtest {
namespace {

Image Centered(Image image, float col, float row, float luxPerGrey = 1.0f) {
    image.Header().CenterCol = col;
    image.Header().CenterRow = row;
    image.Header().LuxPerGrey = luxPerGrey;
    return image;
}

TEST(AppendImage, CentresCoincideAndTheOverlapIsMixed) {
    Image joined = Centered(MakeImage(3, 2, {10, 20, 30, 0, 50, 60}), 2.0f, 0.5f);
    joined.Header().Spare = 77;
    Image added = Centered(MakeImage(3, 2, {101, 0, 103, 104, 105, 106}), 0.75f, 1.5f);
    added.Header().Spare = 1;
    const Image before = added;
    TqImageHeader header = joined.Header();
    ASSERT_EQ(tqAppendImage(joined.Address(), added, 1, -5), 0);
    // Columns -2 .. 2.25 and rows -1.5 .. 1.5 around the centre; the added image starts at 1.25, 0 in it.
    header.PelCols = 4;
    header.PelRows = 3;
    header.CenterRow = 1.5f;
    EXPECT_TRUE(SameHeader(joined.Header(), header));
    EXPECT_EQ(joined.Values(), (std::vector<std::uint16_t>{0, 101, 0, 103,               //
                                                           10, (20 + 104) / 2, 67, 106,  //
                                                           0, 50, 60, 0}));
    EXPECT_TRUE(SamePels(before, added));
}

TEST(AppendImage, ZeroTakesTheOtherAndOddSumsAreTruncated) {
    Image joined = Centered(MakeImage(4, 1, {0, 7, 65535, 0}), 0.0f, 0.0f);
    Image added = Centered(MakeImage(4, 1, {9, 0, 65534, 0}), 0.0f, 0.0f);
    ASSERT_EQ(tqAppendImage(joined.Address(), added, 0, 0), 0);
    EXPECT_EQ(joined.Values(), (std::vector<std::uint16_t>{9, 7, 65534, 0}));
    // An image joined to itself stays as it is.
    const Image itself = joined;
    ASSERT_EQ(tqAppendImage(joined.Address(), joined, 1, 1), 0);
    EXPECT_TRUE(SamePels(itself, joined));
}

TEST(AppendImage, BothArePutOnTheCoarserScaleInPlace) {
    Image joined = Centered(MakeImage(2, 1, {100, 7}), 0.0f, 0.0f, 0.5f);
    Image added = Centered(MakeImage(2, 1, {41, 0}), 0.0f, 0.0f, 2.0f);
    ASSERT_EQ(tqAppendImage(joined.Address(), added, 1, 1), 0);
    EXPECT_EQ(joined.Header().LuxPerGrey, 2.0f);
    EXPECT_EQ(joined.Values(), (std::vector<std::uint16_t>{(25 + 41) / 2, 1}));

    Image fine = Centered(MakeImage(2, 1, {101, 65535}), 0.0f, 0.0f, 1.0f);
    ASSERT_EQ(tqAppendImage(joined.Address(), fine, 1, 1), 0);
    EXPECT_EQ(fine.Values(), (std::vector<std::uint16_t>{50, 32767})) << "hosts rely on it";
    EXPECT_EQ(fine.Header().LuxPerGrey, 1.0f);
}

TEST(AppendImage, TheOverlapIsSmoothedByBlocksOfTheJoinedImage) {
    const Image left = Centered(RandomImageWithHoles(23, 17, 5), 18.0f, 8.0f);
    Image right = Centered(RandomImage(20, 21, 6), 1.0f, 10.0f);
    Image plain = left;
    ASSERT_EQ(tqAppendImage(plain.Address(), right, 1, 1), 0);
    ASSERT_EQ(plain.Cols(), 37);
    ASSERT_EQ(plain.Rows(), 21);
    constexpr std::int32_t kHuge = std::numeric_limits<std::int32_t>::max();
    for (const auto& block : {std::pair{3, 5}, {1, 4}, {8, -1}, {100, 100}, {kHuge, kHuge}}) {
        const std::int32_t width = block.first, height = block.second;
        const Image expected = MakeImage(37, 21, [&](std::int32_t col, std::int32_t row) {
            const bool overlap = col >= 17 && col < 23 && row >= 2 && row < 19;
            if (!overlap) return int{plain(col, row)};
            return static_cast<int>(tqGetPelBlockAvg(plain, col, row, width, height) + 0.5);
        });
        Image smoothed = left;
        ASSERT_EQ(tqAppendImage(smoothed.Address(), right, width, height), 0);
        EXPECT_TRUE(SamePels(expected, smoothed)) << width << " x " << height;
    }
    // Without an overlap there is nothing to smooth.
    Image apart = Centered(RandomImage(4, 3, 7), -25.0f, 0.0f);
    Image same = left;
    ASSERT_EQ(tqAppendImage(same.Address(), apart, 3, 3), 0);
    EXPECT_EQ(same.Cols(), 18 + 29);
    EXPECT_EQ(same(43, 8), apart(0, 0));
    EXPECT_EQ(same(22, 0), left(22, 0));
}

TEST(AppendImage, RefusalsLeaveBothImages) {
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    Image joined = Centered(MakeImage(2, 1, {1, 2}), 0.0f, 0.0f), invalid(0, 1);
    const Image kept = joined;
    EXPECT_EQ(tqAppendImage(nullptr, joined, 1, 1), -2);
    EXPECT_EQ(tqAppendImage(invalid.Address(), joined, 1, 1), -2);
    EXPECT_EQ(tqAppendImage(joined.Address(), nullptr, 1, 1), -3);
    EXPECT_EQ(tqAppendImage(joined.Address(), invalid, 1, 1), -3);
    const struct {
        float col, row, luxPerGrey;
    } cases[] = {{0, 0, 0},          {0, 0, -2},   {0, 0, kNan},  {kNan, 0, 2},  {0, kInfinity, 2},
                 {-kInfinity, 0, 2}, {7999, 0, 2}, {-7999, 0, 2}, {0, 3e38f, 2}, {-3e38f, 0, 2}};
    for (const auto& [col, row, luxPerGrey] : cases) {
        SCOPED_TRACE(testing::Message() << col << ' ' << row << ' ' << luxPerGrey);
        Image added = Centered(MakeImage(2, 1, {50, 60}), col, row, luxPerGrey);
        EXPECT_EQ(tqAppendImage(joined.Address(), added, 3, 3), -4);
        EXPECT_EQ(tqAppendImage(added.Address(), joined, 3, 3), -4);
        EXPECT_TRUE(SamePels(MakeImage(2, 1, {50, 60}), added));
        EXPECT_TRUE(SamePels(kept, joined));
    }
    // The largest that there is; a centre so near to 0 that it is lost against the other one.
    for (const float col : {7998.0f, -1e-30f}) {
        const Image added = Centered(MakeImage(1, 1, {5}), col, 0.0f);
        EXPECT_EQ(tqAppendImage(joined.Address(), Image(added), 1, 1), 0);
        EXPECT_EQ(joined.Cols(), 8000);
    }
}

}  // namespace
}  // namespace tqtest
