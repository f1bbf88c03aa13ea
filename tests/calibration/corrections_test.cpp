#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <utility>

#include "images.h"
#include "tqimage/multi_point_calibration.h"
#include "tqimage/stray_light.h"

namespace {

using namespace tqtest;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

/// A correction image whose first pel is the sensor's and the image's.
Image Correction(Image pels, float luxPerGrey) {
    pels.Header().CenterCol = pels.Header().CenterRow = 0.0f;
    pels.Header().LuxPerGrey = luxPerGrey;
    return pels;
}

/// The image that it corrects.
Image Measurement(Image pels, std::int16_t bin = 1) {
    pels.Header().CenterCol = pels.Header().CenterRow = 0.0f;
    pels.Header().BinCols = pels.Header().BinRows = bin;
    return pels;
}

TEST(StrayLight, SubtractsItsShareOfTheMeanOfTheKnownPels) {
    // 65535 has no data: its pel is neither corrected nor in the mean, which is (100 + 200 + 300 + 6) / 4.
    Image image = Measurement(MakeImage(5, 1, {100, 200, 60000, 300, 6}));
    const TqImageHeader header = image.Header();
    ASSERT_EQ(tqApplyStrayLightCorrection(image.Address(),
                                          Correction(MakeImage(5, 1, {10, 20, 65535, 40000, 1000}), 0.01f)),
              0);
    // Shares 15.15, 30.3 and, of 40000 that is -25536, -38687: light is added there.
    EXPECT_TRUE(SamePels(MakeImage(5, 1, {85, 170, 60000, 38987, 0}), image));
    EXPECT_TRUE(SameHeader(header, image.Header()));

    Image bright = Measurement(MakeImage(2, 1, {60000, 60000}));
    ASSERT_EQ(tqApplyStrayLightCorrection(bright.Address(), Correction(MakeImage(2, 1, {40000, 1}), 1e9f)),
              0);
    EXPECT_TRUE(SamePels(MakeImage(2, 1, {65535, 0}), bright)) << "clamped before they are converted";
}

TEST(MultiPointApplication, MultipliesByTheFactorOfItsPlace) {
    // 65535 is no factor, 40000 is -25536, a 0 stays one, and the last pel lies outside.
    Image image = Measurement(MakeImage(7, 1, {100, 101, 60000, 300, 60000, 0, 7}));
    const TqImageHeader header = image.Header();
    const Image correction = Correction(MakeImage(6, 1, {2000, 500, 65535, 40000, 2000, 32000}), 1e-3f);
    ASSERT_EQ(tqApplyMultiPointCalibration(image.Address(), correction), 0);
    EXPECT_TRUE(SamePels(MakeImage(7, 1, {200, 51, 60000, 0, 65535, 0, 7}), image));
    EXPECT_TRUE(SameHeader(header, image.Header()));

    // Beyond 32 bits it is bright, without a number dark.
    for (const auto& [lux, pel] : {std::pair{1e30f, 65535}, std::pair{-1e30f, 0}, std::pair{kNan, 0}}) {
        Image one = Measurement(MakeImage(2, 1, {9, 0}));
        ASSERT_EQ(tqApplyMultiPointCalibration(one.Address(), Correction(MakeImage(2, 1, {3, 3}), lux)), 0);
        EXPECT_TRUE(SamePels(MakeImage(2, 1, {pel, 0}), one));
    }
}

TEST(Corrections, FollowBinningAndTheCutOfTheSensor) {
    // Image pel (c, r) is sensor pels 2 (1 + c) and on, 2 r and on: the third column and the second row are
    // half outside, the fourth column is wholly.
    const Image pels = MakeImage(4, 2, {10, 20, 30, 70, 40, 50, 60, 80});
    Image correction = MakeImage(7, 3, {9, 9, 2, 4, 6,     65535, 8,  //
                                        9, 9, 2, 4, 65535, 65535, 8,  //
                                        9, 9, 1, 3, 65535, 65535, -2});
    correction = Correction(correction, 0.5f);
    correction.Header().CenterCol = 2.0f;
    Image image = Measurement(pels, 2);
    ASSERT_EQ(tqApplyMultiPointCalibration(image.Address(), correction), 0);
    // By the means of the known sensor pels, 3, 6, 8, 2, none and -2.
    EXPECT_TRUE(SamePels(MakeImage(4, 2, {15, 60, 120, 70, 40, 50, 0, 80}), image));
    // By the first sensor pel alone, and the mean of the known image pels, 160 / 5 = 32.
    correction.Header().LuxPerGrey = 1.0f / 64;
    image = Measurement(pels, 2);
    ASSERT_EQ(tqApplyStrayLightCorrection(image.Address(), correction), 0);
    EXPECT_TRUE(SamePels(MakeImage(4, 2, {9, 17, 26, 70, 40, 50, 61, 80}), image));
}

TEST(Corrections, AnOffsetOfMinusOneCountsAsZeroAndLessIsRefused) {
    struct Case {
        float imageCol, correctionCol, imageRow, correctionRow;
        std::int16_t binCols, binRows;
        std::int32_t status;
    };
    const Image pels = RandomImage(8, 6, 4);
    for (const auto apply : {tqApplyStrayLightCorrection, tqApplyMultiPointCalibration}) {
        for (const Case& c :
             {Case{100, 99, 0, 0, 1, 1, 0}, Case{100, 98.1f, 0, -1.9f, 1, 1, 0},
              Case{100, 98, 0, 0, 1, 1, -7}, Case{0, 0, 100, 98, 1, 1, -8}, Case{0, 0, 0, 0, 0, 1, -7},
              Case{0, 5, 0, 5, 1, 0, -8}, Case{kNan, 0, 0, 0, 1, 1, -7}, Case{0, kInfinity, 0, 0, 1, 1, -7},
              Case{0, 0, 0, kNan, 1, 1, -8}, Case{0, 3e9f, 0, 0, 1, 1, -7}, Case{0, 2e9f, 0, 2e9f, 1, 1, 0},
              Case{0, 0, 0, 0, -3, -3, 0}}) {
            SCOPED_TRACE(testing::Message() << c.imageCol << ", " << c.correctionCol << ", " << c.binCols);
            // Without data anywhere every pel stays.
            Image image = pels, correction = MakeImage(8, 6, [](int, int) { return 65535; });
            image.Header().CenterCol = c.imageCol;
            image.Header().CenterRow = c.imageRow;
            image.Header().BinCols = c.binCols;
            image.Header().BinRows = c.binRows;
            correction.Header().CenterCol = c.correctionCol;
            correction.Header().CenterRow = c.correctionRow;
            EXPECT_EQ(apply(image.Address(), correction), c.status);
            EXPECT_TRUE(SamePels(pels, image));
        }
        Image image = pels;
        EXPECT_EQ(apply(nullptr, image), -2);
        EXPECT_EQ(apply(image.Address(), nullptr), -3);
        EXPECT_EQ(apply(image.Address(), Image(0, 6)), -3);
    }
    // The host's image may correct itself.
    Image scaled = Measurement(MakeImage(2, 1, {2, 3})), dark = Measurement(MakeImage(2, 1, {1, 1}));
    ASSERT_EQ(tqApplyMultiPointCalibration(scaled.Address(), scaled), 0);
    EXPECT_TRUE(SamePels(MakeImage(2, 1, {4, 9}), scaled));
    ASSERT_EQ(tqApplyStrayLightCorrection(dark.Address(), dark), 0);
    EXPECT_TRUE(SamePels(MakeImage(2, 1, {0, 0}), dark));
}

}  // namespace
