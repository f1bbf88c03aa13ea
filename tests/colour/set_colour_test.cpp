#include "colours.h"
#include "tqimage/colour_transforms.h"

namespace tqtest {
namespace {

std::int32_t Set(TqImage* a, TqImage* b, TqImage* c, std::array<std::int32_t, 4> at, const Triple& xyz,
                 const Matrix& m) {
    const auto call = [&](auto... k) {
        return tqSetColorGraysInRegion(a, b, c, at[0], at[1], at[2], at[3], float(xyz[0]), float(xyz[1]),
                                       float(xyz[2]), k...);
    };
    return WithMatrix(call, m);
}

TEST(SetColour, FillsTheRectangleOfEachChannelWithItsValue) {
    const ChannelSet before = NoiseChannels(9, 7, 1);
    const Triple xyz{300, 200, 250};
    ChannelSet set = before;
    auto& in = set.images;
    ASSERT_EQ(Set(in[0], in[1], in[2], {2, -4, 5, 3}, xyz, kMixed), 0);
    for (std::size_t k = 0; k < 3; ++k) {
        const double lux = in[k].Header().LuxPerGrey;
        EXPECT_TRUE(SameHeader(in[k].Header(), before.images[k].Header()));
        const auto pelAt = [&](std::int32_t col, std::int32_t row) {
            const bool inside = col >= 2 && col <= 5 && row <= 3;
            return inside ? PelOf(Multiply(kMixed, xyz)[k] / lux + 0.5) : before.images[k](col, row);
        };
        EXPECT_TRUE(SamePels(MakeImage(9, 7, pelAt), in[k]));
    }
    // One channel alone, the whole image; levels are rounded and clamped, a scale of 0 leaves no level.
    const struct {
        float lux;
        double value;
        int expected;
    } cases[] = {{1, 7.5, 8},     {2, -3, 0}, {1, 1e6, 65535},
                 {1, 3e9, 65535}, {0, 5, 0},  {1, 65534.4375, 65534}};
    for (const auto& it : cases) {
        in[2].Header().LuxPerGrey = it.lux;
        ASSERT_EQ(Set(nullptr, nullptr, in[2], {0, 0, 0, 0}, {0, 0, it.value}, kIdentity), 0);
        EXPECT_EQ(in[2](0, 0), it.expected);
        EXPECT_EQ(in[2](8, 6), it.expected);
    }
}

TEST(SetColour, Codes) {
    Image good(4, 4), other(4, 5), invalid(8001, 1);
    TqImage* const none = nullptr;
    const struct {
        TqImage *a, *b, *c;
        std::int32_t status;
    } cases[] = {{none, none, none, -2},     {invalid, invalid, none, -3}, {none, invalid, invalid, -4},
                 {good, other, invalid, -5}, {good, none, other, -6},      {other, good, none, -6}};
    for (const auto& [a, b, c, status] : cases)
        EXPECT_EQ(Set(a, b, c, {0, 0, 0, 0}, {}, kMixed), status);
}

}  // namespace
}  // namespace tqtest
