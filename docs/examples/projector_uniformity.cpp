// The white field of a projector on a screen: ANSI lumens, ANSI uniformity, contrast and the most visible
// blemish. The field is computed: 420 lx in the middle, 35 % less in the corners, with one faint spot.
#include <tqimage/tqimage.h>

#include <cstdio>
#include <stdexcept>
#include <string>

// [owner]
// An image block with an owner. The library takes the address of the host's pointer wherever it replaces a
// block, so the owner gives that out.
class Image {
  public:
    Image() = default;
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;
    ~Image() {
        if (block_) tqImageFree(&block_);
    }
    TqImage* get() const { return block_; }
    TqImage** address() { return &block_; }

  private:
    TqImage* block_ = nullptr;
};

// A negative status is a failure; which one, the declaration of the function says.
static void Require(const char* what, int status) {
    if (status < 0) throw std::runtime_error(std::string(what) + ": " + std::to_string(status));
}
// [owner]

static constexpr int kCols = 960, kRows = 720;                                   // the picture of the camera
static constexpr int kLeft = 80, kTop = 60, kFieldCols = 800, kFieldRows = 600;  // the field in it

static double Lux(int col, int row) {
    const double x = (col - kLeft - (kFieldCols - 1) / 2.0) / (kFieldCols / 2.0);
    const double y = (row - kTop - (kFieldRows - 1) / 2.0) / (kFieldRows / 2.0);
    if (x < -1 || x > 1 || y < -1 || y > 1) return 1.5;  // the dark room around the field
    const double dx = col - 600, dy = row - 250;         // a darker spot of 12 pels radius
    const double spot = dx * dx + dy * dy <= 144 ? 0.97 : 1;
    return 420 * (1 - 0.35 * (x * x + y * y) / 2) * spot;
}

static void Capture(Image& image) {
    uint16_t* pels = nullptr;
    Require("image", tqCreateImageA(image.address(), nullptr, &pels, kCols, kRows));
    TqImageHeader header;
    tqGetImageInfo(&header, image.get());
    header.PelsPerMeterX = header.PelsPerMeterY = 400;  // the field measures 2 m x 1.5 m
    header.LuxPerGrey = 0.01f;
    header.CenterCol = (kCols - 1) / 2.0f;
    header.CenterRow = (kRows - 1) / 2.0f;
    tqSetImageInfo(image.get(), &header);
    for (int row = 0; row < kRows; ++row)
        for (int col = 0; col < kCols; ++col)
            *pels++ = static_cast<uint16_t>(Lux(col, row) / 0.01 + 0.5);
}

static void Measure() {
    Image image;
    Capture(image);

    // [field]
    int32_t left, top, right, bottom;
    Require("field", tqCalcLampClipRange(image.get(), 10000, &left, &top, &right, &bottom));
    // The range reaches one pel beyond the field on each side.
    Require("cut", tqFrameUpImg0(image.address(), left + 1, top + 1, right - 1, bottom - 1));
    // [field]
    std::printf("field                 %d x %d pels\n", static_cast<int>(tqGetPelCols(image.get())),
                static_cast<int>(tqGetPelRows(image.get())));

    // [ansi]
    const int spot = 60;  // pels: 15 cm on the screen
    const double lumen = tqCalcANSILumens(image.get(), 1, spot, spot);
    double brightest, darkest;
    Require("uniformity", tqCalcANSIUniformity(image.get(), &brightest, &darkest, 1, spot, spot));
    // [ansi]
    std::printf("ANSI lumens           %.1f lm\n", lumen);
    std::printf("ANSI uniformity       %+.2f %% and %+.2f %%\n", brightest, darkest);

    // [contrast]
    const double maximum = tqGetMaxPelValueInRegion(image.get(), 0, 0, 0, 0);
    const double minimum = tqGetMinPelValueInRegion(image.get(), 0, 0, 0, 0);
    // [contrast]
    std::printf("brightest to darkest  %.2f : 1\n", maximum / minimum);

    // [semu]
    Image deviation, local;
    Require("deviation", tqCalcImageDevInRegion(deviation.address(), image.get(), 0, 0, 0, 0));
    Require("surroundings", tqCalcLocalLumDiff(local.address(), deviation.get(), 5, 5, 101, 101));
    // A hundredth of the mean, in grey levels of this image.
    const int threshold = static_cast<int>(0.01 / tqGetLuxPerGrey(local.get()));
    double contrast, area;
    const double semu = tqCalcSemu(local.get(), threshold, &contrast, &area);
    // [semu]
    std::printf("most visible blemish  %.2f %%, %.0f mm^2, %.2f SEMU\n", contrast, area, semu);
}

int main() {
    try {
        Measure();
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
    return 0;
}
