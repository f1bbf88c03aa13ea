#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <vector>

#include "automation_host.h"
#include "failing_allocator.h"
#include "images.h"
#include "tqimage/appending.h"
#include "tqimage/compressed_image.h"
#include "tqimage/image_sum.h"
#include "tqimage/korvelin.h"

namespace tqtest {
namespace {

/// Each allocation of each function fails in turn: the code, the host's image as it was, and a later call
/// that succeeds.
TEST(Interchange, WithoutMemory) {
    if (!CanFailAllocations()) GTEST_SKIP() << "a DLL allocates for itself";
    Image image = RandomImage(300, 300, 61);
    Image added = RandomImage(300, 300, 62);
    added.Header().LuxPerGrey = 0.5f;
    const Image before = added;
    const Image original = image;
    std::vector<std::uint8_t> file(1'000'000);
    std::uint32_t length = 0;
    double scale = 0.0;
    const auto compress = [&] {
        return tqCompressImage(image, file.data(), &length, &scale, 1'000'000, 0, 2);
    };
    ASSERT_EQ(compress(), 0);
    TqImageSum* sum = nullptr;
    const TqKorvelinRecord record{GlobalAlloc(GHND, 6), 3, 2, 1, 1, 0, 0, 0, 1, 1, 1};
    struct Case {
        std::int32_t failure;
        std::function<std::int32_t()> call;
    };
    const Case cases[] = {
        {-1, [&] { return tqImageToImageSum(&sum, image); }},
        {-1, [&] { return tqImageSumToImage(image.Address(), sum); }},
        {-2, [&] { return tqDecompressImage(file.data(), length, &before.Header(), image.Address()); }},
        {-4, [&] { return TqConvertKorvelinToImage(image.Address(), &record, 1); }},
    };
    for (const Case& c : cases) {
        EXPECT_GE(FailEachAllocation(c.failure, 0, c.call, [&] { EXPECT_TRUE(SamePels(original, image)); }),
                  1);
        image = original;
    }
    // Here the allocations have codes of their own: the table of tones, then what the file needs; the joined
    // image, then what smoothing needs.
    const auto codesOf = [&](const std::function<std::int32_t()>& call) {
        std::vector<std::int32_t> codes;
        for (int nth = 1;; ++nth) {
            const AllocationFailure failing(nth);
            const std::int32_t status = call();
            if (!AllocationFailure::Happened()) return codes;
            if (codes.empty() || codes.back() != status) codes.push_back(status);
            EXPECT_TRUE(SamePels(original, image));
            EXPECT_TRUE(SamePels(before, added));
        }
    };
    EXPECT_EQ(codesOf(compress), (std::vector<std::int32_t>{-2, -3}));
    EXPECT_EQ(codesOf([&] { return tqAppendImage(image.Address(), added, 3, 3); }),
              (std::vector<std::int32_t>{-4, -5}));
    auto* block = reinterpret_cast<TqImage*>(sum);
    tqImageFree(&block);
    GlobalFree(record.Data);
}

}  // namespace
}  // namespace tqtest
