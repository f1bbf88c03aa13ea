#include "tqimage/resampling.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <vector>

#include "images.h"

namespace {

using tqtest::DefaultHeader;
using tqtest::Image;
using tqtest::MakeImage;
using tqtest::RandomImage;
using tqtest::SameHeader;
using tqtest::SamePels;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

Image Noise(std::int32_t cols, std::int32_t rows, std::uint32_t seed = 6) {
    Image image = RandomImage(cols, rows, seed);
    image.Header() = {cols,
                      rows,
                      1100,
                      1200,
                      0.4f * static_cast<float>(cols),
                      0.3f * static_cast<float>(rows),
                      123456,
                      0.5f,
                      77,
                      88,
                      3,
                      2,
                      3,
                      0xDEADBEEF};
    return image;
}

/// The sample between four pels, written out.
double Sample(const Image& image, double col, double row) {
    if (!(col > -1.0 && col < image.Cols() && row > -1.0 && row < image.Rows())) return 0.0;
    int i = static_cast<int>(col), j = static_cast<int>(row);
    if (i == image.Cols() - 1) --i;
    if (j == image.Rows() - 1) --j;
    double fx = col - i, fy = row - j;
    if (image.Cols() == 1) i = 0, fx = 0.0;
    if (image.Rows() == 1) j = 0, fy = 0.0;
    const int right = std::min(i + 1, image.Cols() - 1), below = std::min(j + 1, image.Rows() - 1);
    double value = (1 - fy) * fx * image(right, j) + (1 - fy) * (1 - fx) * image(i, j);
    value = value + fx * fy * image(right, below);
    return value + fy * (1 - fx) * image(i, below);
}

/// Each pel sampled at place(col, row), stored as the low 16 bits of the truncated value + bias.
template <class Place>
Image Resampled(const Image& source, std::int32_t cols, std::int32_t rows, double bias, Place&& place) {
    return MakeImage(cols, rows, [&](int col, int row) {
        const auto [sourceCol, sourceRow] = place(col, row);
        return static_cast<std::int32_t>(Sample(source, sourceCol, sourceRow) + bias) & 0xFFFF;
    });
}

TEST(Interpolate, SamplesInsideAndNamesTheAxisThatIsNot) {
    const Image image = MakeImage(3, 2, {10, 20, 40, 50, 60, 90});
    struct Case {
        double col, row;
        std::int32_t status;
        double value;
    };
    for (const Case& c :
         {Case{0, 0, 0, 10}, Case{2, 1, 0, 90}, Case{0.5, 0, 0, 15}, Case{1.25, 0.5, 0, 46.25},
          Case{2, 0.25, 0, 52.5}, Case{-0.001, 0, -3, 0}, Case{2.001, 9, -3, 0}, Case{kNan, 0, -3, 0},
          Case{0, 1.001, -4, 0}, Case{1, -1e-300, -4, 0}, Case{1, kNan, -4, 0}, Case{-0.0, -0.0, 0, 10}}) {
        double value = -1.0;
        EXPECT_EQ(tqInterpolateImage(image, c.col, c.row, &value), c.status) << c.col << ", " << c.row;
        EXPECT_EQ(value, c.value) << c.col << ", " << c.row;
    }
    // The unchecked form goes on with the border.
    struct Unchecked {
        double col, row, value;
    };
    for (const Unchecked& c : {Unchecked{1.25, 0.5, 46.25},
                               {2, 1, 90},
                               {-7.5, 0, 10},
                               {1e300, 1e300, 90},
                               {-1e300, 0.5, 30},
                               {0.5, 77.7, 55},
                               {kNan, 0, kNan},
                               {-kInfinity, 0, kNan}}) {
        double value = -1.0;
        EXPECT_EQ(tqInterpolateImage2(image, c.col, c.row, &value), 0);
        EXPECT_THAT(value, testing::NanSensitiveDoubleEq(c.value)) << c.col << ", " << c.row;
    }
    for (const auto call : {&tqInterpolateImage, &tqInterpolateImage2}) {
        double value = 5.0;
        EXPECT_EQ(call(nullptr, 0, 0, &value), -2);
        EXPECT_EQ(value, 0.0);
        EXPECT_EQ(call(image, 0, 0, nullptr), -2);
        EXPECT_EQ(call(MakeImage(1, 1, {7}), 0, 0, &value), 0);
        EXPECT_EQ(value, 7.0);
    }
}

/// Each axis on its own: place(at, centre, factor, pels) says where a pel comes from, below 0 for nowhere.
template <class Call, class Place>
void ExpectMoved(Call&& call, Place&& place, const std::vector<std::pair<double, double>>& factors) {
    for (const auto& [cols, rows] : {std::pair{61, 37}, {1, 20}, {20, 1}}) {
        for (const auto& [x, y] : factors) {
            SCOPED_TRACE(testing::Message() << x << ", " << y << " on " << cols << " x " << rows);
            const Image before = Noise(cols, rows);
            const TqImageHeader& header = before.Header();
            Image image = before;
            ASSERT_EQ(call(image.Address(), x, y), 0);
            const auto from = [&, sx = x, sy = y](int c, int r) {
                return std::pair<double, double>{place(c, header.CenterCol, sx, header.PelCols),
                                                 place(r, header.CenterRow, sy, header.PelRows)};
            };
            EXPECT_TRUE(SamePels(Resampled(before, cols, rows, 0.0, from), image));
            EXPECT_TRUE(SameHeader(header, image.Header()));
        }
    }
}

TEST(Scale, ZoomsAboutTheCentreInSinglePrecisionAndKeepsTheHeader) {
    const auto place = [](int at, float centre, double scale, int pels) {
        const auto step = static_cast<float>(1.0 / scale);
        const float offset = (static_cast<float>(at) - centre) * step;
        const float source = offset + centre;
        return source >= 0.0f && source <= static_cast<float>(pels - 1) ? source : -9.0f;
    };
    ExpectMoved(tqScaleImage, place,
                {{1.0, 1.0},
                 {1.7, 0.6},
                 {0.31, 5.0},
                 {-1.0, -0.8},
                 {0.0, 1.0},
                 {kNan, 1.0},
                 {kInfinity, 2.0},
                 {1e-300, 1.0},
                 {1.0, -1e300}});
}

TEST(Shift, MovesThePictureAndKeepsTheHeader) {
    const auto place = [](int at, float, double shift, int pels) {
        const double source = at - shift;
        return source >= 0.0 && source <= pels - 1 ? source : -9.0;
    };
    ExpectMoved(tqShiftImage, place,
                {{0.0, 0.0},
                 {3.0, -2.0},
                 {0.3, 1.75},
                 {-5.125, 0.5},
                 {-0.9, -0.1},
                 {1e9, 0.0},
                 {kNan, 0.0},
                 {0.0, -kInfinity}});
}

Image Stretched(const Image& source, std::int32_t cols, std::int32_t rows) {
    const double stepCol = cols == 1 ? 0.0 : static_cast<double>(source.Cols() - 1) / (cols - 1);
    const double stepRow = rows == 1 ? 0.0 : static_cast<double>(source.Rows() - 1) / (rows - 1);
    return Resampled(source, cols, rows, 0.5, [=](int c, int r) {
        return std::pair{c * stepCol, r * stepRow};
    });
}

TEST(Size, KeepsTheProportions) {
    struct Case {
        std::int32_t cols, rows, newCols, newRows;
        std::int16_t binCols, binRows;
    };
    for (const Case& c :
         {Case{40, 30, 28, 21, 1, 1}, Case{40, 31, 13, 10, 3, 3}, Case{7, 5, 50, 36, 1, 1},
          Case{40, 30, 40, 30, 1, 1}, Case{100, 3, 10, 1, 10, 3}, Case{40, 30, 1, 1, 40, 30}}) {
        SCOPED_TRACE(testing::Message() << c.cols << " x " << c.rows << " to " << c.newCols);
        const Image before = Noise(c.cols, c.rows);
        Image image = before;
        ASSERT_EQ(tqSizeImage(image.Address(), c.newCols), 0);
        EXPECT_TRUE(SamePels(Stretched(before, c.newCols, c.newRows), image));
        TqImageHeader header = before.Header();
        const double exactRows = static_cast<double>(c.newCols) * c.rows / c.cols;
        header.PelCols = c.newCols;
        header.PelRows = c.newRows;
        header.CenterCol = static_cast<float>((c.newCols - 1.0) * header.CenterCol / (c.cols - 1));
        header.CenterRow = static_cast<float>((exactRows - 1.0) * header.CenterRow / (c.rows - 1));
        header.PelsPerMeterX = static_cast<float>(c.newCols * 1100.0 / c.cols);
        header.PelsPerMeterY = static_cast<float>(c.rows * c.newCols / c.cols * 1200.0 / c.rows);
        header.BinCols = c.binCols;
        header.BinRows = c.binRows;
        EXPECT_TRUE(SameHeader(header, image.Header()));
    }
    for (const std::int32_t newCols : {0, kMin, 8001, 7000}) {
        Image image = Noise(4, 5);
        EXPECT_EQ(tqSizeImage(image.Address(), newCols), -4) << newCols;
        EXPECT_TRUE(SamePels(Noise(4, 5), image));
    }
    Image line = Noise(1, 5);
    ASSERT_EQ(tqSizeImage(line.Address(), 3), 0);
    EXPECT_TRUE(SamePels(Stretched(Noise(1, 5), 3, 15), line));
}

TEST(Bin, AveragesWholeBlocks) {
    for (const bool lit : {false, true}) {
        for (const auto& [binCols, binRows] :
             {std::pair{2, 2}, {4, 3}, {3, 1}, {0, -7}, {kMin, 2}, {31, 23}, {kMax, 3}}) {
            SCOPED_TRACE(testing::Message() << binCols << " x " << binRows << (lit ? " of data" : ""));
            Image before = tqtest::RandomImageWithHoles(31, 23, 5, 2);
            before.Header() = Noise(31, 23).Header();
            const int w = std::clamp(binCols, 1, 31), h = std::clamp(binRows, 1, 23);
            double total = 0.0;
            const Image expected = MakeImage(31 / w, 23 / h, [&](int col, int row) {
                std::int64_t sum = 0, count = 0;
                for (int i = 0; i < w * h; ++i) {
                    const std::uint16_t pel = before(col * w + i % w, row * h + i / w);
                    sum += pel;
                    count += pel != 0 ? 1 : 0;
                }
                const auto mean =
                    lit ? static_cast<std::int64_t>(static_cast<float>(sum) /
                                                    static_cast<float>(std::max<std::int64_t>(count, 1)))
                        : sum / (w * h);
                total += static_cast<double>(mean);
                return mean;
            });
            Image image = before;
            ASSERT_EQ((lit ? tqBinImage0 : tqBinImage)(image.Address(), binCols, binRows), 0);
            EXPECT_TRUE(SamePels(expected, image));
            TqImageHeader header = before.Header();
            header.PelCols = 31 / w;
            header.PelRows = 23 / h;
            header.CenterCol /= static_cast<float>(w);
            header.CenterRow /= static_cast<float>(h);
            header.PelsPerMeterX /= static_cast<float>(w);
            header.PelsPerMeterY /= static_cast<float>(h);
            header.TotalPelValue = lit ? total : header.TotalPelValue / (w * h);
            header.BinCols = static_cast<std::int16_t>(header.BinCols * w);
            header.BinRows = static_cast<std::int16_t>(header.BinRows * h);
            EXPECT_TRUE(SameHeader(header, image.Header()));
        }
    }
}

TEST(Bin, AccumulatorAndFactorsWrap) {
    // 200 x 200 pels of 65535 add up to 2621400000, which a signed 32-bit integer reads as -1673567296.
    Image image = MakeImage(200, 200, [](int, int) { return 65535; });
    image.Header().BinCols = 300;
    Image lit = image;
    ASSERT_EQ(tqBinImage(image.Address(), 200, 200), 0);
    EXPECT_EQ(image(0, 0), (-1673567296 / 40000) & 0xFFFF);
    EXPECT_EQ(image.Header().BinCols, 60000 - 65536);
    ASSERT_EQ(tqBinImage0(lit.Address(), 200, 200), 0);
    EXPECT_EQ(lit(0, 0), 65535);
}

TEST(UnBin, ExpandsByTheQuotientOfTheFactors) {
    struct Case {
        std::int16_t oldCols, oldRows;
        std::int32_t binCols, binRows, newCols, newRows;
    };
    for (const Case& c : {Case{2, 3, 1, 1, 22, 21}, Case{4, 3, 3, 2, 14, 10}, Case{2, 2, kMin, 0, 22, 14},
                          Case{2, 3, 2, 3, 11, 7}}) {
        SCOPED_TRACE(testing::Message()
                     << c.oldCols << ", " << c.oldRows << " to " << c.binCols << ", " << c.binRows);
        Image before = Noise(11, 7);
        before.Header().BinCols = c.oldCols;
        before.Header().BinRows = c.oldRows;
        Image image = before;
        ASSERT_EQ(tqUnBinImage(image.Address(), c.binCols, c.binRows), 0);
        EXPECT_TRUE(SamePels(Stretched(before, c.newCols, c.newRows), image));
        TqImageHeader header = before.Header();
        const std::int32_t toCols = std::max(c.binCols, 1), toRows = std::max(c.binRows, 1);
        header.PelCols = c.newCols;
        header.PelRows = c.newRows;
        header.CenterCol = static_cast<float>(1.0 * c.oldCols * header.CenterCol / toCols);
        header.CenterRow = static_cast<float>(1.0 * c.oldRows * header.CenterRow / toRows);
        header.PelsPerMeterX = static_cast<float>(c.oldCols * 1100.0 / toCols);
        header.PelsPerMeterY = static_cast<float>(c.oldRows * 1200.0 / toRows);
        header.TotalPelValue *= (c.oldCols / toCols) * (c.oldRows / toRows);
        header.BinCols = static_cast<std::int16_t>(toCols);
        header.BinRows = static_cast<std::int16_t>(toRows);
        EXPECT_TRUE(SameHeader(header, image.Header()));
    }
}

TEST(UnBin, RefusesCoarserFactorsAndSizesThatNoImageHas) {
    struct Case {
        std::int16_t oldCols, oldRows;
        std::int32_t binCols, binRows, status;
    };
    for (const Case& c : {Case{2, 3, 1, 4, -3}, Case{2, 3, kMax, 1, -3}, Case{0, 3, 0, 1, -3},
                          Case{2, -1, 1, -5, -3}, Case{32767, 1, 1, 1, -4}, Case{1, 8000, 1, 1, -4}}) {
        Image image = Noise(11, 7);
        image.Header().BinCols = c.oldCols;
        image.Header().BinRows = c.oldRows;
        EXPECT_EQ(tqUnBinImage(image.Address(), c.binCols, c.binRows), c.status);
        EXPECT_TRUE(SamePels(Noise(11, 7), image));
    }
}

TEST(Resampling, RefusesInvalidImages) {
    struct Case {
        std::function<std::int32_t(TqImage**)> call;
        std::int32_t invalid;
    };
    for (const Case& c : std::vector<Case>{
             {[](TqImage** i) { return tqRotateImage(i, 10, 3, 3); }, -2},
             {[](TqImage** i) { return tqScaleImage(i, 2, 2); }, -1},
             {[](TqImage** i) { return tqShiftImage(i, 2, 2); }, -1},
             {[](TqImage** i) { return tqSizeImage(i, 5); }, -2},
             {[](TqImage** i) { return tqUnBinImage(i, 1, 1); }, -2},
             {[](TqImage** i) { return tqBinImage(i, 2, 2); }, -1},
             {[](TqImage** i) { return tqBinImage0(i, 2, 2); }, -1},
         }) {
        Image nothing;
        Image empty(DefaultHeader(0, 3));
        EXPECT_EQ(c.call(nullptr), c.invalid);
        EXPECT_EQ(c.call(nothing.Address()), c.invalid);
        EXPECT_EQ(c.call(empty.Address()), c.invalid);
    }
}

}  // namespace
