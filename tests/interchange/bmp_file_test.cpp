#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>

#include "bitmaps.h"
#include "bmp_reader.h"
#include "failing_allocator.h"
#include "images.h"
#include "temp_file.h"
#include "tqimage/bitmap_files.h"

#if defined(__unix__)
#include <sys/stat.h>
#endif

namespace {

using tqtest::Bitmap;
using tqtest::BmpFile;
using tqtest::DefaultHeader;
using tqtest::Image;
using tqtest::RandomImage;
using tqtest::ReadBmp;
using tqtest::TempName;

TEST(ImageToDiskBmp, HoldsTheBitmapOfTheSameImage) {
    const TempName name("tq_bitmap.bmp");
    // The widest first: the others replace a longer file.
    for (const std::int32_t cols : {301, 1, 2, 3, 4}) {
        for (const std::int32_t palette : {-1, 0, 1, 2}) {
            SCOPED_TRACE(testing::Message() << cols << " columns, palette " << palette);
            Image image = RandomImage(cols, 7, static_cast<std::uint32_t>(cols));
            image.Header().MaxPelValue = 50000.0f;
            Bitmap bitmap;
            double scale = 0.0;
            ASSERT_EQ(tqImageToLeadBmp(&bitmap, &scale, image, palette, 1.0), 0);
            ASSERT_EQ(tqImageToDiskBmp(name.c_str(), image, palette), 0);

            const BmpFile bmp = ReadBmp(name);
            ASSERT_EQ(bmp.width, cols);
            ASSERT_EQ(bmp.height, 7);
            ASSERT_EQ(bmp.colours.size(), 256u);
            for (std::size_t i = 0; i < 256; ++i) {
                const int level = static_cast<int>(i);
                const std::uint8_t* entry = bitmap.palette == nullptr ? nullptr : bitmap.palette + 4 * i;
                const std::array<int, 4> expected =
                    entry == nullptr ? std::array{level, level, level, 0}
                                     : std::array<int, 4>{entry[0], entry[1], entry[2], entry[3]};
                ASSERT_EQ(bmp.colours[i], expected) << "entry " << i;
            }
            for (std::int32_t row = 0; row < 7; ++row) {
                for (std::int32_t col = 0; col < cols; ++col) {
                    const int written =
                        bmp.rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(col)];
                    ASSERT_EQ(written, bitmap.At(col, row)) << col << ", " << row;
                }
            }
        }
    }
}

TEST(ImageToDiskBmp, RefusesInvalidImagesAndFilesItCannotWrite) {
    const TempName name("tq_never.bmp");
    Image empty(DefaultHeader(3, 0));
    EXPECT_EQ(tqImageToDiskBmp(name.c_str(), nullptr, 6), -2);
    EXPECT_EQ(tqImageToDiskBmp(name.c_str(), empty, 6), -2);
    EXPECT_EQ(tqImageToDiskBmp(nullptr, nullptr, 6), -2);
    EXPECT_FALSE(name.Exists());

    Image image(3, 3);
    const TempName nowhere("no_such_folder/tq.bmp");
    const std::string folder = testing::TempDir();
    for (const char* unwritable : {nowhere.c_str(), folder.c_str(), "", static_cast<const char*>(nullptr)})
        EXPECT_EQ(tqImageToDiskBmp(unwritable, image, 6), -3);
}

#if defined(__unix__)
TEST(ImageToDiskBmp, LeavesNoHalfWrittenFile) {
    const TempName name("tq_full_disk.bmp");
    Image image(200, 200);
    // In the middle of the headers, the colour table and the rows.
    for (const rlim_t room : {10u, 600u, 20000u}) {
        const tqtest::FileSizeLimit limit(room);
        EXPECT_EQ(tqImageToDiskBmp(name.c_str(), image, 6), -3) << room;
        EXPECT_FALSE(name.Exists()) << room;
    }
}

TEST(ImageToDiskBmp, ADeviceThatTakesNoMoreStaysWhereItIs) {
    struct stat info {};
    if (stat("/dev/full", &info) != 0 || !S_ISCHR(info.st_mode)) GTEST_SKIP() << "no such device here";
    Image image(3, 3);
    EXPECT_EQ(tqImageToDiskBmp("/dev/full", image, 6), -3);
    EXPECT_EQ(stat("/dev/full", &info), 0);
}
#endif

TEST(ImageToDiskBmp, NoMemoryMakesNoFile) {
    if (!tqtest::CanFailAllocations()) GTEST_SKIP() << "the library allocates for itself here";
    const TempName name("tq_no_memory.bmp");
    Image image(9, 9);
    const int made = tqtest::FailEachAllocation(
        -2, 0, [&] { return tqImageToDiskBmp(name.c_str(), image, 1); },
        [&] { EXPECT_FALSE(name.Exists()); });
    EXPECT_GE(made, 2);
}

}  // namespace
