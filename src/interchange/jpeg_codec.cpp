#include "interchange/jpeg_codec.h"

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstddef>
#include <cstdio>
#include <utility>

// Relies on <cstdio>.
#include <jerror.h>
#include <jpeglib.h>

#include "kernels/pel_arithmetic.h"

namespace tq {
namespace {

/// How libjpeg gives up. The way back leads through its own C frames only: whatever has a destructor lives
/// outside of what Attempt() calls.
struct WayBack {
    jpeg_error_mgr manager;
    std::jmp_buf place;
};

[[noreturn]] void GoBack(j_common_ptr codec) {
    std::longjmp(reinterpret_cast<WayBack*>(codec->err)->place, 1);
}

/// Warnings tell of damaged or missing data. A measurement with invented pels is worse than none, so they
/// count as failures; the rest is chatter.
void OnMessage(j_common_ptr codec, int level) {
    if (level < 0) GoBack(codec);
}

jpeg_error_mgr* Install(WayBack& back) {
    jpeg_std_error(&back.manager);
    back.manager.error_exit = GoBack;
    back.manager.emit_message = OnMessage;
    back.manager.output_message = [](j_common_ptr) {};
    return &back.manager;
}

/// False when libjpeg gave up in `call`.
template <class Call>
bool Attempt(WayBack& back, const Call& call) noexcept {
    if (setjmp(back.place) != 0) return false;
    call();
    return true;
}

/// The percentage by which the luminance table of the JPEG standard's annex K is scaled: 100 at quality 50.
int TableScale(std::int32_t quality) {
    constexpr std::array<std::int32_t, 9> kPresets = {2, 4, 8, 12, 20, 35, 60, 100, 160};
    constexpr std::int32_t kFinest = 2;
    const std::int32_t q =
        quality < 0 ? kPresets[static_cast<std::size_t>(-quality - 1)] : std::max(quality, kFinest);
    return 2 * q;
}

/// Where the encoder puts its bytes: a vector that doubles.
class Destination : public jpeg_destination_mgr {
  public:
    Destination() : jpeg_destination_mgr{}, bytes_(kFirstBytes) {
        init_destination = [](j_compress_ptr) {};
        empty_output_buffer = [](j_compress_ptr codec) -> boolean {
            if (!static_cast<Destination*>(codec->dest)->Grow()) ERREXIT1(codec, JERR_OUT_OF_MEMORY, 0);
            return TRUE;
        };
        term_destination = [](j_compress_ptr) {};
        Continue(0);
    }
    std::vector<std::uint8_t> Take() {
        bytes_.resize(bytes_.size() - free_in_buffer);
        return std::move(bytes_);
    }

  private:
    static constexpr std::size_t kFirstBytes = 65536;

    void Continue(std::size_t written) noexcept {
        next_output_byte = bytes_.data() + written;
        free_in_buffer = bytes_.size() - written;
    }
    /// Called when every byte is written. No exception may pass through libjpeg.
    bool Grow() noexcept {
        const std::size_t written = bytes_.size();
        try {
            bytes_.resize(2 * written);
        } catch (...) {
            return false;
        }
        Continue(written);
        return true;
    }

    std::vector<std::uint8_t> bytes_;
};

struct Encoder {
    Encoder() { codec.err = Install(back); }
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;
    ~Encoder() { jpeg_destroy_compress(&codec); }

    bool Start(const ConstImageView& image, int tableScale) noexcept {
        return Attempt(back, [&] {
            jpeg_create_compress(&codec);
            codec.dest = &destination;
            codec.image_width = static_cast<JDIMENSION>(image.cols);
            codec.image_height = static_cast<JDIMENSION>(image.rows);
            codec.input_components = 1;
            codec.in_color_space = JCS_GRAYSCALE;
            jpeg_set_defaults(&codec);
            // The exact transform: the faster ones differ from processor to processor.
            codec.dct_method = JDCT_ISLOW;
            jpeg_set_linear_quality(&codec, tableScale, TRUE);
            jpeg_start_compress(&codec, TRUE);
        });
    }
    bool WriteRow(std::uint8_t* bytes) noexcept {
        return Attempt(back, [&] { jpeg_write_scanlines(&codec, &bytes, 1); });
    }
    bool Finish() noexcept {
        return Attempt(back, [&] { jpeg_finish_compress(&codec); });
    }

    WayBack back{};
    jpeg_compress_struct codec{};
    Destination destination;
};

/// A progressive file tells its picture scan by scan. Encoders make about ten of them; thousands of empty
/// ones would keep a decoder busy for hours over a few kilobytes.
constexpr int kMostScans = 100;

void CountScans(j_common_ptr codec) {
    if (reinterpret_cast<j_decompress_ptr>(codec)->input_scan_number > kMostScans) GoBack(codec);
}

struct Decoder {
    Decoder() {
        codec.err = Install(back);
        progress.progress_monitor = CountScans;
    }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;
    ~Decoder() { jpeg_destroy_decompress(&codec); }

    bool ReadHeader(std::span<const std::uint8_t> file) noexcept {
        return Attempt(back, [&] {
            jpeg_create_decompress(&codec);
            codec.progress = &progress;
            jpeg_mem_src(&codec, file.data(), static_cast<unsigned long>(file.size()));
            jpeg_read_header(&codec, TRUE);
        });
    }
    bool IsGrey() const noexcept {
        return codec.num_components == 1 && codec.jpeg_color_space == JCS_GRAYSCALE;
    }
    bool Start() noexcept {
        return Attempt(back, [&] {
            codec.dct_method = JDCT_ISLOW;
            codec.do_block_smoothing = FALSE;
            jpeg_start_decompress(&codec);
        });
    }
    bool ReadRow(std::uint8_t* bytes) noexcept {
        return Attempt(back, [&] { jpeg_read_scanlines(&codec, &bytes, 1); });
    }
    /// Up to the mark at the file's end.
    bool Finish() noexcept {
        return Attempt(back, [&] { jpeg_finish_decompress(&codec); });
    }

    WayBack back{};
    jpeg_decompress_struct codec{};
    jpeg_progress_mgr progress{};
};

/// libjpeg's dimensions are unsigned and go up to 65500.
std::int32_t Side(JDIMENSION pels) noexcept {
    return static_cast<std::int32_t>(std::min<JDIMENSION>(pels, kMaxSide + 1));
}

}  // namespace

std::vector<std::uint8_t> EncodeJpeg(const ConstImageView& image, const std::vector<std::uint8_t>& tones,
                                     std::int32_t quality) {
    Encoder encoder;
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(image.cols));
    if (!encoder.Start(image, TableScale(quality))) return {};
    for (std::int32_t row = 0; row < image.rows; ++row) {
        kernels::LookUp(image.Row(row), tones.data(), bytes.data(), bytes.size());
        if (!encoder.WriteRow(bytes.data())) return {};
    }
    if (!encoder.Finish()) return {};
    return encoder.destination.Take();
}

std::optional<OwnedImage> DecodeJpeg(std::span<const std::uint8_t> file) {
    Decoder decoder;
    if (!decoder.ReadHeader(file) || !decoder.IsGrey()) return {};
    const std::int32_t cols = Side(decoder.codec.image_width);
    const std::int32_t rows = Side(decoder.codec.image_height);
    if (!IsValidSide(cols) || !IsValidSide(rows)) return {};
    OwnedImage image(cols, rows, NewPels::kUnwritten);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(cols));
    if (!decoder.Start()) return {};
    const ImageView view = image.View();
    for (std::int32_t row = 0; row < rows; ++row) {
        if (!decoder.ReadRow(bytes.data())) return {};
        std::copy(bytes.begin(), bytes.end(), view.Row(row));
    }
    if (!decoder.Finish()) return {};
    return image;
}

}  // namespace tq
