#include <png.h>

#include <bit>
#include <csetjmp>
#include <cstdio>
#include <new>
#include <utility>

#include "failure.h"
#include "files.h"
#include "image_file.h"
#include "text.h"

namespace cli {
namespace {

// libpng leaves a failed call through longjmp, which runs no destructors. So every function that calls it
// under setjmp holds plain pointers only, and hands the reason on in this buffer.
struct Reason {
    char text[160] = "";
};

void OnError(png_structp png, png_const_charp message) {
    auto* const reason = static_cast<Reason*>(png_get_error_ptr(png));
    std::snprintf(reason->text, sizeof reason->text, "%s", message);
    std::longjmp(*png_set_longjmp_fn(png, std::longjmp, sizeof(jmp_buf)), 1);
}
void OnWarning(png_structp, png_const_charp) {}

struct PngReader {
    Reason reason;
    png_structp png = nullptr;
    png_infop info = nullptr;

    PngReader() {
        png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &reason, OnError, OnWarning);
        if (png) info = png_create_info_struct(png);
        if (!info) throw std::bad_alloc();
    }
    ~PngReader() { png_destroy_read_struct(&png, &info, nullptr); }
};

struct PngWriter {
    Reason reason;
    png_structp png = nullptr;
    png_infop info = nullptr;

    PngWriter() {
        png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &reason, OnError, OnWarning);
        if (png) info = png_create_info_struct(png);
        if (!info) throw std::bad_alloc();
    }
    ~PngWriter() { png_destroy_write_struct(&png, &info); }
};

bool ReadHead(png_structp png, png_infop info, std::FILE* file) {
    if (setjmp(png_jmpbuf(png))) return false;
    png_init_io(png, file);
    png_read_info(png, info);
    return true;
}

bool ReadRows(png_structp png, png_infop info, png_bytepp rows) {
    if (setjmp(png_jmpbuf(png))) return false;
    // PNG stores the high byte first.
    if (std::endian::native == std::endian::little) png_set_swap(png);
    png_set_interlace_handling(png);
    png_read_update_info(png, info);
    png_read_image(png, rows);
    // The closing chunk tells a whole file from one that was cut after its last row.
    png_read_end(png, nullptr);
    return true;
}

bool WriteAll(png_structp png, png_infop info, std::FILE* file, const Raster& image, png_bytepp rows) {
    if (setjmp(png_jmpbuf(png))) return false;
    png_init_io(png, file);
    png_set_IHDR(png, info, static_cast<png_uint_32>(image.cols), static_cast<png_uint_32>(image.rows),
                 image.bitsPerSample, image.samples == 1 ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_BASE, PNG_FILTER_TYPE_BASE);
    // Noise does not compress; the fastest level already finds what there is to find.
    png_set_compression_level(png, 1);
    png_write_info(png, info);
    if (std::endian::native == std::endian::little) png_set_swap(png);  // of 16 bits only
    png_write_image(png, rows);
    png_write_end(png, info);
    return true;
}

void CheckForm(const std::string& path, png_structp png, png_infop info) {
    switch (png_get_color_type(png, info)) {
        case PNG_COLOR_TYPE_GRAY:
            break;
        case PNG_COLOR_TYPE_PALETTE:
            FailFile(path, "a palette image; a grey one is needed");
        case PNG_COLOR_TYPE_GRAY_ALPHA:
            FailFile(path, "has an alpha channel; a plain grey image is needed");
        default:
            FailFile(path, "a colour image; a grey one is needed");
    }
    if (png_get_valid(png, info, PNG_INFO_tRNS)) {
        FailFile(path, "has a transparent grey level; a plain grey image is needed");
    }
    const int bits = png_get_bit_depth(png, info);
    if (bits != 8 && bits != 16) FailFile(path, Format("%d bits a pel; 8 or 16 are needed", bits));
}

}  // namespace

GreyImage ReadPng(const std::string& path) {
    const Stream file = OpenStream(path, path, "rb");
    PngReader reader;
    if (!ReadHead(reader.png, reader.info, file.get())) {
        FailFile(path, Format("damaged PNG file (%s)", reader.reason.text));
    }
    CheckForm(path, reader.png, reader.info);
    const int bits = png_get_bit_depth(reader.png, reader.info);
    GreyImage image = MakeGreyImage(path, png_get_image_width(reader.png, reader.info),
                                    png_get_image_height(reader.png, reader.info), bits);

    const std::size_t rowBytes = static_cast<std::size_t>(image.cols) * (bits == 16 ? 2 : 1);
    std::vector<std::uint8_t> bytes(bits == 8 ? image.pels.size() : 0);
    auto* const target = bits == 8 ? bytes.data() : reinterpret_cast<std::uint8_t*>(image.pels.data());
    std::vector<png_bytep> rows(static_cast<std::size_t>(image.rows));
    for (std::size_t row = 0; row < rows.size(); ++row)
        rows[row] = target + row * rowBytes;
    if (!ReadRows(reader.png, reader.info, rows.data())) {
        FailFile(path, Format("damaged PNG file (%s)", reader.reason.text));
    }
    if (bits == 8) image.pels.assign(bytes.begin(), bytes.end());
    return image;
}

void WritePng(const std::string& name, const std::string& file, const Raster& image) {
    Stream stream = OpenStream(name, file, "wb");
    PngWriter writer;
    std::vector<png_bytep> rows;
    for (std::int32_t row = 0; row < image.rows; ++row)
        rows.push_back(image.Row(row));
    if (!WriteAll(writer.png, writer.info, stream.get(), image, rows.data())) {
        FailFile(name, Format("cannot be written (%s)", writer.reason.text));
    }
    Close(name, std::move(stream));
}

}  // namespace cli
