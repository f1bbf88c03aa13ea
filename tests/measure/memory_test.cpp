#include <functional>

#include "failing_allocator.h"
#include "photometry_reference.h"
#include "tqimage/pel_block.h"

namespace tqtest {
namespace {

/// Each allocation of each function that needs working memory fails in turn: the code, untouched outputs, and
/// a later call that succeeds.
TEST(Measure, WithoutMemory) {
    if (!CanFailAllocations()) GTEST_SKIP() << "a DLL allocates for itself";
    const Image image = RandomImage(17, 13, 61, 1);
    HostArray array = VerticesOf({{1, 1}, {12, 3}, {8, 11}, {2, 7}});
    SAFEARRAY** const vertices = array.Address();
    Reading it;
    std::uint32_t count = 7;
    std::int32_t at[4] = {-9, -9, -9, -9};
    struct Case {
        double failure;
        std::function<double()> call;
    };
    const Case cases[] = {
        {-7, [&] { return tqGetMaxPelValueInPoly(image, vertices); }},
        {-7, [&] { return tqCalcAreaInPoly(image, vertices); }},
        {-7, [&] { return tqGetPelBlockAvgPoly(image, vertices); }},
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
        {-2, [&] { return tqCountAllPelBlocks(image, &count, 1.0, 5, 3); }},
        {-2, [&] { return tqCountAllPelBlocksEllipseLess(image, &count, 1.0, 5, 3); }},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &test - cases);
        const double success = test.call();
        EXPECT_GE(success, 0.0);
        const auto untouched = [&] {
            EXPECT_EQ(it, Reading{});
            EXPECT_EQ(count, 7u);
            for (const std::int32_t position : at)
                EXPECT_LT(position, 0) << "-1 where the function says so";
        };
        const auto forget = [&] { it = {}, count = 7, std::fill_n(at, 4, -9); };
        forget();
        EXPECT_GT(FailEachAllocation(test.failure, success, test.call, untouched), 0);
        forget();
    }
}

}  // namespace
}  // namespace tqtest
