#include <cstdio>
#include <functional>

#include "failing_allocator.h"
#include "photometry_reference.h"
#include "temp_file.h"
#include "tqimage/gray_search.h"
#include "tqimage/histogram.h"
#include "tqimage/pel_block.h"
#include "tqimage/profiles.h"
#include "tqimage/uniformity.h"
#include "tqimage/whole_image.h"

namespace tqtest {
namespace {

/// Each allocation of each function with outputs beside its result fails in turn: the outputs are untouched,
/// and a later call succeeds.
TEST(Measure, WithoutMemory) {
    if (!CanFailAllocations()) GTEST_SKIP() << "a DLL allocates for itself";
    const Image image = RandomImage(17, 13, 61, 1);
    HostArray array = VerticesOf({{1, 1}, {12, 3}, {8, 11}, {2, 7}});
    SAFEARRAY** const vertices = array.Address();
    Reading it;
    std::uint32_t count = 7;
    std::int32_t at[4] = {-9, -9, -9, -9};
    HostArray made;
    const TempName file("tq_measure_memory.txt");
    struct Case {
        double failure;
        std::function<double()> call;
    };
    const Case cases[] = {
        {-1, [&] { return ReadPolygon(tqCalcPolyCandela, it, image, vertices, 0); }},
        {-7, [&] { return ReadPolygon(tqCalcMaxPolyCandela, it, image, vertices, 0); }},
        {-7, [&] { return ReadPolygon(tqCalcMinPolyCandela, it, image, vertices, 0); }},
        {-1, [&] { return tqCalcMaxCandela(image, &at[0], &at[1], 3, 3); }},
        {-1, [&] { return tqCalcAvgCandela(image, &it.candela, 3, 3); }},
        {-2, [&] { return tqFindMaxCandelaInRegion(image, &at[0], &at[1], 0, 0, 16, 12, 0, 3, 3); }},
        {-2, [&] { return tqFindMaxCandelaInRegion(image, &at[0], &at[1], 0, 0, 16, 12, 1, 3, 3); }},
        {-2,
         [&] {
             return tqFindMinMaxInRegion(image, &it.first, &it.second, &at[0], &at[1], &at[2], &at[3], 0, 0,
                                         0, 0, 0, 3, 3);
         }},
        {-2, [&] { return tqFindMaxGray(image, &at[0], &at[1], 0, 3, 3); }},
        {-2, [&] { return tqFindMinGray(image, &at[0], &at[1], 1, 3, 3); }},
        {-2, [&] { return tqFindMinGray0(image, &at[0], &at[1], 1, 3, 3); }},
        {-4, [&] { return tqGetHistogram(image, made.Address()); }},
        {-4, [&] { return tqGetColAvg(image, 0, 0, 0, 0, made.Address()); }},
        {-4, [&] { return tqGetRowAvg(image, 0, 0, 0, 0, made.Address()); }},
        {-2, [&] { return tqWriteHistogram(image, file.c_str()); }},
        {-2, [&] { return tqCountAllPelBlocks(image, &count, 1.0, 5, 3); }},
        {-2, [&] { return tqCountAllPelBlocksEllipseLess(image, &count, 1.0, 5, 3); }},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &test - cases);
        const double success = test.call();
        EXPECT_GE(success, 0.0);
        const auto untouched = [&] {
            EXPECT_EQ(made.Get(), nullptr);
            EXPECT_FALSE(file.Exists());
            EXPECT_EQ(it, Reading{});
            EXPECT_EQ(count, 7u);
            for (const std::int32_t position : at)
                EXPECT_LT(position, 0) << "-1 where the function says so";
        };
        const auto forget = [&] {
            it = {}, made = HostArray(), count = 7, std::fill_n(at, 4, -9);
            std::remove(file.c_str());
        };
        forget();
        EXPECT_GT(FailEachAllocation(test.failure, success, test.call, untouched), 0);
        forget();
    }
}

}  // namespace
}  // namespace tqtest
