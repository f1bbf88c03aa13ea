#include "tqimage/offset_arithmetic.h"
#include "process_tests.h"

namespace {

using namespace tqtest;

struct Scene {
    std::int32_t cols, rows;
    float resolution, centerCol, centerRow, luxPerGrey;
};

Image Shot(const Scene& scene, std::uint32_t seed) {
    Image image = RandomImageWithHoles(scene.cols, scene.rows, seed);
    image.Header().PelsPerMeterX = image.Header().PelsPerMeterY = scene.resolution;
    image.Header().CenterCol = scene.centerCol;
    image.Header().CenterRow = scene.centerRow;
    image.Header().LuxPerGrey = scene.luxPerGrey;
    return image;
}

constexpr Scene kFirst{61, 23, 1000.0f, 30.25f, 11.0f, 0.5f};

/// The other pel at the place of a pel, if there is one: the rule of all three functions.
std::optional<int> Other(const Image& a, const Image& b, std::int32_t col, std::int32_t row, float x,
                         float y) {
    const TqImageHeader& ha = a.Header();
    const TqImageHeader& hb = b.Header();
    const double px = (col - double{ha.CenterCol}) * (double{hb.PelsPerMeterX} / double{ha.PelsPerMeterX}) +
                      double{x} * double{hb.PelsPerMeterX} + double{hb.CenterCol} + 0.5;
    const double py = (row - double{ha.CenterRow}) * (double{hb.PelsPerMeterY} / double{ha.PelsPerMeterY}) +
                      double{y} * double{hb.PelsPerMeterY} + double{hb.CenterRow} + 0.5;
    if (!(px >= 0 && px < b.Cols() && py >= 0 && py < b.Rows())) return {};
    return b(static_cast<std::int32_t>(px), static_cast<std::int32_t>(py));
}

struct Case {
    Scene second;
    float x, y;
};

const Case kCases[] = {
    {{61, 23, 1000.0f, 30.25f, 11.0f, 0.5f}, 0.0f, 0.0f},     // the same
    {{61, 23, 1000.0f, 30.25f, 11.0f, 0.31f}, 0.005f, 0.0f},  // five pels to the right
    {{40, 50, 1000.0f, 10.0f, 30.0f, 2.0f}, -0.003f, 0.004f},
    {{80, 60, 2345.0f, 40.0f, 25.0f, 0.2f}, 0.001f, -0.002f},  // finer
    {{30, 12, 333.0f, 14.0f, 6.5f, 0.7f}, 0.0f, 0.0f},         // coarser
    {{61, 23, 1000.0f, 30.25f, 11.0f, 0.0f}, 0.0f, 0.0f},      // without luminance
    {{61, 23, 1000.0f, 30.25f, 11.0f, -1.0f}, 0.0f, 0.0f},
};
// Places that meet nothing, or are none.
const Case kApart[] = {
    {kFirst, 1.0f, 0.0f},
    {kFirst, 0.0f, -0.0225f},
    {{61, 23, 0.0f, 30.0f, 11.0f, 1.0f}, 0.0f, 100.0f},
    {kFirst, kNan, 0.0f},
    {{61, 23, 1000.0f, 1e30f, 11.0f, 1.0f}, 0.0f, 0.0f},
};

TEST(OffsetArithmetic, SubtractsLuminancesOfTheSamePlace) {
    std::vector<Case> cases(std::begin(kCases), std::end(kCases));
    cases.insert(cases.end(), std::begin(kApart), std::end(kApart));
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.second.resolution << " at " << c.x << ", " << c.y);
        const Image a = Shot(kFirst, 51), b = Shot(c.second, 52);
        const double sa = a.Header().LuxPerGrey, sb = b.Header().LuxPerGrey;
        Image out = a;
        ASSERT_EQ(tqSubtractImageOffset(out.Address(), out, b, c.x, c.y), 0);
        const Image expected = MakeImage(61, 23, [&](std::int32_t col, std::int32_t row) -> std::int64_t {
            const auto other = Other(a, b, col, row, c.x, c.y);
            if (!other) return a(col, row);
            return static_cast<std::int64_t>(
                std::clamp((a(col, row) * sa - *other * sb) / sa + 0.5, 0.0, 65535.0));
        });
        EXPECT_TRUE(SamePels(expected, out));
        EXPECT_TRUE(SameHeader(a.Header(), out.Header()));
    }
}

/// Two rows of these pels: a single one would share less than a pel with another.
Image Twice(const std::vector<int>& pels) {
    return MakeImage(static_cast<std::int32_t>(pels.size()), 2,
                     [&](auto col, auto) { return pels.at(static_cast<std::size_t>(col)); });
}

/// Half a lux a grey in the first, two in the second, whose columns lie on the first three of four.
TEST(OffsetArithmetic, SumsAndQuotientsMapTheLargestTo65000) {
    Image a = Twice({100, 200, 300, 400}), b = Twice({10, 40, 0}), out;
    a.Header().LuxPerGrey = 0.5f;
    b.Header().LuxPerGrey = 2.0f;
    b.Header().CenterCol = 1.5f;
    struct Known {
        decltype(&tqAddImageOffset) function;
        float x;
        std::vector<int> pels;
        double largest;
        float center;
    };
    for (const Known& it : {Known{tqAddImageOffset, 0.0f, {22750, 58500, 48750, 65000}, 200, 1.5f},
                            {tqAddImageOffset, -0.001f, {14130, 33913, 65000, 56522}, 230, 1.5f},
                            // A quotient by 0 is 1.
                            {tqDivideImageOffset, 0.0f, {65000, 32500, 26000}, 2.5, 1.5f},
                            {tqDivideImageOffset, -0.001f, {65000, 24375, 13000}, 5, 0.5f}}) {
        SCOPED_TRACE(testing::Message() << it.pels.front());
        ASSERT_EQ(it.function(out.Address(), a, b, it.x, 0), 0);
        EXPECT_TRUE(SamePels(Twice(it.pels), out));
        EXPECT_EQ(out.Header().LuxPerGrey, static_cast<float>(it.largest / 65000.0));
        EXPECT_EQ(out.Header().MaxPelValue, 65000.0f);
        EXPECT_EQ(out.Header().CenterCol, it.center);
    }
    ASSERT_EQ(tqAddImageOffset(out.Address(), Image(4, 3), Image(4, 3), 0, 0), 0);
    EXPECT_EQ(out.Header().LuxPerGrey, static_cast<float>(1.0 / 65000.0));
}

TEST(OffsetArithmetic, AQuotientIsThePartThatBothImagesShow) {
    for (const Case& c : kCases) {
        SCOPED_TRACE(testing::Message() << c.second.resolution << " at " << c.x << ", " << c.y);
        const Image a = Shot(kFirst, 55), b = Shot(c.second, 56);
        Image out;
        ASSERT_EQ(tqDivideImageOffset(out.Address(), a, b, c.x, c.y), 0);
        // Which part of the numerator it is tells the centre: the first pel that meets one of the other.
        const auto col0 = static_cast<std::int32_t>(kFirst.centerCol - out.Header().CenterCol);
        const auto row0 = static_cast<std::int32_t>(kFirst.centerRow - out.Header().CenterRow);
        const double reach = 1000.0 / double{c.second.resolution};
        EXPECT_EQ(col0, std::ceil(std::max(0.0, 30.25 - c.second.centerCol * reach - c.x * 1e3) - 1e-3));
        EXPECT_EQ(row0, std::ceil(std::max(0.0, 11.0 - c.second.centerRow * reach - c.y * 1e3) - 1e-3));
        EXPECT_TRUE(col0 + out.Cols() <= 61 && row0 + out.Rows() <= 23);
        EXPECT_TRUE(Other(a, b, col0 + out.Cols() - 2, row0 + out.Rows() - 2, c.x, c.y).has_value());
    }
    for (const Case& c : kApart) {
        const Image a = Shot(kFirst, 55);
        Image out = a;
        EXPECT_EQ(tqDivideImageOffset(out.Address(), a, Shot(c.second, 56), c.x, c.y), -100);
        EXPECT_TRUE(SamePels(a, out));
    }
}

}  // namespace
