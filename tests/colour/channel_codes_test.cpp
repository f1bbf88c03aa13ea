#include <algorithm>
#include <functional>
#include <utility>

#include "colours.h"
#include "tqimage/adaptive_colour.h"
#include "tqimage/colour_averages.h"
#include "tqimage/colour_transforms.h"

namespace tqtest {
namespace {

using ChannelCall = std::function<std::int32_t(const TqImage*, const TqImage*, const TqImage*)>;
/// For a null channel, an invalid first, second and third one, and one of another size.
using Codes = std::array<std::int32_t, 5>;

// The functions share their checks; here is one of those with the same codes.
TEST(Channels, AreCheckedOneByOneAndThenForTheirSize) {
    Image x, y, z;
    const std::pair<Codes, ChannelCall> functions[] = {
        {{-2, -3, -4, -5, -6},
         [&](auto a, auto b, auto c) {
             float mean[] = {7, 7, 7};
             const auto status =
                 tqCalcAverageColorValues(a, b, c, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, mean, mean + 1, mean + 2);
             EXPECT_EQ(mean[0] + mean[1] + mean[2] == 21, status != 0) << "untouched after a failure";
             return status;
         }},
        {{-2, -3, -3, -3, -5},
         [&](auto a, auto b, auto c) {
             double s[] = {5, 5, 5};
             const auto status = tqTransformRGBToXYZ(x.Address(), y.Address(), z.Address(), s, s + 1, s + 2,
                                                     a, b, c, 1, 0, 0, 0, 1, 0, 0, 0, 1);
             EXPECT_EQ(s[0] + s[1] + s[2] == 0, status != 0) << "zeros before any check";
             return status;
         }},
        {{-2, -3, -4, -5, -7}, [&](auto a, auto b, auto c) {
             return tqTransformToColorSpace(x.Address(), a, b, c, 2, 65535, 0, 1, 3, 3, 1, 0, 0, 0, 1, 0, 0,
                                            0, 1);
         }}};
    const Image good = RandomImage(7, 5, 1), other = RandomImage(5, 7, 2), invalid(8001, 1);
    for (const auto& [codes, call] : functions) {
        EXPECT_EQ(call(good, good, good), 0);
        EXPECT_EQ(call(nullptr, good, good), codes[0]);
        EXPECT_EQ(call(invalid, nullptr, good), codes[0]) << "null comes before every other code";
        EXPECT_EQ(call(good, good, nullptr), codes[0]);
        EXPECT_EQ(call(invalid, invalid, other), codes[1]);
        EXPECT_EQ(call(good, invalid, invalid), codes[2]);
        EXPECT_EQ(call(other, good, invalid), codes[3]);
        EXPECT_EQ(call(other, good, good), codes[4]);
        EXPECT_EQ(call(good, good, other), codes[4]);
    }
}

}  // namespace
}  // namespace tqtest
