#include "tqimage/image_sum.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "images.h"
#include "tqimage/image.h"

namespace {

using tqtest::Image;
using tqtest::MakeImage;

/// A host's sum block, released with the scope.
struct Sum {
    TqImageSum* block = nullptr;
    ~Sum() {
        auto* image = reinterpret_cast<TqImage*>(block);
        tqImageFree(&image);
    }
    TqImageSumEntry* Entries() const { return reinterpret_cast<TqImageSumEntry*>(block + 1); }
};

TEST(ImageSum, RunningTotalsOfThePelsFromTheStepOn) {
    Image image = MakeImage(4, 2, {5, 0, 2, 7, 1, 3, 65535, 0});
    image.Header().Spare = 0xFEEDu;
    image.Header().TotalPelValue = 2.0 * 4294967295.0;  // step 3
    Sum sum;
    ASSERT_EQ(tqImageToImageSum(&sum.block, image), 0);
    EXPECT_TRUE(tqtest::SameHeader(sum.block->Header, image.Header()));
    EXPECT_EQ(sum.block->Step, 3);
    ASSERT_EQ(sum.block->Count, 4);
    const std::pair<std::uint32_t, std::uint32_t> expected[] = {{1, 0}, {3, 3}, {4, 5}, {21849, 6}};
    for (std::size_t k = 0; k < 4; ++k) {
        EXPECT_EQ(sum.Entries()[k].Total, expected[k].first);
        EXPECT_EQ(sum.Entries()[k].Index, expected[k].second);
    }
    Image restored(9, 9);
    ASSERT_EQ(tqImageSumToImage(restored.Address(), sum.block), 0);
    EXPECT_EQ(restored.Values(), (std::vector<std::uint16_t>{3, 0, 0, 6, 0, 3, 65535, 0}));
    EXPECT_TRUE(tqtest::SameHeader(restored.Header(), image.Header()));
    // Entries that a host made itself wrap: 3 x 20000, then from total 20000 back to 19999.
    sum.block->Count = 2;
    sum.Entries()[0] = {20000, 0};
    sum.Entries()[1] = {19999, 1};
    ASSERT_EQ(tqImageSumToImage(restored.Address(), sum.block), 0);
    EXPECT_EQ(restored(0, 0), 60000);
    EXPECT_EQ(restored(1, 0), 65533);
}

TEST(ImageSum, TheStepFollowsTheHeadersTotal) {
    constexpr double kMost = 4294967295.0;
    Image image = tqtest::RandomImage(97, 60, 3);
    struct Case {
        double total;
        std::int32_t step;
    };
    for (const Case& c : {Case{0.0, 1},
                          {-1e300, 1},
                          {std::numeric_limits<double>::quiet_NaN(), 1},
                          {0.5 * kMost, 1},
                          {0.5 * kMost + 1.0, 2},
                          {1.5 * kMost, 3},
                          {2.5 * kMost, 3},
                          {6.0 * kMost, 7},
                          {65534.0 * kMost, 65535},
                          {65535.0 * kMost, 65536},
                          {1e300, std::numeric_limits<std::int32_t>::max()}}) {
        SCOPED_TRACE(c.total);
        image.Header().TotalPelValue = c.total;
        Sum sum;
        ASSERT_EQ(tqImageToImageSum(&sum.block, image), 0);
        EXPECT_EQ(sum.block->Step, c.step);
        Image restored;
        ASSERT_EQ(tqImageSumToImage(restored.Address(), sum.block), 0);
        const Image expected = MakeImage(
            97, 60, [&](std::int32_t col, std::int32_t row) { return image(col, row) / c.step * c.step; });
        EXPECT_TRUE(tqtest::SamePels(expected, restored));
    }
}

TEST(ImageSum, RefusesWhatIsNoImageAndNoSum) {
    Image image = MakeImage(3, 2, {1, 2, 3, 4, 5, 6});
    const Image invalid(tqtest::DefaultHeader(0, 2));
    Sum sum;
    EXPECT_EQ(tqImageToImageSum(&sum.block, nullptr), -1);
    EXPECT_EQ(tqImageToImageSum(&sum.block, invalid), -1);
    EXPECT_EQ(tqImageToImageSum(nullptr, image), -1);
    EXPECT_EQ(sum.block, nullptr);
    for (int twice = 0; twice < 2; ++twice)  // the second replaces the first
        ASSERT_EQ(tqImageToImageSum(&sum.block, image), 0);
    const TqImageSum head = *sum.block;
    Image kept(1, 1);
    const auto refuses = [&](auto&& change) {
        *sum.block = head;
        change(*sum.block);
        return tqImageSumToImage(kept.Address(), sum.block) == -1 && kept.Cols() == 1;
    };
    EXPECT_EQ(tqImageSumToImage(nullptr, sum.block), -1);
    EXPECT_EQ(tqImageSumToImage(kept.Address(), nullptr), -1);
    EXPECT_TRUE(refuses([](TqImageSum& s) { s.Count = -1; }));
    EXPECT_TRUE(refuses([](TqImageSum& s) { s.Count = 7; }));
    EXPECT_TRUE(refuses([](TqImageSum& s) { s.Header.PelCols = 2; })) << "fewer pels than entries";
    EXPECT_TRUE(refuses([](TqImageSum& s) { s.Header.PelCols = -3; }));
    EXPECT_TRUE(refuses([](TqImageSum& s) { s.Header.PelRows = std::numeric_limits<std::int32_t>::max(); }));
    EXPECT_TRUE(refuses([&](TqImageSum&) { sum.Entries()[5].Index = 6; }));
    sum.Entries()[5].Index = 0;
    *sum.block = head;
    EXPECT_EQ(tqImageSumToImage(kept.Address(), sum.block), 0) << "a pel named twice is harmless";
    sum.block->Header.PelCols = sum.block->Count = 0;
    EXPECT_EQ(tqImageSumToImage(kept.Address(), sum.block), 0) << "an image of no columns, as one can create";
}

}  // namespace
