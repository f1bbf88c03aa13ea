#if defined(__unix__)
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "bitmaps.h"
#include "images.h"
#include "temp_file.h"
#include "tqimage/bitmap_files.h"
#include "tqimage/colour_bitmap.h"

// BMP files as the programs of Netpbm write and read them, which know nothing of this library.

namespace {

using tqtest::Bitmap;
using tqtest::DefaultHeader;
using tqtest::Image;
using tqtest::RandomImage;
using tqtest::TempName;

/// A picture in the binary form of PPM, red first, or PGM.
struct Picture {
    std::int32_t cols = 0;
    std::int32_t rows = 0;
    std::size_t channels = 0;
    std::string bytes;

    int At(std::int32_t col, std::int32_t row, std::size_t channel) const {
        const std::size_t pixel =
            static_cast<std::size_t>(row) * static_cast<std::size_t>(cols) + static_cast<std::size_t>(col);
        return static_cast<std::uint8_t>(bytes.at(pixel * channels + (channels == 1 ? 0 : channel)));
    }
    std::string File() const {
        std::ostringstream file;
        file << (channels == 1 ? "P5\n" : "P6\n") << cols << ' ' << rows << "\n255\n" << bytes;
        return file.str();
    }
};

Picture ReadPicture(const std::string& file) {
    std::istringstream in(file);
    std::string kind;
    int largest = 0;
    Picture picture;
    in >> kind >> picture.cols >> picture.rows >> largest;
    in.get();
    EXPECT_EQ(largest, 255) << file.substr(0, 20);
    picture.channels = kind == "P5" ? 1 : 3;
    picture.bytes = file.substr(static_cast<std::size_t>(in.tellg()));
    return picture;
}

class OtherPrograms : public testing::Test {
  protected:
    void SetUp() override {
        if (std::system("command -v bmptopnm ppmtobmp >/dev/null 2>&1") != 0)
            GTEST_SKIP() << "Netpbm is not installed";
    }
    /// What the program makes of the file.
    Picture Read() const {
        const std::string command = "bmptopnm -quiet " + std::string(bmp.c_str()) + " >" + pnm.c_str();
        EXPECT_EQ(std::system(command.c_str()), 0);
        return ReadPicture(pnm.Bytes());
    }
    void Write(const Picture& picture, const std::string& options) const {
        std::ofstream(pnm.c_str(), std::ios::binary) << picture.File();
        const std::string command =
            "ppmtobmp -quiet " + options + " " + pnm.c_str() + " >" + std::string(bmp.c_str());
        EXPECT_EQ(std::system(command.c_str()), 0);
    }

    const TempName bmp{"tq_other.bmp"};
    const TempName pnm{"tq_other.pnm"};
};

TEST_F(OtherPrograms, ReadWhatIsWrittenHere) {
    for (const std::int32_t cols : {1, 2, 3, 4, 37}) {
        for (const std::int32_t palette : {0, -1, 2, 5}) {
            Image image = RandomImage(cols, 9, 7);
            Bitmap shown;
            double scale = 0.0;
            ASSERT_EQ(tqImageToLeadBmp(&shown, &scale, image, palette, 1.0), 0);
            ASSERT_EQ(tqImageToDiskBmp(bmp.c_str(), image, palette), 0);
            const Picture picture = Read();
            ASSERT_EQ(picture.cols, cols);
            ASSERT_EQ(picture.rows, 9);
            for (std::int32_t row = 0; row < 9; ++row) {
                for (std::int32_t col = 0; col < cols; ++col) {
                    const int entry = shown.At(col, row);
                    for (std::size_t k = 0; k < 3; ++k)  // a palette has blue first
                        ASSERT_EQ(
                            picture.At(col, row, 2 - k),
                            palette == 0 ? entry : shown.palette[4 * static_cast<std::size_t>(entry) + k])
                            << palette << ": " << col << ", " << row;
                }
            }
        }
        Image red = RandomImage(cols, 9, 8);
        Image blue = RandomImage(cols, 9, 9);
        Bitmap colours;
        ASSERT_EQ(tqCombineImagesRGB(&colours, red, nullptr, blue, 1, 1, 1, 0, 1, 1.0), 0);
        ASSERT_EQ(tqLeadBmpToDiskBmp(bmp.c_str(), &colours), 0);
        const Picture picture = Read();
        ASSERT_EQ(picture.cols, cols);
        ASSERT_EQ(picture.channels, 3u);
        for (std::int32_t row = 0; row < 9; ++row) {
            for (std::int32_t col = 0; col < cols; ++col)
                for (std::int32_t k = 0; k < 3; ++k)
                    ASSERT_EQ(picture.At(col, row, static_cast<std::size_t>(2 - k)),
                              colours.At(3 * col + k, row));
        }
    }
}

TEST_F(OtherPrograms, WriteWhatIsReadHere) {
    // As many greys as the depth has, and colours of which the blue channel tells the grey.
    struct Case {
        const char* options;
        int greys;
        std::size_t channels;
    };
    for (const Case& c :
         {Case{"-bpp=1 -windows", 2, 1}, Case{"-bpp=4 -windows", 16, 1}, Case{"-bpp=8 -os2", 256, 1},
          Case{"-bpp=8 -windows", 256, 1}, Case{"-bpp=24 -windows", 256, 3}, Case{"-bpp=24 -os2", 256, 3}}) {
        for (const std::int32_t cols : {1, 5, 8, 33}) {
            SCOPED_TRACE(testing::Message() << c.options << ", " << cols << " columns");
            Picture picture{cols, 7, c.channels, {}};
            for (std::int32_t i = 0; i < 7 * cols; ++i)
                picture.bytes.append(c.channels, static_cast<char>(37 * i % c.greys * (255 / (c.greys - 1))));
            Write(picture, c.options);
            const TqImageHeader info = DefaultHeader(1, 1);
            Image x, y, z;
            ASSERT_EQ(tq24bitColorBitmapToImage(bmp.c_str(), &info, x.Address(), y.Address(), z.Address()),
                      0);
            Image image;
            ASSERT_EQ(tqDiskBmpToImage(bmp.c_str(), &info, image.Address()), 0);
            ASSERT_EQ(image.Cols(), cols);
            ASSERT_EQ(image.Rows(), 7);
            for (std::int32_t row = 0; row < 7; ++row) {
                for (std::int32_t col = 0; col < cols; ++col) {
                    const int grey = picture.At(col, row, 0);
                    if (c.channels == 3) {
                        ASSERT_EQ(image(col, row), grey) << col << ", " << row;
                    }
                    const double value = grey / 255.0;
                    const double light =
                        value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
                    ASSERT_NEAR(y(col, row), 10000.0 * light, 1.0) << col << ", " << row;
                }
            }
        }
    }
}

}  // namespace
#endif
