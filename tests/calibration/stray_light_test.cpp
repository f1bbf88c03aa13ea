#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>

#include "corrections.h"
#include "images.h"
#include "tqimage/stray_light.h"

namespace {

using tqtest::Correction;
using tqtest::Image;
using tqtest::MakeImage;
using tqtest::Measurement;
using tqtest::RandomImage;
using tqtest::SamePels;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

TEST(StrayLight, SubtractsItsShareOfTheMeanOfTheKnownPels) {
    // 65535 has no data: its pel is neither corrected nor in the mean, which is (100 + 200 + 300 + 6) / 4.
    Image image = Measurement(MakeImage(5, 1, {100, 200, 60000, 300, 6}));
    const Image correction = Correction(MakeImage(5, 1, {10, 20, 65535, 40000, 1000}), 0.01f);
    image.Header().TotalPelValue = 5.0;
    image.Header().Spare = 0xCAFE;
    const TqImageHeader header = image.Header();
    ASSERT_EQ(tqApplyStrayLightCorrection(image.Address(), correction), 0);
    // Shares 15.15, 30.3 and, of 40000 that is -25536, -38687: light is added there.
    EXPECT_TRUE(SamePels(MakeImage(5, 1, {85, 170, 60000, 38987, 0}), image));
    EXPECT_TRUE(tqtest::SameHeader(header, image.Header()));

    Image bright = Measurement(MakeImage(2, 1, {60000, 60000}));
    ASSERT_EQ(tqApplyStrayLightCorrection(bright.Address(), Correction(MakeImage(2, 1, {40000, 1}), 1e9f)),
              0);
    EXPECT_TRUE(SamePels(MakeImage(2, 1, {65535, 0}), bright)) << "clamped before they are converted";
}

TEST(StrayLight, NothingKnownAndNoScaleKeepEveryPel) {
    const Image pels = RandomImage(31, 17, 5);
    for (const Image& correction : {Correction(MakeImage(31, 17, [](int, int) { return 65535; }), 0.5f),
                                    Correction(RandomImage(31, 17, 6), 0.0f)}) {
        Image image = Measurement(pels);
        ASSERT_EQ(tqApplyStrayLightCorrection(image.Address(), correction), 0);
        EXPECT_TRUE(SamePels(pels, image));
    }
}

/// The arithmetic written out plainly, every step in single precision, for an image cut out of the sensor.
Image Plain(const Image& image, const Image& correction, int bin, int offset) {
    double sum = 0.0;
    int count = 0;
    const auto known = [&](int col, int row, int* value) {
        const int c = bin * (offset + col);
        const int r = bin * (offset + row);
        if (c < 0 || r < 0 || c >= correction.Cols() || r >= correction.Rows()) return false;
        *value = correction(c, r);
        return true;
    };
    int value = 0;
    for (int row = 0; row < image.Rows(); ++row) {
        for (int col = 0; col < image.Cols(); ++col) {
            if (!known(col, row, &value) || value == 65535) continue;
            sum += image(col, row);
            ++count;
        }
    }
    const double mean = count == 0 ? 0.0 : sum / count;
    return MakeImage(image.Cols(), image.Rows(), [&](int col, int row) {
        int stored = 0;
        const int pel = image(col, row);
        if (!known(col, row, &stored)) return pel;
        if (stored == 65535) stored = 0;
        const volatile float t =
            static_cast<float>(stored >= 32768 ? stored - 65536 : stored) * correction.Header().LuxPerGrey;
        const volatile float u = static_cast<float>(static_cast<double>(t) * mean);
        const volatile float v = static_cast<float>(pel - static_cast<double>(u) + 0.5);
        return static_cast<int>(std::clamp<double>(v, 0.0, 65535.0));
    });
}

TEST(StrayLight, EveryBitOnNoiseBinnedAndCut) {
    for (const auto& [bin, offset] : {std::pair{1, 0}, std::pair{1, 3}, std::pair{2, 0}, std::pair{3, 5},
                                      std::pair{2, 40}, std::pair{-2, 0}}) {
        SCOPED_TRACE(testing::Message() << bin << ", " << offset);
        const Image pels = RandomImage(67, 45, 11);
        Image image = Measurement(pels, static_cast<std::int16_t>(bin));
        Image correction = Correction(RandomImage(64, 50, 12, 0, 65535), 1.7e-5f);
        std::fill_n(correction.Pels() + 100, 50, std::uint16_t{65535});
        correction.Header().CenterCol = correction.Header().CenterRow = static_cast<float>(offset * bin);
        ASSERT_EQ(tqApplyStrayLightCorrection(image.Address(), correction), 0);
        EXPECT_TRUE(SamePels(Plain(pels, correction, bin, offset), image));
    }
}

TEST(StrayLight, AnOffsetOfMinusOneCountsAsZeroAndLessIsRefused) {
    struct Case {
        float imageCol, correctionCol, imageRow, correctionRow;
        std::int16_t binCols, binRows;
        std::int32_t status;
    };
    for (const Case& c :
         {Case{100, 99, 0, 0, 1, 1, 0}, Case{100, 98.1f, 0, -1.9f, 1, 1, 0}, Case{100, 98, 0, 0, 1, 1, -7},
          Case{0, 0, 100, 98, 1, 1, -8}, Case{0, 0, 0, 0, 0, 1, -7}, Case{0, 5, 0, 5, 1, 0, -8},
          Case{kNan, 0, 0, 0, 1, 1, -7}, Case{0, kInfinity, 0, 0, 1, 1, -7}, Case{0, 0, 0, kNan, 1, 1, -8},
          Case{0, 3e9f, 0, 0, 1, 1, -7}, Case{0, 2e9f, 0, 2e9f, 1, 1, 0}, Case{0, 0, 0, 0, -3, -3, 0}}) {
        SCOPED_TRACE(testing::Message() << c.imageCol << ", " << c.correctionCol << ", " << c.binCols);
        Image image = Measurement(RandomImage(8, 6, 4));
        Image correction = Correction(MakeImage(8, 6, [](int, int) { return 65535; }), 1.0f);
        image.Header().CenterCol = c.imageCol;
        image.Header().CenterRow = c.imageRow;
        image.Header().BinCols = c.binCols;
        image.Header().BinRows = c.binRows;
        correction.Header().CenterCol = c.correctionCol;
        correction.Header().CenterRow = c.correctionRow;
        EXPECT_EQ(tqApplyStrayLightCorrection(image.Address(), correction), c.status);
        EXPECT_TRUE(SamePels(RandomImage(8, 6, 4), image));
    }
}

TEST(StrayLight, RefusesInvalidImages) {
    Image image = Measurement(RandomImage(8, 6, 4));
    Image nothing;
    const Image invalid(0, 6);
    EXPECT_EQ(tqApplyStrayLightCorrection(nullptr, image), -2);
    EXPECT_EQ(tqApplyStrayLightCorrection(nothing.Address(), nothing), -2);
    EXPECT_EQ(tqApplyStrayLightCorrection(image.Address(), nothing), -3);
    EXPECT_EQ(tqApplyStrayLightCorrection(image.Address(), invalid), -3);
    EXPECT_TRUE(SamePels(RandomImage(8, 6, 4), image));
    // The host's image may correct itself.
    Image own = Measurement(MakeImage(2, 1, {1, 1}));
    ASSERT_EQ(tqApplyStrayLightCorrection(own.Address(), own), 0);
    EXPECT_TRUE(SamePels(MakeImage(2, 1, {0, 0}), own));
}

}  // namespace
