#include <cctype>
#include <optional>

#include "failure.h"
#include "files.h"
#include "image_file.h"
#include "text.h"

namespace cli {
namespace {

/// Walks the words of a PGM file: numbers between blanks, comments from # to the end of the line.
class PgmText {
  public:
    explicit PgmText(std::string_view bytes) : bytes_(bytes) {}

    /// The next number; none at the end, at anything else, and beyond what a header can mean.
    std::optional<std::int64_t> Number() {
        SkipBlanks();
        std::int64_t value = 0;
        const std::size_t start = at_;
        while (at_ < bytes_.size() && std::isdigit(static_cast<unsigned char>(bytes_[at_]))) {
            value = value * 10 + (bytes_[at_++] - '0');
            if (value > 1'000'000'000) return std::nullopt;
        }
        return at_ > start ? std::optional(value) : std::nullopt;
    }
    /// The bytes after the single blank that closes the header.
    std::string_view Raster() const { return at_ < bytes_.size() ? bytes_.substr(at_ + 1) : ""; }
    bool AtEnd() {
        SkipBlanks();
        return at_ == bytes_.size();
    }

  private:
    void SkipBlanks() {
        while (at_ < bytes_.size()) {
            if (bytes_[at_] == '#') {
                while (at_ < bytes_.size() && bytes_[at_] != '\n')
                    ++at_;
            } else if (std::isspace(static_cast<unsigned char>(bytes_[at_]))) {
                ++at_;
            } else {
                return;
            }
        }
    }

    std::string_view bytes_;
    std::size_t at_ = 0;
};

constexpr char kCut[] = "damaged PGM file (it ends before the last pel)";
constexpr char kTooBright[] = "damaged PGM file (a pel above the stated maximum)";

void ReadBinary(const std::string& path, std::string_view raster, std::int64_t maximum, GreyImage& image) {
    const std::size_t size = maximum > 255 ? 2 : 1;
    if (raster.size() < image.pels.size() * size) FailFile(path, kCut);
    const auto* byte = reinterpret_cast<const std::uint8_t*>(raster.data());
    for (std::uint16_t& pel : image.pels) {
        // Two bytes hold the high one first.
        pel = size == 1 ? byte[0] : static_cast<std::uint16_t>(byte[0] << 8 | byte[1]);
        byte += size;
        if (pel > maximum) FailFile(path, kTooBright);
    }
    if (!Trim(raster.substr(image.pels.size() * size)).empty()) {
        FailFile(path, "holds more than one image");
    }
}

void ReadPlain(const std::string& path, PgmText& text, std::int64_t maximum, GreyImage& image) {
    for (std::uint16_t& pel : image.pels) {
        const auto value = text.Number();
        if (!value) FailFile(path, text.AtEnd() ? kCut : "damaged PGM file (not a number)");
        if (*value > maximum) FailFile(path, kTooBright);
        pel = static_cast<std::uint16_t>(*value);
    }
    if (!text.AtEnd()) FailFile(path, "damaged PGM file (more pels than its size)");
}

}  // namespace

GreyImage ReadPgm(const std::string& path) {
    const std::string bytes = ReadFile(path);
    const bool plain = bytes.size() > 1 && bytes[1] == '2';
    PgmText text(std::string_view(bytes).substr(std::min<std::size_t>(2, bytes.size())));
    const auto cols = text.Number();
    const auto rows = text.Number();
    const auto maximum = text.Number();
    if (!cols || !rows || !maximum) FailFile(path, "damaged PGM file (its header is incomplete)");
    if (*maximum < 1 || *maximum > 65535) FailFile(path, "damaged PGM file (its maximum is not 1..65535)");
    GreyImage image = MakeGreyImage(path, *cols, *rows, *maximum > 255 ? 16 : 8);
    if (plain) {
        ReadPlain(path, text, *maximum, image);
    } else {
        ReadBinary(path, text.Raster(), *maximum, image);
    }
    return image;
}

void WritePgm(const std::string& name, const std::string& file, const GreyImage& image) {
    std::string bytes = Format("P5\n%d %d\n65535\n", image.cols, image.rows);
    bytes.reserve(bytes.size() + image.pels.size() * 2);
    for (const std::uint16_t pel : image.pels) {
        bytes.push_back(static_cast<char>(pel >> 8));
        bytes.push_back(static_cast<char>(pel & 0xff));
    }
    WriteBytes(name, file, bytes);
}

}  // namespace cli
