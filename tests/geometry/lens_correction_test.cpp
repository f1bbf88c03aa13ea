#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <utility>

#include "images.h"
#include "maps.h"
#include "tqimage/distortion.h"

namespace {

using tqtest::DefaultHeader;
using tqtest::Image;
using tqtest::MakeImage;
using tqtest::Map;
using tqtest::RandomImage;
using tqtest::SameHeader;
using tqtest::SamePels;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

auto Identity() {
    return [](std::int32_t col, std::int32_t row) {
        return std::pair{static_cast<float>(col), static_cast<float>(row)};
    };
}

/// Grey that grows by 16 a column and by 256 a row: between the pels bilinear sampling is exact on it, so a
/// place can be read off the grey.
constexpr float kPerCol = 16.0f;
constexpr float kPerRow = 256.0f;

Image Ramp(std::int32_t cols, std::int32_t rows) {
    return MakeImage(cols, rows,
                     [](std::int32_t col, std::int32_t row) { return 1000 + 16 * col + 256 * row; });
}

int RampAt(const Image& image, float col, float row) {
    const float x = std::clamp(col, 0.0f, static_cast<float>(image.Cols() - 1));
    const float y = std::clamp(row, 0.0f, static_cast<float>(image.Rows() - 1));
    return static_cast<int>(1000.0f + kPerCol * x + kPerRow * y);
}

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

TEST(CorrectLensDistortion, FollowsBinningAndTheOffsetInTheSensor) {
    // The map's centre (50, 40) in pels of 2 x 4 is (25, 10); the image's own centre of (13, 5) puts its
    // first pel at entry (12, 5), and its pels lie 2 columns and 4 rows of entries apart.
    Image image = Ramp(20, 6);
    const Image source = image;
    image.Header().BinCols = 2;
    image.Header().BinRows = 4;
    image.Header().CenterCol = 13.0f;
    image.Header().CenterRow = 5.0f;
    Map map(101, 21);
    map.Head().CenterCol = 50.0f;
    map.Head().CenterRow = 40.0f;
    const auto place = [](std::int32_t col, std::int32_t row) {
        return std::pair{static_cast<float>(col) + 1.0f, static_cast<float>(row) + 2.0f};
    };
    map.Fill(place);
    const Image expected = MakeImage(20, 6, [&](std::int32_t col, std::int32_t row) {
        const std::int32_t entryCol = 12 + 2 * col;
        const std::int32_t entryRow = 5 + 4 * row;
        if (entryRow > 20) return 0;  // the map ends before the image does
        const auto [x, y] = place(entryCol, entryRow);
        return RampAt(source, (x - 12.0f) / 2.0f, (y - 5.0f) / 4.0f);
    });
    ASSERT_EQ(tqCorrectLensDistortion(image.Address(), map), 0);
    EXPECT_TRUE(SamePels(expected, image));
}

TEST(CorrectLensDistortion, EntriesBesideTheMapAreNoSource) {
    // An offset of 3 columns in a map as wide as the image: the last three have no entry, nor has any pel of
    // an image placed far outside.
    Image image = Ramp(10, 4);
    Map map(10, 4);
    map.Fill(Identity());
    map.Head().CenterCol = image.Header().CenterCol + 3.0f;
    ASSERT_EQ(tqCorrectLensDistortion(image.Address(), map), 0);
    for (std::int32_t col = 0; col < 10; ++col) {
        EXPECT_EQ(image(col, 2), col < 7 ? 1000 + 16 * col + 512 : 0) << col;
    }
    map.Head().CenterCol = 1e9f;
    map.Head().CenterRow = 1e9f;
    ASSERT_EQ(tqCorrectLensDistortion(image.Address(), map), 0);
    EXPECT_TRUE(SamePels(Image(10, 4), image));
}

TEST(CorrectLensDistortion, OneColumnOrRowHasNoNeighbour) {
    const auto between = [](std::int32_t, std::int32_t) { return std::pair{0.75f, 0.75f}; };
    for (const auto& [cols, rows, grey] :
         {std::tuple{1, 1, 500}, std::tuple{1, 2, 500 + 192}, std::tuple{2, 1, 500 + 12}}) {
        Image image = MakeImage(
            cols, rows, [](std::int32_t col, std::int32_t row) { return 500 + 16 * col + 256 * row; });
        Map map(cols, rows);
        map.Fill(between);
        ASSERT_EQ(tqCorrectLensDistortion(image.Address(), map), 0);
        EXPECT_EQ(image(0, 0), grey) << cols << " x " << rows;
    }
}

/// The arithmetic written out plainly: place in single precision, sample in double, products in this order.
std::uint16_t PlainSample(const Image& image, float sourceCol, float sourceRow, float offset, float bin) {
    const float x = std::clamp((sourceCol - offset) / bin, 0.0f, static_cast<float>(image.Cols() - 1));
    const float y = std::clamp((sourceRow - offset) / bin, 0.0f, static_cast<float>(image.Rows() - 1));
    const auto i = std::min(static_cast<std::int32_t>(x), image.Cols() - 2);
    const auto j = std::min(static_cast<std::int32_t>(y), image.Rows() - 2);
    const double fx = static_cast<double>(x) - i;
    const double fy = static_cast<double>(y) - j;
    double value = (1.0 - fy) * fx * image(i + 1, j) + (1.0 - fy) * (1.0 - fx) * image(i, j);
    value = value + fx * fy * image(i + 1, j + 1);
    value = value + fy * (1.0 - fx) * image(i, j + 1);
    return static_cast<std::uint16_t>(std::max(static_cast<int>(value), 1));
}

TEST(CorrectLensDistortion, EveryBitOnNoise) {
    for (const std::int32_t bin : {1, 3}) {
        // Dark in the second round: a black that has a source is marked as seen.
        Image image = RandomImage(67, 45, 11, 0, bin == 1 ? 65535 : 3);
        const Image source = image;
        image.Header().TotalPelValue = 12345.0;
        image.Header().Spare = 0xCAFE;
        image.Header().BinCols = image.Header().BinRows = static_cast<std::int16_t>(bin);
        image.Header().CenterCol = image.Header().CenterRow = 0.0f;
        Map map(67 * bin + 5, 45 * bin + 5);
        map.Head().CenterCol = map.Head().CenterRow = static_cast<float>(2 * bin);
        std::mt19937 engine(9);
        map.Fill([&](std::int32_t, std::int32_t) {
            return std::pair{
                static_cast<float>(engine() % 100000) * 0.0022f * static_cast<float>(bin) / 3.0f,
                static_cast<float>(engine() % 100000) * 0.0017f * static_cast<float>(bin) / 3.0f};
        });
        const TqImageHeader header = image.Header();
        ASSERT_EQ(tqCorrectLensDistortion(image.Address(), map), 0);
        EXPECT_TRUE(SameHeader(image.Header(), header));
        for (std::int32_t row = 0; row < 45; ++row) {
            for (std::int32_t col = 0; col < 67; ++col) {
                const float* entry = map.Entry(2 + col * bin, 2 + row * bin);
                ASSERT_EQ(image(col, row),
                          PlainSample(source, entry[0], entry[1], 2.0f, static_cast<float>(bin)))
                    << col << ", " << row;
            }
        }
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
        map.Fill(Identity());
        map.Head().CenterCol += c.colShift;
        map.Head().CenterRow += c.rowShift;
        EXPECT_EQ(tqCorrectLensDistortion(image.Address(), map), c.status);
        EXPECT_TRUE(SamePels(Ramp(8, 6), image));
        EXPECT_EQ(image.Get() == block, c.status != 0);
    }
}

TEST(CorrectLensDistortion, RefusesInvalidImagesAndSmallMaps) {
    Image image = Ramp(8, 6);
    Image nothing;
    Image empty(DefaultHeader(0, 6));
    Map narrow(7, 6);
    Map low(8, 5);
    EXPECT_EQ(tqCorrectLensDistortion(nullptr, narrow), -2);
    EXPECT_EQ(tqCorrectLensDistortion(nothing.Address(), narrow), -2);
    EXPECT_EQ(tqCorrectLensDistortion(empty.Address(), nullptr), -2);
    EXPECT_EQ(tqCorrectLensDistortion(image.Address(), nullptr), -3);
    EXPECT_EQ(tqCorrectLensDistortion(image.Address(), narrow), -3);
    EXPECT_EQ(tqCorrectLensDistortion(image.Address(), low), -3);
    EXPECT_TRUE(SamePels(Ramp(8, 6), image));
}

}  // namespace
