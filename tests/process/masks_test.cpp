#include "tqimage/masks.h"
#include "process_tests.h"

namespace {

using namespace tqtest;

/// A mask with a few marks; one in `oneIn` pels is set.
Image Marks(std::int32_t cols, std::int32_t rows, std::uint32_t oneIn) {
    Image marks = RandomImage(cols, rows, 40 + oneIn);
    for (std::size_t i = 0; i < marks.Count(); ++i)
        marks.Pels()[i] =
            marks.Pels()[i] % oneIn == 0 ? static_cast<std::uint16_t>(1 + marks.Pels()[i] / 2) : 0;
    return marks;
}

TEST(Masks, KeepTheOverlapAndRaiseAKeptZero) {
    for (const auto& [cols, rows] : {std::pair{20, 40}, {100, 9}}) {
        SCOPED_TRACE(testing::Message() << cols << " x " << rows);
        const Image source = Noise(11);
        const Image mask = Marks(cols, rows, 3);
        for (const bool inverted : {false, true}) {
            Image image = source;
            ASSERT_EQ((inverted ? tqInvMaskImage : tqMaskImage)(image.Address(), mask), 0);
            const Image expected =
                MakeImage(61, 23, [&, c = cols, r = rows](std::int32_t col, std::int32_t row) {
                    const bool kept = col < c && row < r && (mask(col, row) != 0) != inverted;
                    return kept ? std::max<int>(source(col, row), 1) : 0;
                });
            EXPECT_TRUE(SamePels(expected, image));
            TqImageHeader header = source.Header();
            if (inverted) {
                // The bytes of the block from the header on, with the total that the source had.
                Image block = expected;
                block.Header() = header;
                const auto* bytes = reinterpret_cast<const std::uint8_t*>(block.Get());
                header.TotalPelValue = std::accumulate(bytes, bytes + 61 * 23, 0.0);
            } else {
                header.TotalPelValue = SumOf(expected);
                header.MaxPelValue = LargestOf(expected);
            }
            EXPECT_TRUE(SameHeader(header, image.Header()));
        }
    }
}

TEST(Masks, AMaskMeetsTheImageAtTheCentres) {
    struct Case {
        float col, row;
        std::int32_t shiftCol, shiftRow;
    };
    for (const Case& c : {Case{30, 11, 0, 0}, Case{35.9f, 10.1f, 5, 0}, Case{24.5f, 2, -5, -9},
                          Case{1e30f, 11, 1000, 0}, Case{-1e30f, -1e30f, 1000, 0}, Case{kNan, 11, 1000, 0}}) {
        SCOPED_TRACE(testing::Message() << c.col << ", " << c.row);
        const Image source = Noise(12);  // centre 30, 11
        Image mask = Marks(50, 31, 4);
        mask.Header().CenterCol = c.col;
        mask.Header().CenterRow = c.row;
        Image image = source;
        ASSERT_EQ(tqInvMaskImageOffset(image, mask), 0);
        const Image expected = MakeImage(61, 23, [&](std::int32_t col, std::int32_t row) {
            const std::int32_t x = col + c.shiftCol;
            const std::int32_t y = row + c.shiftRow;
            const bool masked = x >= 0 && x < 50 && y >= 0 && y < 31 && mask(x, y) != 0;
            return masked ? 0 : source(col, row);
        });
        EXPECT_TRUE(SamePels(expected, image));
        EXPECT_TRUE(SameHeader(source.Header(), image.Header()));
    }
}

/// Block by block, as the function is told.
Image Cleared(const Image& source, const Image& mask, std::int32_t width, std::int32_t height) {
    width = std::clamp(width, 0, source.Cols() - 1);
    height = std::clamp(height, 0, source.Rows() - 1);
    Image image = source;
    for (std::int32_t y = 0; y < source.Rows(); ++y) {
        for (std::int32_t x = 0; x < source.Cols(); ++x) {
            if (mask(x, y) == 0) continue;
            const std::int32_t left = Shifted(x, width, source.Cols()).first;
            const std::int32_t top = Shifted(y, height, source.Rows()).first;
            for (std::int32_t row = top; row < top + height; ++row)
                for (std::int32_t col = left; col < left + width; ++col)
                    image(col, row) = 0;
        }
    }
    return image;
}

TEST(Masks, BlocksAreClearedAroundEveryMark) {
    const Image source = RandomImage(37, 23, 13, 1);
    for (const std::uint32_t oneIn : {2U, 40U, 400U}) {
        const Image mask = Marks(37, 23, oneIn);
        constexpr std::pair<std::int32_t, std::int32_t> kSizes[] = {
            {1, 1}, {3, 3}, {4, 2}, {9, 1}, {1, 12}, {22, 22}, {36, 5}, {kMax, 2}, {0, 5}, {5, 0}, {-4, 3}};
        for (const auto& [width, height] : kSizes) {
            SCOPED_TRACE(testing::Message() << oneIn << ": " << width << " x " << height);
            Image image = source;
            ASSERT_EQ(tqInvMaskImage2(image, mask, width, height), 0);
            EXPECT_TRUE(SamePels(Cleared(source, mask, width, height), image));
            // The image as its own mask is read before it is cleared.
            Image own = mask;
            ASSERT_EQ(tqInvMaskImage2(own, own, width, height), 0);
            EXPECT_TRUE(SamePels(Cleared(mask, mask, width, height), own));
        }
    }
    Image pel = MakeImage(1, 1, {5});
    EXPECT_EQ(tqInvMaskImage2(pel, pel, 1, 1), 0);
    EXPECT_EQ(pel(0, 0), 5);  // there is no block below 2 columns
    EXPECT_EQ(tqInvMaskImage2(pel, Image(1, 2), 1, 1), -4);
}

}  // namespace
