#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>

#include "corrections.h"
#include "images.h"
#include "tqimage/multi_point_calibration.h"

namespace {

using tqtest::Correction;
using tqtest::Image;
using tqtest::MakeImage;
using tqtest::Measurement;
using tqtest::RandomImage;
using tqtest::SamePels;

TEST(MultiPointApplication, MultipliesByTheFactorOfItsPlace) {
    // 65535 is no factor, 40000 is -25536, a 0 stays one, and the last pel lies outside.
    Image image = Measurement(MakeImage(7, 1, {100, 101, 60000, 300, 60000, 0, 7}));
    const TqImageHeader header = image.Header();
    ASSERT_EQ(
        tqApplyMultiPointCalibration(
            image.Address(), Correction(MakeImage(6, 1, {2000, 500, 65535, 40000, 2000, 32000}), 1e-3f)),
        0);
    EXPECT_TRUE(SamePels(MakeImage(7, 1, {200, 51, 60000, 0, 65535, 0, 7}), image));
    EXPECT_TRUE(tqtest::SameHeader(header, image.Header()));

    // Beyond 32 bits it is bright, without a number dark.
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const auto& [lux, pel] : {std::pair{1e30f, 65535}, std::pair{-1e30f, 0}, std::pair{nan, 0}}) {
        Image one = Measurement(MakeImage(2, 1, {9, 0}));
        ASSERT_EQ(tqApplyMultiPointCalibration(one.Address(), Correction(MakeImage(2, 1, {3, 3}), lux)), 0);
        EXPECT_TRUE(SamePels(MakeImage(2, 1, {pel, 0}), one));
    }
}

TEST(MultiPointApplication, MeansOfTheBinnedAndCutSensor) {
    for (const auto& [bin, offset] :
         {std::pair{1, 3}, std::pair{2, 0}, std::pair{3, 5}, std::pair{2, 40}, std::pair{-2, 0}}) {
        SCOPED_TRACE(testing::Message() << bin << ", " << offset);
        const Image pels = RandomImage(40, 30, 11);
        Image image = Measurement(pels, static_cast<std::int16_t>(bin));
        Image correction = Correction(RandomImage(64, 50, 12), 1.0f / 8192);
        std::fill_n(correction.Pels() + 100, 50, std::uint16_t{65535});
        correction.Header().CenterCol = correction.Header().CenterRow = static_cast<float>(offset * bin);
        ASSERT_EQ(tqApplyMultiPointCalibration(image.Address(), correction), 0);
        EXPECT_TRUE(SamePels(
            MakeImage(40, 30,
                      [&](int col, int row) {
                          double sum = 0.0;
                          int count = 0;
                          for (int r = bin * (offset + row); r < bin * (offset + row + 1); ++r) {
                              for (int c = bin * (offset + col); c < bin * (offset + col + 1); ++c) {
                                  if (c >= 64 || r >= 50 || correction(c, r) == 65535) continue;
                                  sum += static_cast<std::int16_t>(correction(c, r));
                                  ++count;
                              }
                          }
                          const double factor = count == 0 ? 1.0 : sum / count / 8192;
                          return static_cast<int>(std::clamp(pels(col, row) * factor + 0.5, 0.0, 65535.0));
                      }),
            image));
    }
}

TEST(MultiPointApplication, RefusalsLeaveTheImage) {
    Image image = Measurement(RandomImage(8, 6, 4));
    Image nothing;
    EXPECT_EQ(tqApplyMultiPointCalibration(nullptr, image), -2);
    EXPECT_EQ(tqApplyMultiPointCalibration(nothing.Address(), image), -2);
    EXPECT_EQ(tqApplyMultiPointCalibration(image.Address(), Image(0, 6)), -3);
    Image correction = Correction(RandomImage(8, 6, 5), 1.0f);
    correction.Header().CenterCol = -2.0f;
    EXPECT_EQ(tqApplyMultiPointCalibration(image.Address(), correction), -7);
    correction.Header().CenterCol = -1.0f;
    image.Header().BinRows = 0;
    EXPECT_EQ(tqApplyMultiPointCalibration(image.Address(), correction), -8);
    image.Header().BinRows = 1;
    EXPECT_TRUE(SamePels(RandomImage(8, 6, 4), image));
    // The host's image may correct itself.
    Image own = Measurement(MakeImage(2, 1, {2, 3}));
    ASSERT_EQ(tqApplyMultiPointCalibration(own.Address(), own), 0);
    EXPECT_TRUE(SamePels(MakeImage(2, 1, {4, 9}), own));
}

}  // namespace
