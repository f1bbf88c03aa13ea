#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "bmp_writer.h"
#include "images.h"
#include "temp_file.h"
#include "tqimage/bitmap_files.h"

namespace tqtest {
namespace {

struct Sound {
    const char* name;
    BmpParts parts;
    std::vector<int> pels;  ///< three columns, two rows
};

const Bytes kTwoColours(8), kSixteenColours(64), kAllColours(1024);

/// The same picture, or the nearest to it, in every form that files have. Stored rows begin with the lower.
std::vector<Sound> SoundFiles() {
    const std::vector<int> greys{10, 20, 30, 40, 50, 60};
    const Bytes bytes{40, 50, 60, 0, 10, 20, 30, 0};
    // Red 200, green 100, blue 50 is grey 124.2; red, green and blue alone are 76.2, 149.7 and 29.1.
    const Bytes colours{0,  0,   255, 0, 255, 0, 255, 0,   0,   0, 0, 0,
                        50, 100, 200, 7, 7,   7, 255, 255, 255, 0, 0, 0};
    const std::vector<int> lumas{124, 7, 255, 76, 150, 29};
    return {
        {"8 bits", {40, 3, 2, 8, 0, 0, {}, kAllColours, bytes}, greys},
        {"8 bits, top-down", {40, 3, -2, 8, 0, 0, {}, kAllColours, bytes}, {40, 50, 60, 10, 20, 30}},
        {"8 bits, few colours", {40, 3, 2, 8, 0, 2, {}, kTwoColours, bytes}, greys},
        {"8 bits, too many colours", {40, 3, 2, 8, 0, 300, {}, Bytes(1200), bytes}, greys},
        {"8 bits, core header", {12, 3, 2, 8, 0, 0, {}, Bytes(768), bytes}, greys},
        {"8 bits, core header, short table", {12, 3, 2, 8, 0, 0, {}, Bytes(9), bytes}, greys},
        {"8 bits, second header of OS/2", {64, 3, 2, 8, 0, 0, {}, kAllColours, bytes}, greys},
        {"8 bits, longest header", {124, 3, 2, 8, 0, 0, {}, kAllColours, bytes}, greys},
        {"4 bits",
         {40, 3, 2, 4, 0, 0, {}, kSixteenColours, {0x12, 0x3F, 0, 0, 0xAB, 0xC0, 0, 0}},
         {10, 11, 12, 1, 2, 3}},
        {"1 bit", {40, 3, 2, 1, 0, 0, {}, kTwoColours, {0x40, 0, 0, 0, 0xBF, 0, 0, 0}}, {1, 0, 1, 0, 1, 0}},
        {"24 bits", {40, 3, 2, 24, 0, 0, {}, {}, colours}, lumas},
        {"24 bits, core header", {12, 3, 2, 24, 0, 0, {}, {}, colours}, lumas},
        {"32 bits",
         {40, 1, 6, 32, 0, 0, {}, {}, {255, 0,   0,   9, 0, 255, 0, 9, 0,  0,   255, 9,
                                       255, 255, 255, 9, 7, 7,   7, 9, 50, 100, 200, 9}},
         lumas},
        {"32 bits, masks of 10 bits, blue first",
         {40, 1, 2, 32, 3, 0, {0x3FF, 0xFFC00, 0x3FF00000}, {}, {0xFF, 0xFF, 0xFF, 0x3F, 0, 0xFC, 0x0F, 0}},
         {150, 255}},
        {"32 bits, masks in the header, no blue",
         {56, 1, 1, 32, 3, 0, {0xFF000000, 0xFF0000, 0}, {}, {0xFF, 0xFF, 100, 200}},
         {119}},
        {"16 bits", {40, 2, 1, 16, 0, 0, {}, {}, {0xFF, 0x7F, 0x00, 0x40}}, {255, 39}},
        {"16 bits, 5-6-5, alpha masks",
         {40, 2, 1, 16, 6, 0, {0xF800, 0x7E0, 0x1F, 0}, {}, {0xFF, 0xFF, 0xE0, 0x07}},
         {255, 150}},
        // Three of 10; line; two, jump to (2, 1) from (2, 1); end of the picture.
        {"8 bits, run lengths",
         {40, 3, 2, 8, 1, 0, {}, kAllColours, {3, 10, 0, 0, 1, 20, 1, 30, 0, 2, 0, 0, 1, 40, 0, 1}},
         {20, 30, 40, 10, 10, 10}},
        // Pixels one by one, padded; pixels that no run reaches; no mark after the last line.
        {"8 bits, run lengths without an end mark",
         {40, 3, 2, 8, 1, 0, {}, kAllColours, {0, 3, 1, 2, 3, 99, 0, 0, 1, 7, 0, 0}},
         {7, 0, 0, 1, 2, 3}},
        {"8 bits, run lengths that end early",
         {40, 3, 2, 8, 1, 0, {}, kAllColours, {1, 5, 0, 1}},
         {0, 0, 0, 5, 0, 0}},
        {"4 bits, run lengths",
         {40, 3, 2, 4, 2, 0, {}, kSixteenColours, {3, 0x12, 0, 0, 0, 3, 0xAB, 0xC0, 0, 1}},
         {10, 11, 12, 1, 2, 1}},
    };
}

TEST(DiskBmpToImage, ReadsEveryFormOfFile) {
    const TempName name("tq_form.bmp");
    for (const Sound& sound : SoundFiles()) {
        SCOPED_TRACE(sound.name);
        WriteBytes(name, MakeBmp(sound.parts));
        TqImageHeader info = DefaultHeader(77, 88);
        info.Spare = 5;
        Image image;
        ASSERT_EQ(tqDiskBmpToImage(name.c_str(), &info, image.Address()), 0);
        info.PelCols = sound.parts.width;
        info.PelRows = std::abs(sound.parts.height);
        info.MaxPelValue = static_cast<float>(*std::max_element(sound.pels.begin(), sound.pels.end()));
        EXPECT_TRUE(SameHeader(info, image.Header())) << "all else is the host's";
        EXPECT_TRUE(SamePels(MakeImage(info.PelCols, info.PelRows, sound.pels), image));
    }
}

TEST(DiskBmpToImage, RefusesMalformedFiles) {
    const BmpParts sound{40, 3, 2, 8, 0, 0, {}, kAllColours, {40, 50, 60, 0, 10, 20, 30, 0}};
    const BmpParts masks{40, 1, 1, 32, 3, 0, {0xFF0000, 0xFF00, 0xFF}, {}, {1, 2, 3, 4}};
    const BmpParts runs{40, 3, 2, 8, 1, 0, {}, kAllColours, {3, 10, 0, 0, 3, 20, 0, 1}};
    std::vector<Bytes> files;
    const auto add = [&](BmpParts parts, auto&& spoil) {
        spoil(parts);
        files.push_back(MakeBmp(parts));
    };
    constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
    for (const std::int32_t width : {0, -3, kLeast, 0x7FFFFFFF, 5})
        add(sound, [&](BmpParts& p) { p.width = width; });
    for (const std::int32_t height : {0, 3, -3, kLeast, 0x7FFFFFFF})
        add(sound, [&](BmpParts& p) { p.height = height; });
    for (const std::uint32_t bits : {0u, 2u, 7u, 64u, 65535u})
        add(sound, [&](BmpParts& p) { p.bits = bits; });
    // Run lengths of another depth, masks of bytes, pictures of other formats inside.
    for (const std::uint32_t compression : {2u, 3u, 4u, 5u, 6u, 0xFFFFFFFFu})
        add(sound, [&](BmpParts& p) { p.compression = compression; });
    for (const std::uint32_t bytes : {0u, 11u, 16u, 41u, 0xFFFFFFu})
        add(sound, [&](BmpParts& p) { p.headerBytes = bytes; });
    add(sound, [](BmpParts& p) { p.planes = 0; });
    add(sound, [](BmpParts& p) { p.table.pop_back(); });
    add(sound, [](BmpParts& p) { p.pixels.pop_back(); });
    for (const std::int32_t error : {-1, 1, 9, -1060, 0x7FFFFF00})
        add(sound, [&](BmpParts& p) { p.offsetError = error; });

    for (const std::vector<std::uint32_t>& wrong :
         std::vector<std::vector<std::uint32_t>>{{0, 0, 0}, {0xFF, 0xFF, 0xFF00}, {0xF0F, 0xF0, 0xF000}}) {
        add(masks, [&](BmpParts& p) { p.masks = wrong; });
    }
    add(masks, [](BmpParts& p) { p.masks.clear(), p.pixels.clear(); });
    add(masks, [](BmpParts& p) { p.headerBytes = 64; });
    add(masks, [](BmpParts& p) { p.bits = 16; });

    // No room in the row or the picture, an end within a code, top-down, and a size that a few bytes claim.
    for (const Bytes& code : std::vector<Bytes>{{4, 1, 0, 1},
                                                {2, 1, 2, 1, 0, 1},
                                                {0, 4, 1, 2, 3, 4, 0, 1},
                                                {0, 2, 4, 0, 0, 1},
                                                {0, 2, 0, 3, 0, 1},
                                                {3, 1, 0, 0, 3, 1},
                                                {0, 2, 1},
                                                {0, 3, 1, 2, 3},
                                                {3},
                                                {}}) {
        add(runs, [&](BmpParts& p) { p.pixels = code; });
    }
    add(runs, [](BmpParts& p) { p.height = -2; });
    add(runs, [](BmpParts& p) { p.width = 8001; });
    add(runs, [](BmpParts& p) { p.height = 8001; });
    files.push_back({});
    files.push_back({'B', 'M'});
    files.push_back(Bytes(4000, 0xFF));

    const TempName name("tq_malformed.bmp");
    const TqImageHeader info = DefaultHeader(1, 1);
    Image image(2, 2);
    const TqImage* const before = image.Get();
    for (std::size_t i = 0; i < files.size(); ++i) {
        WriteBytes(name, files[i]);
        EXPECT_EQ(tqDiskBmpToImage(name.c_str(), &info, image.Address()), -100) << "file " << i;
    }
    const std::string folder = testing::TempDir();
    for (const char* unreadable : {folder.c_str(), "no_such_file.bmp", "", static_cast<const char*>(nullptr)})
        EXPECT_EQ(tqDiskBmpToImage(unreadable, &info, image.Address()), -100);
    EXPECT_EQ(image.Get(), before);

    WriteBytes(name, MakeBmp(sound));
    EXPECT_EQ(tqDiskBmpToImage(name.c_str(), nullptr, image.Address()), -3);
    EXPECT_EQ(tqDiskBmpToImage(name.c_str(), &info, nullptr), -3);
}

TEST(DiskBmpToImage, RefusesEveryCut) {
    const TempName name("tq_cut.bmp");
    const TqImageHeader info = DefaultHeader(1, 1);
    for (const Sound& sound : SoundFiles()) {
        SCOPED_TRACE(sound.name);
        const Bytes file = MakeBmp(sound.parts);
        Image image;
        WriteBytes(name, file);
        for (std::size_t length = file.size() - 1; length > 0; length -= length <= 70 ? 1 : 71) {
            std::filesystem::resize_file(name.c_str(), length);
            EXPECT_EQ(tqDiskBmpToImage(name.c_str(), &info, image.Address()), -100) << length << " bytes";
        }
    }
}

}  // namespace
}  // namespace tqtest
