#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "automation_host.h"
#include "bitmaps.h"
#include "images.h"
#include "temp_file.h"
#include "tqimage/bitmap_files.h"
#include "tqimage/colour_bitmap.h"

namespace tqtest {
namespace {

/// The bytes of a handle, which is released.
std::string TakeBytes(void* handle) {
    const std::string bytes(static_cast<const char*>(GlobalLock(handle)), GlobalSize(handle));
    GlobalUnlock(handle);
    EXPECT_EQ(GlobalFree(handle), nullptr);
    return bytes;
}

TEST(Dib, IsTheFileWithoutItsFileHeader) {
    const TempName name("tq_dib.bmp");
    // Systems may round the size of the memory up.
    const auto expectFile = [&](void* dib) {
        const std::string file = name.Bytes().substr(14);
        EXPECT_EQ(TakeBytes(dib).substr(0, file.size()), file);
    };
    for (const std::int32_t cols : {1, 4, 7}) {
        Image image = RandomImageWithHoles(cols, 3, 5);
        void* dib = nullptr;
        for (const std::int32_t palette : {0, 2, 6}) {
            ASSERT_EQ(tqImageToDiskBmp(name.c_str(), image, palette), 0);
            ASSERT_EQ(tqImageToDIB(&dib, image, palette), 0);
            expectFile(dib);
        }
        Bitmap bitmap;
        ASSERT_EQ(tqCombineImagesRGB(&bitmap, image, nullptr, image, 1, 1, 0.5f, 0, 1, 2.0), 0);
        ASSERT_EQ(tqLeadBmpToDiskBmp(name.c_str(), &bitmap), 0);
        ASSERT_EQ(tqCombineImagesRGBtoDIB(&dib, image, nullptr, image, 1, 1, 0.5f, 0, 1, 2.0), 0);
        expectFile(dib);
    }
    Image image(3, 3);
    void* none = nullptr;
    EXPECT_EQ(tqImageToDIB(&none, nullptr, 1), -2);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(tqImageToDIB(nullptr, image, 1), -1);
    EXPECT_EQ(tqBmpToClipBoard(nullptr, nullptr), -1);
}

#if defined(_WIN32)
/// The clipboard needs a window that owns what lies on it.
struct Owner {
    HWND window = CreateWindowA("STATIC", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    ~Owner() { DestroyWindow(window); }
};

TEST(BmpToClipBoard, AnotherReaderSeesThePicture) {
    const Owner owner;
    Image image = MakeImage(3, 2, {10, 20, 30, 40, 50, 255});
    image.Header().MaxPelValue = 255.0f;
    const Bitmap shown(image, 5, 1.0);
    for (int turn = 0; turn < 2; ++turn) {  // the second picture replaces the first
        void* dib = nullptr;
        ASSERT_EQ(tqImageToDIB(&dib, image, turn == 0 ? 3 : 5), 0);
        ASSERT_EQ(tqBmpToClipBoard(owner.window, dib), 0);
    }
    ASSERT_TRUE(OpenClipboard(nullptr));
    // The system makes a bitmap for the screen of the DIB, and so reads it on its own.
    const auto bitmap = static_cast<HBITMAP>(GetClipboardData(CF_BITMAP));
    BITMAP info{};
    ASSERT_NE(GetObjectA(bitmap, sizeof info, &info), 0);
    EXPECT_EQ(info.bmWidth, 3);
    EXPECT_EQ(info.bmHeight, 2);
    HDC screen = GetDC(nullptr);
    BITMAPINFO wanted{{sizeof(BITMAPINFOHEADER), 3, -2, 1, 32, BI_RGB, 0, 0, 0, 0, 0}, {}};
    std::uint32_t pixels[6]{};
    ASSERT_EQ(GetDIBits(screen, bitmap, 0, 2, pixels, &wanted, DIB_RGB_COLORS), 2);
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(pixels[i] & 0xFFFFFF, static_cast<std::uint32_t>(shown.At(i % 3, i / 3)))
            << "blue of " << i;
    ReleaseDC(nullptr, screen);
    EXPECT_TRUE(IsClipboardFormatAvailable(CF_DIB));
    EmptyClipboard();
    CloseClipboard();
}

TEST(ImageToDiskBmp, TheSystemReadsTheFile) {
    const TempName name("tq_system.bmp");
    Image image = RandomImage(37, 9, 4);
    const Bitmap shown(image, 5, 1.0);
    ASSERT_EQ(tqImageToDiskBmp(name.c_str(), image, 5), 0);
    const auto bitmap = static_cast<HBITMAP>(
        LoadImageA(nullptr, name.c_str(), IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE | LR_CREATEDIBSECTION));
    DIBSECTION section{};
    ASSERT_EQ(GetObjectA(bitmap, sizeof section, &section), static_cast<int>(sizeof section));
    ASSERT_EQ(section.dsBm.bmWidth, 37);
    ASSERT_EQ(section.dsBm.bmBitsPixel, 8);
    const auto* rows = static_cast<const std::uint8_t*>(section.dsBm.bmBits);
    for (std::int32_t row = 0; row < 9; ++row) {
        for (std::int32_t col = 0; col < 37; ++col)
            ASSERT_EQ(rows[(8 - row) * section.dsBm.bmWidthBytes + col], shown.At(col, row));
    }
    DeleteObject(bitmap);
}
#else
TEST(BmpToClipBoard, OwnsTheHandleUntilTheNextOneComes) {
    Image image(3, 3);
    void* first = nullptr;
    void* second = nullptr;
    ASSERT_EQ(tqImageToDIB(&first, image, 1), 0);
    ASSERT_EQ(tqImageToDIB(&second, image, 1), 0);
    EXPECT_EQ(tqBmpToClipBoard(nullptr, first), 0);
    EXPECT_EQ(tqBmpToClipBoard(nullptr, first), 0);
    EXPECT_NE(GlobalSize(first), 0u) << "the same handle again is no reason to free it";
    EXPECT_EQ(tqBmpToClipBoard(nullptr, second), 0);
    EXPECT_EQ(GlobalSize(first), 0u);
    EXPECT_NE(GlobalSize(second), 0u);
}
#endif

}  // namespace
}  // namespace tqtest
