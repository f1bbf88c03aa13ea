#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "bitmaps.h"
#include "bmp_writer.h"
#include "images.h"
#include "temp_file.h"
#include "tqimage/bitmap_files.h"

#if defined(__unix__)
#include <sys/stat.h>
#endif

namespace tqtest {
namespace {

TEST(ImageToDiskBmp, ByteForByte) {
    const TempName name("tq_bitmap.bmp");
    // Lines of 1 to 5 bytes end on a multiple of 4; the longest first, as the others replace its file.
    for (const std::int32_t cols : {5, 4, 3, 2, 1}) {
        for (const std::int32_t palette : {0, 2}) {
            Image image = RandomImage(cols, 2, 7);
            const Bitmap bitmap(image, palette, 1.0);
            Bytes colours, pixels;
            for (std::size_t i = 0; i < 1024; ++i)  // a ramp of greys where there is no palette
                colours.push_back(static_cast<std::uint8_t>(palette != 0 ? bitmap.palette[i]
                                                            : i % 4 == 3 ? 0
                                                                         : i / 4));
            for (const std::int32_t row : {1, 0})
                for (std::int32_t col = 0; col < (cols > 4 ? 8 : 4); ++col)
                    pixels.push_back(static_cast<std::uint8_t>(col < cols ? bitmap.At(col, row) : 0));
            Bytes expected = MakeBmp({40, cols, 2, 8, 0, 256, {}, colours, pixels});
            expected[2] = static_cast<std::uint8_t>(expected.size());
            expected[3] = static_cast<std::uint8_t>(expected.size() >> 8);
            expected[34] = static_cast<std::uint8_t>(pixels.size());
            ASSERT_EQ(tqImageToDiskBmp(name.c_str(), image, palette), 0);
            const std::string file = name.Bytes();
            EXPECT_EQ(Bytes(file.begin(), file.end()), expected) << cols << " columns, palette " << palette;
        }
    }
}

TEST(ImageToDiskBmp, RefusesInvalidImagesAndFilesItCannotWrite) {
    const TempName name("tq_never.bmp"), nowhere("no_such_folder/tq.bmp");
    Image empty(3, 0), image(3, 3);
    EXPECT_EQ(tqImageToDiskBmp(name.c_str(), empty, 6), -2);
    EXPECT_EQ(tqImageToDiskBmp(nullptr, nullptr, 6), -2);
    EXPECT_FALSE(name.Exists());
    const std::string folder = testing::TempDir();
    for (const char* unwritable : {nowhere.c_str(), folder.c_str(), "", static_cast<const char*>(nullptr)})
        EXPECT_EQ(tqImageToDiskBmp(unwritable, image, 6), -3);
}

#if defined(__unix__)
TEST(ImageToDiskBmp, LeavesNoHalfWrittenFileAndADeviceWhereItIs) {
    const TempName name("tq_full_disk.bmp");
    Image image(200, 200);
    // In the middle of the headers, the colour table and the rows.
    for (const rlim_t room : {10u, 600u, 20000u}) {
        const FileSizeLimit limit(room);
        EXPECT_EQ(tqImageToDiskBmp(name.c_str(), image, 6), -3) << room;
        EXPECT_FALSE(name.Exists()) << room;
    }
    struct stat info {};
    if (stat("/dev/full", &info) != 0 || !S_ISCHR(info.st_mode)) GTEST_SKIP() << "no such device here";
    EXPECT_EQ(tqImageToDiskBmp("/dev/full", image, 6), -3);
    EXPECT_EQ(stat("/dev/full", &info), 0);
}
#endif

TEST(LeadBmpToDiskBmp, WritesColoursOfBothOrdersBlueFirst) {
    const TempName name("tq_colours.bmp");
    std::vector<std::uint8_t> rows(3 * 700);
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i] = static_cast<std::uint8_t>(i * 7 % 251);
    for (const std::int32_t order : {0, 1}) {
        // Lines without padding are read as well.
        const TqLeadBitmap bitmap{sizeof bitmap, 350, 2, 24, 3 * 350, 1, order, 0, nullptr, rows.data()};
        ASSERT_EQ(tqLeadBmpToDiskBmp(name.c_str(), &bitmap), 0);
        const std::string file = name.Bytes();
        ASSERT_EQ(file.size(), 54u + 2 * 1052);
        for (std::size_t i = 0; i < 1050; ++i) {
            const std::size_t from = order == 1 ? i : i / 3 * 3 + (2 - i % 3);
            ASSERT_EQ(static_cast<std::uint8_t>(file[54 + 1052 + i]), rows[from]) << i;
        }
        EXPECT_EQ(file[54 + 1051], 0);
    }
    const TqLeadBitmap unreadable{}, sound{sizeof sound, 3, 2, 24, 12, 1, 1, 0, nullptr, rows.data()};
    EXPECT_EQ(tqLeadBmpToDiskBmp(name.c_str(), &unreadable), -1);
    EXPECT_EQ(tqLeadBmpToDiskBmp(name.c_str(), nullptr), -1);
    for (const char* unwritable : {"no_such_folder/x.bmp", static_cast<const char*>(nullptr)})
        EXPECT_EQ(tqLeadBmpToDiskBmp(unwritable, &sound), -1);
}

TEST(BmpFiles, WhatIsWrittenIsReadBack) {
    const TempName name("tq_round_trip.bmp");
    for (const std::int32_t cols : {1, 2, 3, 4, 301}) {
        Image image = RandomImage(cols, 5, 3, 0, 255);
        image.Header().MaxPelValue = 255.0f;
        Bitmap bitmap(image, -1, -1.0);
        bitmap.viewPerspective = 2;
        ASSERT_EQ(tqLeadBmpToDiskBmp(name.c_str(), &bitmap), 0);
        // The header that the new image gets may be that of the image it replaces.
        Image loaded = image;
        ASSERT_EQ(tqDiskBmpToImage(name.c_str(), &loaded.Header(), loaded.Address()), 0);
        EXPECT_TRUE(SamePels(
            MakeImage(cols, 5, [&](std::int32_t col, std::int32_t row) { return image(col, 4 - row); }),
            loaded));
    }
}

}  // namespace
}  // namespace tqtest
