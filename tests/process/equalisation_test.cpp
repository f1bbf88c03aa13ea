#include <cstddef>

#include "process_tests.h"
#include "tqimage/equalisation.h"

namespace {

using namespace tqtest;

std::int64_t Bin(std::int64_t pel, std::int32_t levels, std::int64_t largest) {
    return static_cast<std::int64_t>(static_cast<double>(pel * (levels - 1)) / static_cast<double>(largest) +
                                     0.5);
}

/// What the pels become when the pels themselves are all that counts.
std::vector<int> Equalised(const std::vector<std::uint16_t>& pels, std::int32_t levels) {
    const int largest = *std::max_element(pels.begin(), pels.end());
    std::vector<std::int64_t> counts(static_cast<std::size_t>(levels));
    for (const std::uint16_t pel : pels)
        ++counts[static_cast<std::size_t>(Bin(pel, levels, largest))];
    std::vector<int> mapped(counts.size());
    float share = 0.0f;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        share += static_cast<float>(static_cast<double>(counts[i]) / static_cast<double>(pels.size()));
        mapped[i] = static_cast<int>(static_cast<float>(levels - 1) * share + 0.5f);
    }
    std::vector<int> result;
    for (const std::uint16_t pel : pels)
        result.push_back(pel == 0 ? 0 : mapped[static_cast<std::size_t>(Bin(pel, levels, largest))]);
    return result;
}

void ExpectRefreshed(const Image& image) {
    EXPECT_EQ(image.Header().MaxPelValue, LargestOf(image));
    EXPECT_EQ(image.Header().TotalPelValue, SumOf(image));
}

TEST(HistoEqualize, SpreadsTheLevelsAndRefreshesBothHeaders) {
    for (const std::int32_t levels : {1, 2, 256, 4096, 65536}) {
        SCOPED_TRACE(levels);
        Image source = RandomImageWithHoles(53, 31, 6);
        source(0, 0) = 60000;
        source.Header().MaxPelValue = 5.0f;
        const Image pels = source;
        Image out(3, 3);
        ASSERT_EQ(tqHistoEqualize(out.Address(), source, levels), 0);
        EXPECT_TRUE(SamePels(pels, source));
        const auto values = pels.Values();
        EXPECT_EQ(source.Header().MaxPelValue, LargestOf(source));
        EXPECT_TRUE(SamePels(MakeImage(53, 31, Equalised(values, levels)), out));
        ExpectRefreshed(out);
    }
}

TEST(HistoEqualize, EqualPelsBecomeTheLastLevelAndTheHeaderTellsHowMany) {
    struct Case {
        std::int32_t levels;
        float stated;
        int level;
    };
    for (const Case& c : {Case{256, 9.0f, 255}, Case{1, 9.0f, 0}, Case{kMax, 9.0f, 65535}, Case{0, 99.9f, 99},
                          Case{-4, 16382.5f, 16382}, Case{0, 16384.0f, 16383}, Case{0, 2147483520.0f, 16383},
                          Case{kMin, -50.0f, 0}, Case{0, kNan, 0}, Case{0, 1e30f, 0}}) {
        SCOPED_TRACE(testing::Message() << c.levels << ", header " << c.stated);
        Image source = MakeImage(7, 5, [](auto, auto) { return 1234; });
        source.Header().MaxPelValue = c.stated;
        const Image expected = MakeImage(7, 5, [&](auto, auto) { return c.level; });
        Image out;
        ASSERT_EQ(tqHistoEqualizeInRegion(out.Address(), source, c.levels, 0, 0, 0, 0), 0);
        EXPECT_TRUE(SamePels(expected, out));
        ASSERT_EQ(tqHistoEqualize(source.Address(), source, c.levels), 0) << "onto itself";
        EXPECT_TRUE(SamePels(expected, source));
    }
}

TEST(HistoEqualizeInRegion, MapsTheRectangleByItsOwnPels) {
    const Image source = RandomImageWithHoles(53, 31, 6);
    std::vector<std::uint16_t> inside;
    for (std::int32_t row = 4; row <= 20; ++row)
        inside.insert(inside.end(), &source(8, row), &source(40, row) + 1);
    const std::vector<int> mapped = Equalised(inside, 300);
    std::size_t next = 0;
    const Image expected = MakeImage(53, 31, [&](auto col, auto row) {
        const bool in = col >= 8 && col <= 40 && row >= 4 && row <= 20;
        return in ? mapped[next++] : source(col, row);
    });
    Image out;
    ASSERT_EQ(tqHistoEqualizeInRegion(out.Address(), source, 300, 8, 4, 40, 20), 0);
    EXPECT_TRUE(SamePels(expected, out));
    ExpectRefreshed(out);
    ASSERT_EQ(tqHistoEqualizeInRegion(out.Address(), source, 300, 8, 4, 7, 20), 0) << "an empty rectangle";
    EXPECT_TRUE(SamePels(source, out));
    ExpectRefreshed(out);
}

TEST(LocalHistoEqualize, RanksEachPelInItsNeighbourhood) {
    struct Case {
        std::int32_t levels, width, height, oddWidth, oddHeight;
    };
    for (const Case& c : {Case{256, 3, 3, 3, 3}, Case{65536, 6, 7, 5, 7}, Case{7, 1, 9, 1, 9},
                          Case{1, 3, 3, 3, 3}, Case{256, kMin, 2, 1, 1}, Case{2, kMax, kMax, 33, 17}}) {
        SCOPED_TRACE(testing::Message() << c.levels << " levels, " << c.width << " x " << c.height);
        Image source = RandomImageWithHoles(33, 18, 21);
        const auto values = source.Values();
        const int largest = *std::max_element(values.begin(), values.end());
        const Image expected = MakeImage(33, 18, [&](std::int32_t col, std::int32_t row) -> std::int64_t {
            const std::int32_t left = std::clamp(col - c.oddWidth / 2, 0, 33 - c.oddWidth);
            const std::int32_t top = std::clamp(row - c.oddHeight / 2, 0, 18 - c.oddHeight);
            std::int64_t rank = 0;
            for (std::int32_t y = top; y < top + c.oddHeight; ++y) {
                for (std::int32_t x = left; x < left + c.oddWidth; ++x)
                    rank += Bin(source(x, y), c.levels, largest) <= Bin(source(col, row), c.levels, largest);
            }
            const std::int64_t area = std::int64_t{c.oddWidth} * c.oddHeight;
            return source(col, row) == 0 ? 0 : (2 * (c.levels - 1) * rank + area) / (2 * area);
        });
        Image out;
        ASSERT_EQ(tqLocalHistoEqualize(out.Address(), source, c.levels, c.width, c.height), 0);
        EXPECT_TRUE(SamePels(expected, out));
        EXPECT_EQ(source.Header().MaxPelValue, static_cast<float>(largest));
        ExpectRefreshed(out);
    }
}

TEST(Equalisations, RefuseAndLeaveNothingBehind) {
    const std::function<std::int32_t(TqImage**, TqImage*)> calls[] = {
        [](TqImage** out, TqImage* source) { return tqHistoEqualize(out, source, 256); },
        [](TqImage** out, TqImage* source) { return tqHistoEqualizeInRegion(out, source, 256, 2, 2, 6, 6); },
        [](TqImage** out, TqImage* source) { return tqLocalHistoEqualize(out, source, 256, 3, 3); },
    };
    for (const auto& call : calls) {
        SCOPED_TRACE(&call - calls);
        Image out(4, 4), black(9, 9), tooWide(8001, 1);
        EXPECT_EQ(call(nullptr, black), -2);
        EXPECT_EQ(call(out.Address(), nullptr), -2);
        EXPECT_EQ(call(out.Address(), tooWide), -2);
        EXPECT_NE(out.Get(), nullptr);
        EXPECT_EQ(call(out.Address(), black), -4);
        EXPECT_EQ(out.Get(), nullptr);
        TqImage* both = black.Release();
        EXPECT_EQ(call(&both, both), -4);
        EXPECT_EQ(both, nullptr);
        if (!CanFailAllocations()) continue;
        Image source = RandomImage(12, 12, 4, 1);
        for (int nth = 1, status = -1; status != 0; ++nth) {
            ASSERT_LT(nth, 100);
            {
                const AllocationFailure failing(nth);
                status = call(out.Address(), source);
            }
            EXPECT_EQ(out.Get() == nullptr, status != 0);
            EXPECT_TRUE(status == 0 || status == (nth == 1 ? -3 : -4)) << status;
        }
    }
}

}  // namespace
