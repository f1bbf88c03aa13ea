#include "process_tests.h"
#include "tqimage/clustering.h"

namespace {

using namespace tqtest;

/// Every seed is asked, in order.
void ExpectClusters(const Image& image, std::int32_t limit) {
    SCOPED_TRACE(testing::Message() << image.Cols() << " x " << image.Rows() << ", limit " << limit);
    std::vector<std::pair<std::int32_t, std::int32_t>> seeds;
    const Image labels = MakeImage(image.Cols(), image.Rows(), [&](auto col, auto row) {
        if (image(col, row) == 0) return std::size_t{0};
        for (std::size_t i = 0; i < seeds.size(); ++i) {
            const auto dx = static_cast<float>(col - seeds[i].first);
            const auto dy = static_cast<float>(row - seeds[i].second);
            if (std::sqrt(dx * dx + dy * dy) <= static_cast<float>(limit)) return i + 1;
        }
        seeds.emplace_back(col, row);
        return seeds.size();
    });
    Image out;
    std::int32_t count = -1;
    ASSERT_EQ(tqClusterImage(out.Address(), image.Get(), limit, &count), 0);
    EXPECT_EQ(count, static_cast<std::int32_t>(seeds.size()));
    EXPECT_TRUE(SamePels(labels, out));
    const TqImageHeader header = With(image.Header(), &TqImageHeader::TotalPelValue, count);
    EXPECT_TRUE(SameHeader(With(header, &TqImageHeader::MaxPelValue, count), out.Header()));
}

TEST(ClusterImage, GivesTheFirstSeedThatIsNear) {
    for (const std::int32_t limit : {kMin, -1, 0, 1, 2, 3, 5, 8, 13, 40, 200, 8000, kMax}) {
        for (const std::uint32_t oneIn : {2U, 9U}) {
            ExpectClusters(RandomImageWithHoles(67, 41, 51, oneIn), limit);
            Image sparse = RandomImage(90, 60, 52, 0, 25);
            for (std::size_t i = 0; i < sparse.Count(); ++i)
                sparse.Pels()[i] = sparse.Pels()[i] == 3 ? 1 : 0;
            ExpectClusters(sparse, limit);
        }
    }
    ExpectClusters(Image(5, 5), 3);
    ExpectClusters(RandomImage(1, 1, 1, 1), 3);
}

// Beyond 4096 pels squares do not fit a float: a pel one step too far is then near.
TEST(ClusterImage, LongDistancesRoundAsSinglePrecisionDoes) {
    Image image(8000, 60);
    image(0, 0) = 1;
    for (std::int32_t row = 0; row < 60; ++row) {
        for (const std::int32_t col : {5000, 7000, 7999})
            image(col, row) = 1;
    }
    for (const std::int32_t limit : {4999, 5000, 6999, 7000, 7998, 7999})
        ExpectClusters(image, limit);
}

TEST(ClusterImage, LabelsStopAtTheLargestPelAndTheCountDoesNot) {
    const Image image = MakeImage(300, 230, [](std::int32_t, std::int32_t) { return 7; });
    Image out;
    std::int32_t count = 0;
    ASSERT_EQ(tqClusterImage(out.Address(), image.Get(), 0, &count), 0);
    EXPECT_EQ(count, 69000);
    EXPECT_EQ(out.Header().MaxPelValue, 69000.0f);
    EXPECT_EQ(out(134, 218), 65535);
    EXPECT_EQ(out(133, 218), 65534);
    EXPECT_EQ(out(299, 229), 65535);
}

}  // namespace
