#include <array>

#include "photometry_reference.h"

namespace tqtest {
namespace {

constexpr double kQuarter = 0.78539816339744831;  // pi / 4
constexpr double kCorner = 0.61547970867038734;   // asin(1 / sqrt(3)): elevation of a cube's diagonal
constexpr double kTowardCorner = 0.95531661812450928;

/// Directions whose angles can be read off a cube of an eighth of a metre: add a line to add a truth.
struct Truth {
    const char* where;
    std::int32_t col, row;
    std::uint32_t mode;
    double first, second, offAxis;
};

const Truth kTruths[] = {
    {"on the axis", 128, 96, 3, 1.570796327, 0, 0},
    {"right", 256, 96, 0, kQuarter, 0, kQuarter},
    {"right", 256, 96, 3, 0, kQuarter, kQuarter},
    {"left", 0, 96, 3, 3.141592654, kQuarter, kQuarter},
    {"above", 128, -32, 1, 0, kQuarter, kQuarter},
    {"above", 128, -32, 3, 1.570796327, kQuarter, kQuarter},
    {"below", 128, 224, 2, 0, -kQuarter, kQuarter},
    {"below", 128, 224, 3, 4.712388981, kQuarter, kQuarter},
    {"below right", 256, 224, 0, kQuarter, -kQuarter, kTowardCorner},
    {"below right", 256, 224, 1, kQuarter, -kCorner, kTowardCorner},
    {"below right", 256, 224, 2, kCorner, -kQuarter, kTowardCorner},
    {"below right", 256, 224, 3, 6.283185308 - kQuarter, kTowardCorner, kTowardCorner},
    {"below left", 0, 224, 3, 3.141592654 + kQuarter, kTowardCorner, kTowardCorner},
};

TEST(Angles, Truths) {
    const Image image(TargetHeader());
    for (const Truth& it : kTruths) {
        SCOPED_TRACE(testing::Message() << it.where << ", mode " << it.mode);
        double first = -9, second = -9;
        ASSERT_EQ(tqPelToAngle(image, it.col, it.row, &first, &second, it.mode), 0);
        EXPECT_DOUBLE_EQ(first, it.first);
        EXPECT_DOUBLE_EQ(second, it.second);
        Reading reading;
        ASSERT_EQ(Read(reading, image, it.col, it.row, 1, 1, it.mode), 0);
        EXPECT_EQ(reading.first, first);
        EXPECT_EQ(reading.second, second);
        EXPECT_DOUBLE_EQ(reading.offAxis, it.offAxis);
    }
}

TEST(Angles, EveryModeLeadsBackToThePel) {
    Image image(TargetHeader());
    const TqImageHeader frame = image.Header();
    for (std::uint32_t mode = 0; mode < 4; ++mode) {
        for (std::int32_t row = 0; row < 400; row += 7) {
            for (std::int32_t col = 0; col < 400; col += 8) {
                double first = 0, second = 0;
                std::int32_t backCol = -9, backRow = -9;
                image.Header() = frame;
                ASSERT_EQ(tqPelToAngle(image, col, row, &first, &second, mode), 0);
                // Half a pel lifts the way back off the edge at which truncation would show the rounding.
                image.Header().CenterCol += 0.5f;
                image.Header().CenterRow += 0.5f;
                ASSERT_EQ(tqAngleToPel(image, &backCol, &backRow, first, second, mode), 0);
                ASSERT_EQ(backCol, col) << "row " << row << ", mode " << mode;
                ASSERT_EQ(backRow, row) << "column " << col << ", mode " << mode;
            }
        }
    }
}

TEST(Angles, PelsOfAnglesTruncateTowardZeroAndSaturate) {
    Image image(TargetHeader());
    std::int32_t col = -9, row = -9;
    image.Header().CenterCol = 128.75f;
    image.Header().CenterRow = -3.75f;
    ASSERT_EQ(tqAngleToPel(image, &col, &row, 0, 0, 0), 0);
    EXPECT_EQ(col, 128);
    EXPECT_EQ(row, -3);
    ASSERT_EQ(tqAngleToPel(image, &col, &row, 2 * kQuarter, 2 * kQuarter, 0), 0);
    EXPECT_EQ(col, kHighest);
    EXPECT_EQ(row, kLowest);
    ASSERT_EQ(tqAngleToPel(image, &col, &row, -2 * kQuarter, -2 * kQuarter, 0), 0);
    EXPECT_EQ(col, kLowest);
    EXPECT_EQ(row, kHighest);
}

/// A Lambertian lamp sends I0 cos(theta); on the target it makes I0 cos(theta)^2 / R^2 lux.
TEST(Candela, RecoversALambertianLamp) {
    Image image(TargetHeader());
    const TqImageHeader& header = image.Header();
    constexpr double kOnAxis = 100;
    double flux = 0;
    const auto cosine = [&](std::int32_t col, std::int32_t row) {
        const double x = (col - 128) / 1024.0, y = (row - 96) / 1024.0;
        return 0.125 / std::sqrt(x * x + y * y + 0.125 * 0.125);
    };
    for (std::int32_t row = 0; row < header.PelRows; ++row) {
        for (std::int32_t col = 0; col < header.PelCols; ++col) {
            const double lux = kOnAxis * std::pow(cosine(col, row), 4) / (0.125 * 0.125);
            image(col, row) = static_cast<std::uint16_t>(lux / header.LuxPerGrey + 0.5);
            flux += lux / (1024.0 * 1024.0);
        }
    }
    for (const auto& [col, row] : {std::pair{128, 96}, {0, 0}, {256, 96}, {40, 160}, {200, 3}}) {
        Reading it;
        ASSERT_EQ(Read(it, image, col, row, 1, 1, 3), 0);
        const double halfAGrey = CandelaReference(header, col, row, 0.5);
        EXPECT_NEAR(it.candela, kOnAxis * cosine(col, row), halfAGrey) << col << ", " << row;
        EXPECT_NEAR(std::cos(it.offAxis), cosine(col, row), 1e-15);
    }
    EXPECT_NEAR(tqCalcTotalImageFlux(image), flux, flux * 1e-5);
}

TEST(Candela, AutomaticBlockIsNineTenthsOfAnInchAndAtMostATenthOfTheImage) {
    struct Case {
        std::int32_t cols, rows;
        float perMeterX, perMeterY;
        std::int32_t width, height;
    };
    for (const Case& it : {Case{1000, 950, 3937, 3937, 90, 90}, Case{600, 40, 3937, 3937, 60, 4},
                           Case{1000, 15, 80, 3937, 1, 1}}) {
        Image image = RandomImage(it.cols, it.rows, 41);
        image.Header().PelsPerMeterX = it.perMeterX;
        image.Header().PelsPerMeterY = it.perMeterY;
        const auto at = [&](std::int32_t width, std::int32_t height) {
            Reading reading;
            EXPECT_EQ(Read(reading, image, it.cols / 3, it.rows / 2, width, height, 0), 0);
            return reading;
        };
        EXPECT_EQ(at(0, 0), at(it.width, it.height)) << it.width << " x " << it.height;
        EXPECT_NE(at(0, 0), at(it.width + 1, it.height)) << "the spots must be told apart by this image";
        EXPECT_EQ(at(kHighest, kHighest), at(it.cols, it.rows)) << "no spot is larger than the image";
    }
}

TEST(Candela, TheSpotIsTheEllipseAroundThePelAsPassed) {
    Image image = RandomImage(61, 47, 42);
    for (const auto& [col, row] : {std::pair{30, 20}, {0, 46}, {-4, 20}, {500, 600}}) {
        for (const auto& [width, height] : {std::pair{1, 1}, {9, 4}, {30, 60}, {-1, 3}, {-5, 3}}) {
            Reading it;
            ASSERT_EQ(Read(it, image, col, row, width, height, 4), 0);
            const double grey = EllipseBlockReference(image, col, row, width, std::min(height, 47));
            ExpectNearly(CandelaReference(image.Header(), col, row, grey), it.candela);
            EXPECT_EQ(it.first, -9) << "other modes leave the angles alone";
            EXPECT_EQ(it.second, -9);
            EXPECT_NE(it.offAxis, -9);
        }
    }
}

TEST(Candela, APolygonIsSeenFromTheMeanOfItsVertices) {
    const Image image = RandomImage(61, 47, 43);
    for (const Polygon& polygon :
         {Polygon{{10, 5}, {41, 9}, {22, 38}}, Polygon{{-20, -30}, {90, -31}, {3, 4}},
          Polygon{{kHighest, 5}, {kHighest, 7}, {kHighest, 9}}, Polygon{{7, 7}}}) {
        HostArray vertices = VerticesOf(polygon);
        std::int64_t cols = 0, rows = 0;
        for (const Position& at : polygon)
            cols += at.col, rows += at.row;
        const auto col = static_cast<std::int32_t>(cols / static_cast<std::int64_t>(polygon.size()));
        const auto row = static_cast<std::int32_t>(rows / static_cast<std::int64_t>(polygon.size()));
        const Visited visited = PolygonPels(image, polygon);
        Reading it;
        double first = -9, second = -9;
        ASSERT_EQ(ReadPolygon(tqCalcPolyCandela, it, image, vertices.Address(), 1), 0);
        ASSERT_EQ(tqPelToAngle(image, col, row, &first, &second, 1), 0);
        EXPECT_EQ(it.first, first);
        EXPECT_EQ(it.second, second);
        ExpectNearly(CandelaReference(image.Header(), col, row, MeanOf(image, visited)), it.candela);
    }
}

/// What the functions of the extremes must report: the reading of one pel, or of none.
Reading At(const Image& image, std::int32_t col, std::int32_t row, std::uint32_t mode) {
    Reading it;
    EXPECT_EQ(Read(it, image, col, row, 1, 1, mode), 0);
    return it;
}

TEST(CandelaExtremes, OfEllipses) {
    const Image flat = MakeImage(31, 23, [](auto, auto) { return 700; }), dark(31, 23);
    Image spots = flat;
    spots(12, 9) = 60000;
    spots(18, 13) = 1;
    struct Case {
        const Image& image;
        std::int32_t col, row, width, height;
        Position largest, smallest;
    };
    // Of equal intensities the first in row order stays: on flat ground the farthest pels and the nearest.
    for (const Case& c :
         {Case{spots, 15, 11, 20, 14, {12, 9}, {18, 13}}, Case{flat, 15, 11, 20, 14, {5, 11}, {15, 11}},
          Case{flat, 15, 11, kHighest, kHighest, {0, 0}, {15, 11}},
          Case{flat, -3, 11, 12, 8, {0, 8}, {3, 11}}, Case{spots, 12, 9, 0, 5, {12, 9}, {12, 9}},
          Case{spots, 18, 13, 1, 1, {18, 13}, {18, 13}}}) {
        for (const std::uint32_t mode : {0u, 3u, 4u}) {
            SCOPED_TRACE(testing::Message() << c.col << ", " << c.row << ": " << c.width << " x " << c.height
                                            << ", mode " << mode);
            Reading max, min;
            ASSERT_EQ(
                ReadEllipse(tqCalcMaxCandelaInEllipse, max, c.image, c.col, c.row, c.width, c.height, mode),
                0);
            ASSERT_EQ(
                ReadEllipse(tqCalcMinCandelaInEllipse, min, c.image, c.col, c.row, c.width, c.height, mode),
                0);
            EXPECT_EQ(max, At(c.image, c.largest.col, c.largest.row, mode));
            EXPECT_EQ(min, At(c.image, c.smallest.col, c.smallest.row, mode));
        }
    }
    for (const Position& nothing : {Position{60, 11}, {15, -40}}) {
        Reading max, min;
        ASSERT_EQ(ReadEllipse(tqCalcMaxCandelaInEllipse, max, flat, nothing.col, nothing.row, 8, 8, 0), 0);
        ASSERT_EQ(ReadEllipse(tqCalcMinCandelaInEllipse, min, flat, nothing.col, nothing.row, 8, -6, 0), 0);
        EXPECT_EQ(max, Reading{0});
        EXPECT_EQ(min, Reading{0});
    }
    Reading max, min;
    ASSERT_EQ(ReadEllipse(tqCalcMaxCandelaInEllipse, max, dark, 15, 11, 8, 8, 0), 0);
    ASSERT_EQ(ReadEllipse(tqCalcMinCandelaInEllipse, min, dark, 15, 11, 8, 8, 0), 0);
    EXPECT_EQ(max, Reading{0}) << "nothing is above 0";
    EXPECT_EQ(min, At(dark, 15, 7, 0));
}

TEST(CandelaExtremes, OfPolygons) {
    Image spots = MakeImage(31, 23, [](auto, auto) { return 700; });
    spots(12, 9) = 60000;
    spots(18, 13) = 1;
    HostArray around = VerticesOf({{5, 1}, {29, 12}, {3, 19}}),
              beside = VerticesOf({{40, 1}, {50, 12}, {45, 19}});
    Reading max, min;
    ASSERT_EQ(ReadPolygon(tqCalcMaxPolyCandela, max, spots, around.Address(), 1), 0);
    ASSERT_EQ(ReadPolygon(tqCalcMinPolyCandela, min, spots, around.Address(), 2), 0);
    EXPECT_EQ(max, At(spots, 12, 9, 1));
    EXPECT_EQ(min, At(spots, 18, 13, 2));
    for (const auto function : {tqCalcMaxPolyCandela, tqCalcMinPolyCandela}) {
        Reading none;
        ASSERT_EQ(ReadPolygon(function, none, spots, beside.Address(), 0), 0);
        EXPECT_EQ(none, Reading{0});
    }
}

TEST(Flux, OfARectangleAndOfTheWholeTarget) {
    Image image = RandomImage(61, 47, 46);
    image.Header().PelsPerMeterX = 500;
    image.Header().LuxPerGrey = 0.5f;
    double lux = -9;
    const double mean = RectangleMean(image, 0, 5, 30, 46);
    ExpectNearly(0.5 * mean * 31 * 42 / (500.0 * 1000.0), tqCalcFluxInRegion(image, -3, 5, 30, 46, &lux));
    ExpectNearly(0.5 * mean, lux);
    ExpectNearly(0.5 * image(0, 0) / (500.0 * 1000.0), tqCalcFluxInRegion(image, 0, 0, 0, 0, &lux));
    const double all = tqCalcFluxInRegion(image, kLowest, kLowest, kHighest, kHighest, &lux);
    EXPECT_EQ(tqCalcTotalImageFlux(image), all);
    EXPECT_EQ(image.Header().TotalPelValue, std::round(RectangleMean(image, 0, 0, 60, 46) * 61 * 47));
    lux = 7;
    using Sides = std::array<std::int32_t, 4>;
    for (const auto& [left, top, right, bottom] :
         {Sides{61, 0, 99, 9}, {0, 47, 9, 99}, {9, 0, 8, 9}, {0, 9, 9, 8}, {0, 0, -1, 9}, {0, 0, 9, -1}})
        EXPECT_EQ(tqCalcFluxInRegion(image, left, top, right, bottom, &lux), -4.0);
    EXPECT_EQ(lux, 7);
}

}  // namespace
}  // namespace tqtest
