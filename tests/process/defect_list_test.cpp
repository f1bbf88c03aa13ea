#include "automation_host.h"
#include "process_tests.h"
#include "tqimage/defects.h"

namespace {

using namespace tqtest;

using Record = std::vector<std::int32_t>;

/// The image after the list, which has to be accepted and left unlocked.
Image Repaired(Image image, std::int32_t originCol, std::int32_t originRow, std::int32_t width,
               std::int32_t height, const std::vector<Record>& records) {
    HostArray list = MakeRecords(records);
    EXPECT_EQ(tqRemoveBadPixels(image, originCol, originRow, width, height, list.Address()), 0);
    EXPECT_EQ(list.Locks(), 0u);
    return image;
}

TEST(RemoveBadPixels, EachTypeIsItsRepairInTheOrderOfTheList) {
    const Image noise = RandomImage(12, 10, 1);
    Image expected = noise;
    ASSERT_EQ(tqReplacePel(expected, 3, 4, 5, 3), 0);
    ASSERT_EQ(tqReplaceCol(expected, 4, 0, 9, 5), 0);
    ASSERT_EQ(tqReplaceCol(expected, 5, 2, 7, 5), 0);
    ASSERT_EQ(tqReplaceRow(expected, 6, 0, 11, 3), 0);
    ASSERT_EQ(tqReplaceRow(expected, 5, 1, 8, 3), 0);
    ASSERT_EQ(tqReplaceBlock(expected, 7, 2, 2, 3), 0);
    // Fields that a type does not use are anything.
    EXPECT_TRUE(SamePels(expected, Repaired(noise, 0, 0, 5, 3,
                                            {{0, 3, 4, 99, 99},
                                             {1, 4, kMin, 99, 99},
                                             {2, 5, kMax, 2, 7},
                                             {3, -1, 6, 99, 99},
                                             {4, 5000, 5, 1, 8},
                                             {5, 7, 2, 2, 3}})));
}

TEST(RemoveBadPixels, SensorCoordinatesGoThroughOriginAndBinning) {
    Image noise = RandomImage(12, 10, 2);
    noise.Header().BinCols = 2;
    noise.Header().BinRows = 4;
    Image expected = noise;
    ASSERT_EQ(tqReplacePel(expected, 3, 4, 3, 3), 0);
    ASSERT_EQ(tqReplacePel(expected, 0, 0, 3, 3), 0);
    ASSERT_EQ(tqReplaceCol(expected, 5, 2, 7, 3), 0);
    ASSERT_EQ(tqReplaceRow(expected, 5, 1, 8, 3), 0);
    ASSERT_EQ(tqReplaceBlock(expected, 7, 2, 2, 3), 0);
    // The size of a block is in image pels already. The second record lies one sensor column and three rows
    // before the image: truncation toward zero counts it in.
    EXPECT_TRUE(SamePels(expected, Repaired(noise, 100, 200, 3, 3,
                                            {{0, 107, 219, 0, 0},
                                             {0, 99, 197, 0, 0},
                                             {2, 110, 0, 208, 231},
                                             {4, 0, 220, 103, 117},
                                             {5, 114, 211, 2, 3}})));
}

TEST(RemoveBadPixels, SegmentsAreCutAndDefectsOutsideSkipped) {
    const Image noise = RandomImage(12, 10, 3);
    Image expected = noise;
    ASSERT_EQ(tqReplaceCol(expected, 5, 0, 9, 3), 0);
    ASSERT_EQ(tqReplaceRow(expected, 5, 0, 11, 3), 0);
    EXPECT_TRUE(
        SamePels(expected, Repaired(noise, 0, 0, 3, 3, {{2, 5, 0, kMin, kMax}, {4, 0, 5, kMin, kMax}})));

    std::vector<Record> outside;
    for (const std::int32_t type : {0, 1, 2, 5}) {
        for (const std::int32_t col : {-1, 12, kMin, kMax})
            outside.push_back({type, col, 5, 0, 9});
    }
    for (const std::int32_t type : {0, 3, 4, 5}) {
        for (const std::int32_t row : {-1, 10, kMin, kMax})
            outside.push_back({type, 5, row, 0, 9});
    }
    for (const std::int32_t type : {2, 4}) {
        outside.push_back({type, 5, 5, 7, 6});
        outside.push_back({type, 5, 5, kMin, -1});
        outside.push_back({type, 5, 5, 12, kMax});
    }
    for (const std::int32_t unknown : {-1, 6, kMin, kMax})
        outside.push_back({unknown, 5, 5, 0, 9});
    // A neighbourhood of 1 x 1 makes every repair fail that is tried at all.
    EXPECT_TRUE(SamePels(noise, Repaired(noise, 0, 0, 1, 1, outside)));
    // Origins at the ends of the range must not wrap into the image.
    EXPECT_TRUE(SamePels(noise, Repaired(noise, kMin, kMax, 1, 1, {{0, kMax, kMin, 0, 0}})));
    // A binning factor of 0 counts as 1.
    Image unbinned = noise;
    unbinned.Header().BinCols = unbinned.Header().BinRows = 0;
    expected = noise;
    ASSERT_EQ(tqReplacePel(expected, 3, 4, 3, 3), 0);
    EXPECT_TRUE(SamePels(expected, Repaired(unbinned, 0, 0, 3, 3, {{0, 3, 4, 0, 0}})));
}

TEST(RemoveBadPixels, AFailedRepairStopsAndLeavesTheListLocked) {
    struct Case {
        Record record;
        std::int32_t status;
    };
    for (const Case& c : {Case{{0, 5, 5, 0, 0}, -11}, Case{{1, 5, 0, 0, 0}, -21}, Case{{2, 5, 0, 1, 2}, -31},
                          Case{{3, 0, 5, 0, 0}, -41}, Case{{4, 0, 5, 1, 2}, -51}}) {
        const Image noise = RandomImage(12, 10, 5);
        Image image = noise;
        Image expected = noise;
        ASSERT_EQ(tqReplaceBlock(expected, 1, 1, 2, 2), 0);
        HostArray list = MakeRecords({{5, 1, 1, 2, 2}, c.record, {5, 8, 8, 1, 1}});
        EXPECT_EQ(tqRemoveBadPixels(image, 0, 0, 1, 1, list.Address()), c.status);
        EXPECT_EQ(list.Locks(), 1u);
        EXPECT_TRUE(SamePels(expected, image)) << "what came before stays, what follows is not done";
    }
}

TEST(RemoveBadPixels, ChecksTheListBeforeTheImage) {
    struct Case {
        VARTYPE type;
        std::vector<tqtest::Dimension> dimensions;
        std::uint32_t locks;
        std::int32_t status;
    };
    for (const Case& c : {Case{VT_I4, {{5}}, 0, 1},
                          {VT_R4, {{2}, {5}}, 0, 2},  // four bytes that are no integers
                          {VT_I4, {{5}, {2}}, 0, 3},
                          {VT_I4, {{2}, {5}}, 65535, 5},  // no lock is left
                          {VT_I4, {{2}, {5}}, 0, -1}}) {
        HostArray list(c.type, c.dimensions);
        list->cLocks = c.locks;
        EXPECT_EQ(tqRemoveBadPixels(nullptr, 0, 0, 3, 3, list.Address()), c.status);
        EXPECT_EQ(list.Locks(), c.locks);
    }
    SAFEARRAY* nothing = nullptr;
    EXPECT_EQ(tqRemoveBadPixels(nullptr, 0, 0, 3, 3, nullptr), 1);
    EXPECT_EQ(tqRemoveBadPixels(nullptr, 0, 0, 3, 3, &nothing), 1);
    // Records and fields are counted from 0; these arrays begin at 1.
    for (const auto& bounds : {std::vector<tqtest::Dimension>{{2, 1}, {5, 0}}, {{2, 0}, {5, 1}}}) {
        HostArray list(VT_I4, bounds);
        const Image noise = RandomImage(4, 4, 6);
        Image image = noise;
        EXPECT_EQ(tqRemoveBadPixels(image, 0, 0, 3, 3, list.Address()), 4);
        EXPECT_EQ(list.Locks(), 0u);
        EXPECT_TRUE(SamePels(noise, image));
    }
}

}  // namespace
