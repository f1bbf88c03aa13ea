#include "tqimage/histogram.h"

#include "statistics.h"
#include "temp_file.h"

namespace tqtest {
namespace {

std::vector<std::int32_t> CountsOf(const Image& image) {
    const auto pels = image.Values();
    std::vector<std::int32_t> counts(*std::max_element(pels.begin(), pels.end()) + std::size_t{1});
    for (const std::uint16_t pel : pels)
        ++counts[pel];
    return counts;
}

/// Flat images, noise, and runs of equal pels that start and end anywhere in a machine word.
std::vector<Image> HistogramImages() {
    return {RandomImage(101, 37, 1, 0, 2047),
            RandomImage(101, 37, 2, 0, 2048),
            RandomImage(101, 37, 3),
            Image(33, 3),
            MakeImage(131, 29, [](auto col, auto row) { return 1000 + (col * (row % 7 + 1)) / 7; }),
            MakeImage(131, 29, [](auto col, auto row) { return 60000 + (col * (row % 7 + 1)) / 7; }),
            MakeImage(9, 9, [](auto, auto) { return 65535; })};
}

TEST(Histogram, CountsEveryLevelUpToTheLargest) {
    for (const Image& image : HistogramImages()) {
        const auto expected = CountsOf(image);
        HostArray array;
        ASSERT_EQ(tqGetHistogram(image, array.Address()), 0);
        ASSERT_EQ(array->cDims, 1);
        ASSERT_EQ(array->cbElements, 4u);
        ASSERT_EQ(array->rgsabound[0].cElements, expected.size());
        EXPECT_EQ(array->rgsabound[0].lLbound, 0);
        EXPECT_EQ(array.Locks(), 0u);
        for (std::size_t level = 0; level < expected.size(); ++level)
            ASSERT_EQ(array.At<std::int32_t>({static_cast<LONG>(level)}), expected[level]) << level;
    }
}

TEST(Histogram, TheOldArrayGoesUnlessItIsLocked) {
    const Image image = RandomImage(9, 9, 2, 0, 40);
    HostArray array(VT_R8, {{3}, {2}});  // any kind of array is replaced
    ASSERT_EQ(tqGetHistogram(image, array.Address()), 0);
    EXPECT_EQ(array->rgsabound[0].cElements, CountsOf(image).size());

    SAFEARRAY* const before = array.Get();
    ASSERT_EQ(SafeArrayLock(before), S_OK);
    EXPECT_EQ(tqGetHistogram(image, array.Address()), -3);
    EXPECT_EQ(array.Get(), before);
    EXPECT_EQ(array.Locks(), 1u);
}

std::string LinesOf(const Image& image) {
#if defined(_WIN32)
    const std::string end = "\r\n";
#else
    const std::string end = "\n";
#endif
    std::string lines;
    const auto counts = CountsOf(image);
    for (std::size_t level = 0; level < counts.size(); ++level)
        lines += std::to_string(level) + "," + std::to_string(counts[level]) + end;
    return lines;
}

TEST(HistogramFile, HasOneLineALevelAndReplacesTheOldOne) {
    const TempName name("tq_histogram.txt");
    for (const Image& image : HistogramImages()) {
        ASSERT_EQ(tqWriteHistogram(image, name.c_str()), 0);
        ASSERT_EQ(name.Bytes(), LinesOf(image));
    }
    EXPECT_EQ(tqWriteHistogram(nullptr, name.c_str()), -1);
    EXPECT_NE(name.Bytes(), "") << "a bad image leaves the file";
}

TEST(HistogramFile, WhatCannotBeWrittenIsReportedAndLeavesNothing) {
    const Image image = RandomImage(20, 20, 4);
    const TempName missing("tq_no_such_folder/histogram.txt");
    EXPECT_EQ(tqWriteHistogram(image, missing.c_str()), -2);
    EXPECT_FALSE(missing.Exists());
    EXPECT_EQ(tqWriteHistogram(image, nullptr), -2);
    EXPECT_EQ(tqWriteHistogram(image, ""), -2);
    EXPECT_EQ(tqWriteHistogram(image, testing::TempDir().c_str()), -2) << "a folder";
    EXPECT_EQ(tqWriteHistogram(nullptr, nullptr), -1) << "the image speaks first";
#if defined(__unix__)
    const TempName full("tq_full_disk.txt");
    for (const rlim_t room : {0u, 10u, 300000u}) {
        const FileSizeLimit limit(room);
        EXPECT_EQ(tqWriteHistogram(image, full.c_str()), -2) << room;
        EXPECT_FALSE(full.Exists()) << room;
    }
#endif
}

}  // namespace
}  // namespace tqtest
