#include "tqimage/image_sum.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "images.h"

namespace tqtest {
namespace {

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
constexpr double kMostTotal = 4294967295.0;

/// A host's sum block, released with the scope.
struct Sum {
    TqImageSum* block = nullptr;
    explicit Sum(const Image& image) { EXPECT_EQ(tqImageToImageSum(&block, image), 0); }
    Sum(const Sum&) = delete;
    Sum& operator=(const Sum&) = delete;
    ~Sum() {
        auto* image = reinterpret_cast<TqImage*>(block);
        tqImageFree(&image);
    }
    TqImageSumEntry* Entries() const { return reinterpret_cast<TqImageSumEntry*>(block + 1); }
};

TEST(ImageSum, RunningTotalsOfThePelsFromTheStepOn) {
    Image image = MakeImage(4, 2, {5, 0, 2, 7, 1, 3, 65535, 0});
    image.Header().Spare = 0xFEEDu;
    image.Header().TotalPelValue = 2.0 * kMostTotal;  // step 3
    const Sum sum(image);
    EXPECT_TRUE(SameHeader(sum.block->Header, image.Header()));
    EXPECT_EQ(sum.block->Step, 3);
    ASSERT_EQ(sum.block->Count, 4);
    const TqImageSumEntry expected[] = {{1, 0}, {3, 3}, {4, 5}, {21849, 6}};
    for (std::size_t k = 0; k < 4; ++k) {
        EXPECT_EQ(sum.Entries()[k].Total, expected[k].Total);
        EXPECT_EQ(sum.Entries()[k].Index, expected[k].Index);
    }
    Image restored(9, 9);
    ASSERT_EQ(tqImageSumToImage(restored.Address(), sum.block), 0);
    EXPECT_EQ(restored.Values(), (std::vector<std::uint16_t>{3, 0, 0, 6, 0, 3, 65535, 0}));
    EXPECT_TRUE(SameHeader(restored.Header(), image.Header()));
    // Entries that a host made itself wrap: 3 x 20000, then from total 20000 back to 19999.
    sum.block->Count = 2;
    sum.Entries()[0] = {20000, 0};
    sum.Entries()[1] = {19999, 1};
    ASSERT_EQ(tqImageSumToImage(restored.Address(), sum.block), 0);
    EXPECT_EQ(restored(0, 0), 60000);
    EXPECT_EQ(restored(1, 0), 65533);
}

TEST(ImageSum, TheStepFollowsTheHeadersTotal) {
    Image image = RandomImage(97, 60, 3);
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        double units;
        std::int32_t step;
    } cases[] = {{0, 1},   {-1e290, 1}, {kNan, 1},      {0.5, 1},       {0.5000000003, 2}, {1.5, 3},
                 {2.5, 3}, {6, 7},      {65534, 65535}, {65535, 65536}, {1e290, kMost}};
    for (const auto& it : cases) {
        SCOPED_TRACE(it.units);
        image.Header().TotalPelValue = it.units * kMostTotal;
        const Sum sum(image);
        EXPECT_EQ(sum.block->Step, it.step);
        Image restored;
        ASSERT_EQ(tqImageSumToImage(restored.Address(), sum.block), 0);
        EXPECT_TRUE(SamePels(
            MakeImage(97, 60, [&](auto col, auto row) { return image(col, row) / it.step * it.step; }),
            restored));
    }
}

TEST(ImageSum, RefusesWhatIsNoImageAndNoSum) {
    const Image image = MakeImage(3, 2, {1, 2, 3, 4, 5, 6}), invalid(0, 2);
    Sum sum(image);
    const TqImageSum* const before = sum.block;
    EXPECT_EQ(tqImageToImageSum(&sum.block, invalid), -1);
    EXPECT_EQ(tqImageToImageSum(nullptr, image), -1);
    EXPECT_EQ(sum.block, before);
    EXPECT_EQ(tqImageToImageSum(&sum.block, image), 0) << "the second replaces the first";
    const TqImageSum head = *sum.block;
    Image kept(1, 1);
    void (*const changes[])(TqImageSum&) = {
        [](auto& s) { s.Count = -1; },
        [](auto& s) { s.Count = 7; },
        [](auto& s) { s.Header.PelCols = 2; },  // fewer pels than entries
        [](auto& s) { s.Header.PelCols = -3; },
        [](auto& s) { s.Header.PelRows = kMost; },
        [](auto& s) { reinterpret_cast<TqImageSumEntry*>(&s + 1)[5].Index = 6; }};
    for (const auto& change : changes) {
        *sum.block = head;
        change(*sum.block);
        EXPECT_EQ(tqImageSumToImage(kept.Address(), sum.block), -1) << &change - changes;
    }
    EXPECT_EQ(tqImageSumToImage(nullptr, sum.block), -1);
    EXPECT_EQ(tqImageSumToImage(kept.Address(), nullptr), -1);
    EXPECT_EQ(kept.Cols(), 1);
    sum.Entries()[5].Index = 0;
    *sum.block = head;
    EXPECT_EQ(tqImageSumToImage(kept.Address(), sum.block), 0) << "a pel named twice is harmless";
    sum.block->Header.PelCols = sum.block->Count = 0;
    EXPECT_EQ(tqImageSumToImage(kept.Address(), sum.block), 0) << "an image of no columns, as one can create";
}

}  // namespace
}  // namespace tqtest
