#include "tqimage/byte_image.h"

#include <cmath>
#include <cstdint>
#include <ctime>
#include <limits>

#include "images.h"

namespace tqtest {
namespace {

/// The definition, with the generator started at `seed`.
Image Dithered(const Image& image, double factor, std::uint32_t seed) {
    return MakeImage(image.Cols(), image.Rows(), [&](std::int32_t col, std::int32_t row) {
        seed = seed * 214013u + 2531011u;
        const double value = image(col, row) * factor + (seed >> 16 & 0x7FFF) * 3.0517578125e-05;
        return value > 0.0 ? static_cast<int>(std::fmin(value, 255.0)) : 0;
    });
}

TEST(Convert16To8, DithersWithTheTimeAsSeed) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const double factor :
         {255.0 / 65535.0, 1.0, 0.003, -0.001, 1e300, kInfinity, -kInfinity, 1.0 / 3.0}) {
        // An odd number of pels with every carry; no 0 among them, as 0 x infinity is its own case.
        Image image =
            MakeImage(251, 263, [](std::int32_t col, std::int32_t row) { return 1 + 251 * row + col; });
        image.Header().Spare = 99;
        const Image before = image;
        const std::int64_t earliest = std::time(nullptr);
        ASSERT_EQ(tqConvert16to8(image.Address(), factor), 0);
        const std::int64_t latest = std::time(nullptr);
        EXPECT_TRUE(SameHeader(before.Header(), image.Header()));
        bool found = false;
        for (std::int64_t second = earliest; second <= latest && !found; ++second)
            found = static_cast<bool>(
                SamePels(Dithered(before, factor, static_cast<std::uint32_t>(second)), image));
        EXPECT_TRUE(found) << "factor " << factor;
    }
    Image image = MakeImage(3, 1, {0, 5, 0}), empty(4, 0);
    ASSERT_EQ(tqConvert16to8(image.Address(), kInfinity), 0);
    EXPECT_EQ(image.Values(), (std::vector<std::uint16_t>{0, 255, 0})) << "what is no number is 0";
    EXPECT_EQ(tqConvert16to8(nullptr, 1.0), -2);
    EXPECT_EQ(tqConvert16to8(empty.Address(), 1.0), -2);
}

}  // namespace
}  // namespace tqtest
