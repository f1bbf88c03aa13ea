#if defined(__unix__)
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "bitmaps.h"
#include "images.h"
#include "temp_file.h"
#include "tqimage/bitmap_files.h"
#include "tqimage/colour_bitmap.h"

// BMP files as the programs of Netpbm write and read them, which know nothing of this library.

namespace tqtest {
namespace {

constexpr std::int32_t kRows = 9;

/// A file of PPM, red first, or of PGM, whose bytes are byteAt(column, row, channel).
template <class ByteAt>
std::string Picture(std::int32_t cols, int channels, ByteAt&& byteAt) {
    std::ostringstream file;
    file << (channels == 1 ? "P5\n" : "P6\n") << cols << ' ' << kRows << "\n255\n";
    for (std::int32_t row = 0; row < kRows; ++row)
        for (std::int32_t col = 0; col < cols; ++col)
            for (int k = 0; k < channels; ++k)
                file.put(static_cast<char>(byteAt(col, row, k)));
    return file.str();
}

class OtherPrograms : public testing::Test {
  protected:
    void SetUp() override {
        if (std::system("command -v bmptopnm ppmtobmp >/dev/null 2>&1") != 0)
            GTEST_SKIP() << "Netpbm is not installed";
    }
    /// What a program makes of a file.
    static void Run(const std::string& program, const TempName& from, const TempName& to) {
        const std::string command = program + " -quiet " + from.c_str() + " >" + to.c_str();
        EXPECT_EQ(std::system(command.c_str()), 0);
    }

    const TempName bmp{"tq_other.bmp"};
    const TempName pnm{"tq_other.pnm"};
};

TEST_F(OtherPrograms, ReadWhatIsWrittenHere) {
    for (const std::int32_t cols : {1, 2, 3, 4, 37}) {
        Image image = RandomImage(cols, kRows, 7), blue = RandomImage(cols, kRows, 9);
        for (const std::int32_t palette : {0, -1, 2, 5}) {
            const Bitmap shown(image, palette, 1.0);
            ASSERT_EQ(tqImageToDiskBmp(bmp.c_str(), image, palette), 0);
            Run("bmptopnm", bmp, pnm);
            const std::string expected = Picture(cols, palette == 0 ? 1 : 3, [&](auto col, auto row, int k) {
                const int entry = shown.At(col, row);
                return palette == 0 ? entry : shown.palette[4 * entry + 2 - k];  // blue first
            });
            EXPECT_EQ(pnm.Bytes(), expected) << cols << " columns, palette " << palette;
        }
        Bitmap colours;
        ASSERT_EQ(tqCombineImagesRGB(&colours, image, nullptr, blue, 1, 1, 1, 0, 1, 1.0), 0);
        ASSERT_EQ(tqLeadBmpToDiskBmp(bmp.c_str(), &colours), 0);
        Run("bmptopnm", bmp, pnm);
        EXPECT_EQ(pnm.Bytes(), Picture(cols, 3, [&](auto col, auto row, int k) {
                      return colours.ColourAt(col, row)[static_cast<std::size_t>(k)];
                  }));
    }
}

TEST_F(OtherPrograms, WriteWhatIsReadHere) {
    // As many greys as the depth has, and colours of which the blue channel tells the grey.
    const struct {
        const char* options;
        int greys, channels;
    } cases[] = {{"-bpp=1 -windows", 2, 1},   {"-bpp=4 -windows", 16, 1},   {"-bpp=8 -os2", 256, 1},
                 {"-bpp=8 -windows", 256, 1}, {"-bpp=24 -windows", 256, 3}, {"-bpp=24 -os2", 256, 3}};
    for (const auto& it : cases) {
        for (const std::int32_t cols : {1, 5, 8, 33}) {
            SCOPED_TRACE(testing::Message() << it.options << ", " << cols << " columns");
            const Image drawn = MakeImage(cols, kRows, [&](std::int32_t col, std::int32_t row) {
                return 37 * (row * cols + col) % it.greys * (255 / (it.greys - 1));
            });
            std::ofstream(pnm.c_str(), std::ios::binary)
                << Picture(cols, it.channels, [&](auto col, auto row, int) { return drawn(col, row); });
            Run(std::string("ppmtobmp ") + it.options, pnm, bmp);
            const TqImageHeader info = DefaultHeader(1, 1);
            Image x, y, z, image;
            ASSERT_EQ(tq24bitColorBitmapToImage(bmp.c_str(), &info, x.Address(), y.Address(), z.Address()),
                      0);
            ASSERT_EQ(tqDiskBmpToImage(bmp.c_str(), &info, image.Address()), 0);
            if (it.channels == 3) {
                EXPECT_TRUE(SamePels(drawn, image));
            }
            for (std::size_t i = 0; i < drawn.Count(); ++i) {
                const double value = drawn.Pels()[i] / 255.0;
                const double light =
                    value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
                ASSERT_NEAR(y.Pels()[i], 10000.0 * light, 1.0) << i;
            }
        }
    }
}

}  // namespace
}  // namespace tqtest
#endif
