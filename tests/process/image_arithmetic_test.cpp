#include "tqimage/image_arithmetic.h"
#include "process_tests.h"
#include "tqimage/image.h"

namespace {

using namespace tqtest;

Image Scaled(std::uint32_t seed, float luxPerGrey) {
    Image image = Noise(seed);
    image.Header().LuxPerGrey = luxPerGrey;
    return image;
}

TEST(Averages, AreMeansOfLuminancesInTheCoarserScale) {
    struct Case {
        float scaleA, scaleB;
        std::int32_t count;
    };
    // Equal scales, scales in a simple proportion and in none, a count beyond every table, no scale at all.
    for (const Case& c : {Case{0.01f, 0.01f, 2}, Case{1, 1, 3}, Case{0.37f, 0.37f, 100},
                          Case{7e-5f, 7e-5f, 4096}, Case{3, 3, 4097}, Case{1, 2, 2}, Case{0.1f, 0.3f, 5},
                          Case{0.3f, 0.1f, 2147483647}, Case{-2, 1, 2}, Case{-3, -3, 7}, Case{0, 0, 2},
                          Case{kNan, kNan, 3}, Case{1e30f, -1e30f, 3}, Case{1e-40f, 1e-44f, 3}}) {
        SCOPED_TRACE(testing::Message() << c.scaleA << ", " << c.scaleB << ", " << c.count);
        const Image a = Scaled(21, c.scaleA);
        const Image b = Scaled(22, c.scaleB);
        const float outScale = std::max(c.scaleA, c.scaleB);
        const auto mean = [&](std::int32_t count) {
            return MapImages(a, b, [&](int pa, int pb) {
                const double sum = pb * double{c.scaleB} + pa * double{c.scaleA} * (count - 1);
                return Truncated(sum / count / double{outScale});
            });
        };
        Image average = a;
        ASSERT_EQ(tqRunningAverage(average.Address(), b, c.count), 0);
        EXPECT_TRUE(SamePels(mean(c.count), average));
        TqImageHeader header = With(a.Header(), &TqImageHeader::LuxPerGrey, outScale);
        EXPECT_TRUE(
            SameHeader(With(header, &TqImageHeader::MaxPelValue, LargestOf(average)), average.Header()));

        Image both;
        ASSERT_EQ(tqAverageImages(both.Address(), a, b), 0);
        EXPECT_TRUE(SamePels(mean(2), both));
        EXPECT_TRUE(SameHeader(With(header, &TqImageHeader::MaxPelValue, LargestOf(both)), both.Header()));
    }
}

TEST(Averages, BeginWithACopy) {
    const Image fresh = Noise(23);
    Image average;
    ASSERT_EQ(tqRunningAverage(average.Address(), fresh, 9), 0);
    EXPECT_TRUE(SamePels(fresh, average));
    average = Image(3, 3);  // of any size
    ASSERT_EQ(tqRunningAverage(average.Address(), fresh, 1), 0);
    EXPECT_TRUE(SamePels(fresh, average));
    EXPECT_TRUE(SameHeader(fresh.Header(), average.Header()));
    const TqImage* block = average.Get();
    ASSERT_EQ(tqRunningAverage(average.Address(), average, -4), 0);
    EXPECT_EQ(average.Get(), block);
}

TEST(RootSumSquare, RunsInSinglePrecision) {
    for (const auto& [wa, wb] :
         {std::pair{1.0f, 1.0f}, {0.3f, 0.7f}, {5.0f, 0.0f}, {-1.0f, 2.0f}, {0.0f, 0.0f}}) {
        SCOPED_TRACE(testing::Message() << wa << ", " << wb);
        const Image a = Noise(24);
        const Image b = Noise(25);
        const float larger = std::max(wa, wb);
        const float na = wa / larger;
        const float nb = wb / larger;
        Image out = a;  // also an input
        ASSERT_EQ(tqRootSumSquare(out.Address(), out, b, wa, wb), 0);
        const Image expected = MapImages(a, b, [&](int pa, int pb) {
            const auto fa = static_cast<float>(pa);
            const auto fb = static_cast<float>(pb);
            const float squares = fa * fa * na + fb * fb * nb;
            return Truncated(double{std::sqrt(squares)});
        });
        EXPECT_TRUE(SamePels(expected, out));
        EXPECT_TRUE(SameHeader(a.Header(), out.Header()));
    }
}

TEST(DivideImage, MapsTheLargestRatioTo65000) {
    constexpr std::pair<float, float> kScales[] = {{1, 1}, {0.013f, 0.7f}, {1e-30f, 1e20f},
                                                   {1, 0}, {0, 1},         {-1, 1}};
    for (const auto& [sa, sb] : kScales) {
        SCOPED_TRACE(testing::Message() << sa << ", " << sb);
        const Image a = Scaled(26, sa);
        const Image b = Scaled(27, sb);
        const auto ratio = [sa = double{sa}, sb = double{sb}](int pa, int pb) {
            return pb * sb == 0.0 ? 0.0 : pa * sa / (pb * sb);
        };
        double largest = -1.0;
        for (std::size_t i = 0; i < a.Count(); ++i)
            largest = std::max(largest, ratio(a.Pels()[i], b.Pels()[i]));
        const auto scale = static_cast<float>(largest / 65000.0);
        Image out = b;  // freed first, yet an input
        ASSERT_EQ(tqDivideImage(out.Address(), a, out), 0);
        EXPECT_TRUE(SamePels(
            MapImages(a, b, [&](int pa, int pb) { return Truncated(ratio(pa, pb) / double{scale} + 0.5); }),
            out));
        EXPECT_TRUE(SameHeader(
            With(With(a.Header(), &TqImageHeader::MaxPelValue, 65000), &TqImageHeader::LuxPerGrey, scale),
            out.Header()));
    }
}

TEST(DivideImage, FreesTheOutputBeforeItChecks) {
    const Image image = Noise(29);
    const Image empty(DefaultHeader(0, 4));
    const Image other(61, 22);
    struct Case {
        const TqImage *numerator, *denominator;
        std::int32_t status;
    };
    for (const Case& c : {Case{nullptr, image, -2}, Case{empty, image, -2}, Case{image, nullptr, -3},
                          Case{image, other, -4}}) {
        Image out = image;
        EXPECT_EQ(tqDivideImage(out.Address(), c.numerator, c.denominator), c.status);
        EXPECT_EQ(out.Get(), nullptr);
    }
    EXPECT_EQ(tqDivideImage(nullptr, image, image), -2);
    if (!CanFailAllocations()) return;
    Image out = image;
    const auto freed = [&] { EXPECT_EQ(out.Get(), nullptr); };
    EXPECT_GE(FailEachAllocation(
                  -4, 0, [&] { return tqDivideImage(out.Address(), image, image); }, freed),
              1);
}

TEST(NormalizeImage, DividesByTheFlatField) {
    const Image source = Noise(30);
    for (const std::uint32_t lowest : {0U, 1U, 60000U}) {
        Image reference = RandomImage(61, 23, 31, lowest);
        reference(5, 5) = 0;
        reference(6, 5) = 1;
        Image refreshed = reference;
        ASSERT_EQ(tqNormalizeImage(Image(source).Address(), refreshed), 0);
        const double whole = refreshed.Header().MaxPelValue;
        EXPECT_GT(whole, 30000.0);
        EXPECT_LT(whole, 65535.0);
        Image image = source;
        ASSERT_EQ(tqNormalizeImage(image.Address(), reference), 0);
        const Image expected = MapImages(source, reference, [&](int pel, int r) -> std::int64_t {
            if (r == 0) return 0;
            const double v = pel / (r / whole);
            return v > 65535.0 ? 65535 : Truncated(v);
        });
        EXPECT_TRUE(SamePels(expected, image));
        EXPECT_EQ(image.Header().TotalPelValue, SumOf(expected));
        EXPECT_EQ(image.Header().MaxPelValue, LargestOf(expected));
        EXPECT_EQ(image.Header().CenterPelValue, expected(30, 11));
    }
    Image own = MakeImage(2, 2, {10, 20, 0, 40});  // its own flat field, without a neighbourhood
    own.Header().MaxPelValue = 100.0f;
    ASSERT_EQ(tqNormalizeImage(own.Address(), own), 0);
    EXPECT_TRUE(SamePels(MakeImage(2, 2, {100, 100, 0, 100}), own));
}

TEST(CombineImages, SpansTheLevelsOfADisplay) {
    Image channels[3] = {Scaled(32, 0.2126f), Scaled(33, 0.7152f), Scaled(34, 0.0722f)};
    channels[0].Header().CenterCol = 7.9f;
    for (int present = 1; present < 8; ++present) {
        SCOPED_TRACE(present);
        const TqImage* images[3] = {};
        const Image* leading = nullptr;
        for (int i = 0; i < 3; ++i) {
            if ((present & 1 << i) == 0) continue;
            images[i] = channels[i];
            if (leading == nullptr) leading = &channels[i];
        }
        std::vector<double> sums(leading->Count());
        for (std::size_t p = 0; p < sums.size(); ++p) {
            double sum = 0.0;
            for (int i = 0; i < 3; ++i)
                if (images[i] != nullptr)
                    sum += channels[i].Pels()[p] * double{channels[i].Header().LuxPerGrey};
            sums[p] = static_cast<float>(sum);
        }
        const double largest = *std::max_element(sums.begin(), sums.end());
        Image expected(61, 23);
        for (std::size_t p = 0; p < sums.size(); ++p)
            expected.Pels()[p] = static_cast<std::uint16_t>(Truncated(sums[p] * 255.0 / largest));
        TqImageHeader header = leading->Header();
        header.TotalPelValue = SumOf(expected);
        header.CenterPelValue = expected(leading == &channels[0] ? 7 : 30, 11);
        header.MaxPelValue = 255.0f;
        header.LuxPerGrey = static_cast<float>(largest / 255.0);
        Image out = *leading;
        ASSERT_EQ(tqCombineImages(out.Address(), images[0], images[1], images[2]), 0);
        EXPECT_TRUE(SamePels(expected, out));
        EXPECT_TRUE(SameHeader(header, out.Header()));
    }
    Image black(5, 4);
    black.Header().CenterRow = -1.0f;
    Image out;
    ASSERT_EQ(tqCombineImages(out.Address(), nullptr, black, nullptr), 0);
    EXPECT_EQ(out.Header().LuxPerGrey, static_cast<float>(1.0 / 255.0));
    EXPECT_EQ(out.Header().CenterPelValue, 0.0f);
}

TEST(CombineImages, RefusesWithOneCode) {
    Image image = Noise(1), other(61, 22), empty(0, 4), out;
    EXPECT_EQ(tqCombineImages(out.Address(), nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(tqCombineImages(out.Address(), image, nullptr, other), -1);
    EXPECT_EQ(tqCombineImages(out.Address(), image, empty, nullptr), -1);
}

TEST(ImageArithmetic, RefusesAndLeavesTheOutput) {
    const Image image = Noise(35);
    Image reference = Noise(36);
    const Image other(61, 22);
    Image empty(DefaultHeader(0, 4));
    Image out = image;
    for (const TqImage* bad : {static_cast<const TqImage*>(nullptr), static_cast<const TqImage*>(empty)}) {
        EXPECT_EQ(tqAverageImages(out.Address(), image, bad), -3);
        EXPECT_EQ(tqRootSumSquare(out.Address(), image, bad, 1, 1), -3);
        EXPECT_EQ(tqRunningAverage(out.Address(), bad, 2), -2);
    }
    EXPECT_EQ(tqAverageImages(out.Address(), image, other), -4);
    EXPECT_EQ(tqRootSumSquare(out.Address(), image, other, 1, 1), -4);
    EXPECT_EQ(tqRunningAverage(out.Address(), other, 2), -5);
    for (TqImage** bad : {static_cast<TqImage**>(nullptr), empty.Address()})
        EXPECT_EQ(tqRunningAverage(bad, image, 2), -4);
    EXPECT_EQ(tqNormalizeImage(nullptr, reference), -2);
    EXPECT_EQ(tqNormalizeImage(empty.Address(), reference), -2);
    EXPECT_EQ(tqNormalizeImage(out.Address(), nullptr), -3);
    EXPECT_EQ(tqNormalizeImage(out.Address(), empty), -3);
    EXPECT_EQ(tqNormalizeImage(out.Address(), Image(61, 22)), -4);
    EXPECT_EQ(tqNormalizeImage(out.Address(), Image(61, 23)), -8);
    EXPECT_TRUE(SamePels(image, out));
}

}  // namespace
