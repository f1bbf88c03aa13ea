#include <array>
#include <limits>
#include <utility>

#include "photometry_reference.h"

namespace tqtest {
namespace {

/// A frame in which no two pels are equally far from the axis, so that ranks are unique.
Image SearchImage(std::int32_t cols, std::int32_t rows, std::uint32_t seed) {
    Image image = RandomImage(cols, rows, seed);
    image.Header().CenterCol += 1.37f;
    image.Header().CenterRow -= 0.61f;
    image.Header().SourceDistance = 0.02f;
    image.Header().LuxPerGrey = 0.125f;
    return image;
}

struct Best {
    double candela = 0;
    std::int32_t col = -1, row = -1;
    double sum = 0;
    int positions = 0;
};

/// Every block with its top left corner in left .. endX - 1, top .. endY - 1.
template <class Mean>
Best SearchReference(const Image& image, std::int32_t left, std::int32_t top, std::int32_t endX,
                     std::int32_t endY, std::int32_t width, std::int32_t height, Mean&& mean) {
    Best best;
    for (std::int32_t y = top; y < endY; ++y) {
        for (std::int32_t x = left; x < endX; ++x) {
            const std::int32_t col = x + width / 2, row = y + height / 2;
            const double candela = CandelaReference(image.Header(), col, row, mean(x, y, col, row));
            best.sum += candela;
            ++best.positions;
            if (candela > best.candela) best.candela = candela, best.col = col, best.row = row;
        }
    }
    return best;
}

TEST(CandelaSearch, SlidingBlockOverTheWholeImage) {
    for (const auto& [cols, rows] : {std::pair{17, 13}, {40, 9}, {2, 2}, {90, 70}}) {
        const Image image = SearchImage(cols, rows, 51);
        for (const auto& [width, height] :
             {std::pair{1, 1}, {3, 3}, {2, 4}, {15, 8}, {39, 8}, {16, 1}, {0, 0}, {-2, 3}}) {
            const std::int32_t w = std::max(width, 1), h = std::max(height, 1);
            SCOPED_TRACE(testing::Message()
                         << cols << " x " << rows << ", block " << width << " x " << height);
            const Best best = SearchReference(
                image, 0, 0, cols - w, rows - h, w, h,
                [&](auto x, auto y, auto, auto) { return RectangleMean(image, x, y, x + w - 1, y + h - 1); });
            std::int32_t col = -9, row = -9;
            double average = -9;
            const std::int32_t code = cols > w && rows > h ? 0 : -3;
            EXPECT_EQ(tqCalcMaxCandela(image, &col, &row, width, height), code);
            EXPECT_EQ(tqCalcAvgCandela(image, &average, w, h), code);
            EXPECT_EQ(col, code == 0 ? best.col : -9);
            EXPECT_EQ(row, code == 0 ? best.row : -9);
            // Single precision: about 2^-24 a step, and errors of either sign in the sum.
            const double expected = code == 0 ? best.sum / best.positions : -9;
            EXPECT_NEAR(average, expected, std::abs(expected) * 1e-6);
        }
    }
}

TEST(CandelaSearch, BlockSizeZeroIsAutomaticForTheMean) {
    Image image = SearchImage(300, 260, 52);
    image.Header().PelsPerMeterX = 437.5f;   // 0.9 inch: 10.0 pels
    image.Header().PelsPerMeterY = 2000.0f;  // 45.7 pels, but a tenth of the image is 26
    double automatic = -9, given = -9;
    ASSERT_EQ(tqCalcAvgCandela(image, &automatic, 0, 0), 0);
    ASSERT_EQ(tqCalcAvgCandela(image, &given, 10, 26), 0);
    EXPECT_EQ(automatic, given);
}

TEST(CandelaSearch, TheFirstOfEqualsWins) {
    std::int32_t col = -9, row = -9;
    ASSERT_EQ(tqCalcMaxCandela(Image(10, 8), &col, &row, 3, 2), 0);
    EXPECT_EQ(std::pair(col, row), std::pair(1, 1)) << "all dark: the first block";
    EXPECT_EQ(tqCalcMaxCandela(Image(10, 8), &col, &row, 1, kHighest), -3);
    Image flat = MakeImage(10, 8, [](auto, auto) { return 900; });
    flat.Header().CenterCol = 4;
    flat.Header().CenterRow = 3;
    ASSERT_EQ(tqCalcMaxCandela(flat, &col, &row, 1, 1), 0);
    EXPECT_EQ(std::pair(col, row), std::pair(0, 0)) << "columns 0 and 8, rows 0 and 6 are equally far";
}

TEST(CandelaSearch, InsideARectangle) {
    const Image image = SearchImage(41, 33, 53);
    const std::array<std::int32_t, 4> rectangles[] = {
        {5, 4, 30, 20}, {-9, kLowest, 12, 14}, {30, 25, kHighest, 99}, {7, 7, 7, 7},
        {9, 0, 8, 9},   {0, 9, 9, 8},          {41, 0, 60, 9}};
    const std::pair<std::int32_t, std::int32_t> blocks[] = {{0, 0},  {1, 0},  {3, 3},  {4, 2},      {0, 3},
                                                            {10, 1}, {1, 12}, {-1, 3}, {3, kLowest}};
    for (const auto& [left, top, right, bottom] : rectangles) {
        for (const auto& [width, height] : blocks) {
            for (const std::int32_t kind : {0, 1, -1}) {
                const std::int32_t x0 = std::max(left, 0), y0 = std::max(top, 0);
                const std::int32_t x1 = std::min(right, 40), y1 = std::min(bottom, 32);
                const bool single = width < 2 && height < 2;
                const std::int32_t w = std::max(width, 1), h = std::max(height, 1);
                const bool rejected = x0 > x1 || y0 > y1 || width < 0 || height < 0 || width > x1 - x0 + 1 ||
                                      height > y1 - y0 + 1;
                const Best best =
                    rejected ? Best{-4.0}
                             : SearchReference(
                                   image, x0, y0, single ? x1 + 1 : x1 - w + 1, single ? y1 + 1 : y1 - h + 1,
                                   w, h, [&](auto x, auto y, auto col, auto row) {
                                       return kind == 0 || single
                                                  ? RectangleMean(image, x, y, x + w - 1, y + h - 1)
                                                  : EllipseBlockReference(image, col, row, w, h);
                                   });
                std::int32_t col = -9, row = -9;
                SCOPED_TRACE(testing::Message() << left << ", " << top << ", " << right << ", " << bottom
                                                << ": " << width << " x " << height << ", kind " << kind);
                ExpectNearly(best.candela, tqFindMaxCandelaInRegion(image, &col, &row, left, top, right,
                                                                    bottom, kind, width, height));
                EXPECT_EQ(col, best.col);
                EXPECT_EQ(row, best.row);
            }
        }
    }
}

TEST(PhotometryCodes, FramesWithoutScale) {
    HostArray vertices = VerticesOf({{1, 1}, {5, 1}, {3, 6}});
    for (float TqImageHeader::*scale : {&TqImageHeader::PelsPerMeterX, &TqImageHeader::PelsPerMeterY}) {
        for (const float value : {0.0f, -1000.0f}) {
            Image image = RandomImage(9, 9, 55, 1);
            image.Header().*scale = value;
            Reading it;
            std::int32_t col = -9, row = -9;
            EXPECT_EQ(Read(it, image, 3, 3, 1, 1, 0), -2);
            for (const auto function : {tqCalcPolyCandela, tqCalcMaxPolyCandela, tqCalcMinPolyCandela})
                EXPECT_EQ(ReadPolygon(function, it, image, vertices.Address(), 0), -2);
            EXPECT_EQ(tqCalcMaxCandela(image, &col, &row, 1, 1), -2);
            EXPECT_EQ(tqCalcAvgCandela(image, &it.candela, 1, 1), -2);
            EXPECT_EQ(tqPelToAngle(image, 3, 3, &it.first, &it.second, 0), -2);
            EXPECT_EQ(tqAngleToPel(image, &col, &row, 0, 0, 0), -2);
            EXPECT_EQ(tqCalcFluxInRegion(image, 1, 1, 3, 3, &it.candela), -3.0);
            EXPECT_EQ(tqCalcTotalImageFlux(image), -3.0);
            EXPECT_EQ(it, Reading{});
            EXPECT_EQ(std::pair(col, row), std::pair(-9, -9));
            EXPECT_EQ(ReadEllipse(tqCalcMaxCandelaInEllipse, it, image, 3, 3, 3, 3, 0), -2);
            EXPECT_EQ(std::exchange(it.candela, -9), 0) << "the one output that is written before the checks";
            EXPECT_EQ(ReadEllipse(tqCalcMinCandelaInEllipse, it, image, 3, 3, 0, 3, 0), -2);
            EXPECT_EQ(it.candela, 0);
            EXPECT_EQ(tqFindMaxCandelaInRegion(image, &col, &row, 1, 1, 3, 3, 0, 0, 0), -3.0);
            EXPECT_EQ(std::pair(col, row), std::pair(-1, -1));
            EXPECT_EQ(tqFindMaxCandelaInRegion(nullptr, &col, &row, 1, 1, 3, 3, 0, 0, 0), -2.0);
            image.Header().*scale = std::numeric_limits<float>::quiet_NaN();
            EXPECT_EQ(tqFindMaxCandelaInRegion(image, &col, &row, 1, 1, 3, 3, 0, 0, 0), -3.0);
        }
    }
}

TEST(PhotometryCodes, DistanceModesAndVertexArrays) {
    Image image = RandomImage(9, 9, 56, 1);
    HostArray good = VerticesOf({{1, 1}, {5, 1}, {3, 6}});
    HostArray empty = VerticesOf({{1, 1}});
    HostArray shorts(VT_I2, {{2}, {4}});
    empty->rgsabound[0].cElements = 0;
    Reading it;
    std::int32_t col = -9, row = -9;
    EXPECT_EQ(tqPelToAngle(image, 3, 3, &it.first, &it.second, 4), -3);
    EXPECT_EQ(tqAngleToPel(image, &col, &row, 0, 0, 0xFFFFFFFFu), -3);
    for (const auto function : {tqCalcPolyCandela, tqCalcMaxPolyCandela, tqCalcMinPolyCandela}) {
        EXPECT_EQ(ReadPolygon(function, it, image, shorts.Address(), 0), -2);
        EXPECT_EQ(ReadPolygon(function, it, image, nullptr, 0), -2);
    }
    EXPECT_EQ(ReadPolygon(tqCalcPolyCandela, it, image, empty.Address(), 0), -1)
        << "without a vertex there is no direction";
    EXPECT_EQ(it, Reading{});
    EXPECT_EQ(ReadPolygon(tqCalcMaxPolyCandela, it, image, empty.Address(), 0), 0);
    EXPECT_EQ(it.candela, 0);
    image.Header().SourceDistance = 0;
    EXPECT_EQ(ReadPolygon(tqCalcPolyCandela, it, image, good.Address(), 0), -2);
    EXPECT_EQ(Read(it, image, 3, 3, 1, 1, 0), -2);
    EXPECT_EQ(tqCalcAvgCandela(image, &it.candela, 1, 1), -2);
    EXPECT_EQ(tqAngleToPel(image, &col, &row, 0, 0, 0), -2);
    EXPECT_GT(tqCalcTotalImageFlux(image), 0.0) << "flux needs no distance";
}

}  // namespace
}  // namespace tqtest
