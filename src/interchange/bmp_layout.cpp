#include "interchange/bmp_layout.h"

#include <algorithm>
#include <bit>

#include "core/image_view.h"
#include "interchange/bitmap_object.h"

namespace tq {
namespace {

using File = std::span<const std::uint8_t>;

/// Sizes of the info headers: the first of OS/2, Windows 3, that with masks (two made by image editors), the
/// second of OS/2, Windows 95 and 98. Each later one begins with the fields of 40 bytes.
constexpr std::uint32_t kCoreHeader = 12;
constexpr std::uint32_t kInfoHeader = 40;
constexpr std::uint32_t kSecondOs2Header = 64;
constexpr std::uint32_t kInfoHeaders[] = {kInfoHeader, 52, 56, kSecondOs2Header, 108, 124};

enum Compression : std::uint32_t {
    kPlain = 0,
    kRunLengths8 = 1,
    kRunLengths4 = 2,
    kMasks = 3,
    kAlphaMasks = 6
};

/// Offsets into the file.
constexpr std::size_t kPixelOffset = 10;
constexpr std::size_t kInfo = kBmpFileHeaderBytes;
constexpr std::size_t kMaskOffset = kInfo + kInfoHeader;

struct Fields {
    std::uint32_t headerBytes = 0;
    std::int64_t width = 0;
    std::int64_t height = 0;
    std::uint32_t planes = 0;
    std::uint32_t bits = 0;
    std::uint32_t compression = kPlain;
    std::uint32_t colours = 0;

    bool IsCore() const noexcept { return headerBytes == kCoreHeader; }
    /// Masks follow the shortest header and are part of the longer ones.
    std::uint32_t HeadersEnd() const noexcept {
        const std::uint32_t end = kBmpFileHeaderBytes + headerBytes;
        if (headerBytes != kInfoHeader) return end;
        return end + (compression == kMasks ? 12 : compression == kAlphaMasks ? 16 : 0);
    }
};

std::int32_t GetSigned(File file, std::size_t at) noexcept {
    return static_cast<std::int32_t>(GetNumber(file, at, 4));
}

std::optional<Fields> ReadFields(File file) noexcept {
    if (file.size() < kBmpFileHeaderBytes + kCoreHeader || file[0] != 'B' || file[1] != 'M')
        return std::nullopt;
    Fields fields;
    fields.headerBytes = GetNumber(file, kInfo, 4);
    if (fields.IsCore()) {
        fields.width = GetNumber(file, kInfo + 4, 2);
        fields.height = GetNumber(file, kInfo + 6, 2);
        fields.planes = GetNumber(file, kInfo + 8, 2);
        fields.bits = GetNumber(file, kInfo + 10, 2);
        return fields;
    }
    const bool known = std::ranges::find(kInfoHeaders, fields.headerBytes) != std::end(kInfoHeaders);
    if (!known || file.size() < kBmpFileHeaderBytes + fields.headerBytes) return std::nullopt;
    fields.width = GetSigned(file, kInfo + 4);
    fields.height = GetSigned(file, kInfo + 8);
    fields.planes = GetNumber(file, kInfo + 12, 2);
    fields.bits = GetNumber(file, kInfo + 14, 2);
    fields.compression = GetNumber(file, kInfo + 16, 4);
    fields.colours = GetNumber(file, kInfo + 32, 4);
    return fields;
}

bool IsDepth(std::uint32_t bits) noexcept {
    return bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32;
}

/// A few run lengths may claim any size, so they must describe what an image can hold.
bool AreRunLengthsSound(const Fields& fields) noexcept {
    const bool fits = fields.width <= kMaxSide && fields.height >= 1 && fields.height <= kMaxSide;
    return fits && fields.bits == (fields.compression == kRunLengths8 ? 8u : 4u);
}

bool AreSound(const Fields& fields) noexcept {
    if (fields.width < 1 || fields.height == 0 || fields.planes != 1 || !IsDepth(fields.bits)) return false;
    switch (fields.compression) {
        case kPlain:
            return true;
        case kRunLengths8:
        case kRunLengths4:
            return AreRunLengthsSound(fields);
        case kMasks:
        case kAlphaMasks:
            // OS/2 gives these numbers to methods that no picture in the wild is packed with.
            return fields.headerBytes != kSecondOs2Header && (fields.bits == 16 || fields.bits == 32);
        default:
            return false;
    }
}

bool IsOneRun(std::uint32_t mask) noexcept {
    if (mask == 0) return true;
    const std::uint32_t run = mask >> std::countr_zero(mask);
    return (run & (run + 1)) == 0;
}

std::optional<std::array<ChannelBits, 3>> ReadChannels(File file, const Fields& fields) noexcept {
    std::array<std::uint32_t, 3> masks{0x1F, 0x3E0, 0x7C00};  // blue, green, red
    if (fields.bits == 32) masks = {0xFF, 0xFF00, 0xFF0000};
    if (fields.compression != kPlain) {
        for (std::size_t i = 0; i < 3; ++i)
            masks[i] = GetNumber(file, kMaskOffset + 4 * (2 - i), 4);
    }
    const auto [blue, green, red] = masks;
    const bool apart = ((blue & green) | (blue & red) | (green & red)) == 0;
    const bool inside = fields.bits == 32 || (blue | green | red) <= 0xFFFF;
    if (!apart || !inside || (blue | green | red) == 0) return std::nullopt;
    std::array<ChannelBits, 3> channels;
    for (std::size_t i = 0; i < 3; ++i) {
        if (!IsOneRun(masks[i])) return std::nullopt;
        channels[i] = {masks[i], masks[i] == 0 ? 0 : std::countr_zero(masks[i])};
    }
    return channels;
}

/// The colour table, which lies before the pixels. An OS/2 header does not say how many colours there are:
/// there, short tables are found in the wild.
std::optional<Palette> ReadColours(File file, const Fields& fields, std::size_t pixelStart) noexcept {
    const std::size_t start = fields.HeadersEnd();
    const std::size_t entryBytes = fields.IsCore() ? 3 : 4;
    const std::size_t room = (pixelStart - start) / entryBytes;
    std::size_t entries = std::size_t{1} << fields.bits;
    if (fields.colours != 0) entries = std::min<std::size_t>(entries, fields.colours);
    if (fields.IsCore()) entries = std::min(entries, room);
    if (entries > room) return std::nullopt;
    Palette colours{};
    for (std::size_t i = 0; i < entries; ++i) {
        const std::uint8_t* entry = file.data() + start + i * entryBytes;
        colours[i] = {entry[0], entry[1], entry[2], 0};
    }
    return colours;
}

}  // namespace

std::uint8_t ChannelBits::Of(std::uint32_t pixel) const noexcept {
    const std::uint64_t largest = mask >> shift;
    if (largest == 0) return 0;
    const std::uint64_t value = (pixel & mask) >> shift;
    return static_cast<std::uint8_t>((value * 255 + largest / 2) / largest);
}

std::size_t BmpLayout::RowBytes() const noexcept {
    return static_cast<std::size_t>(PaddedLine(width, bitsPerPixel));
}

std::uint32_t GetNumber(std::span<const std::uint8_t> bytes, std::size_t at, int size) noexcept {
    std::uint32_t value = 0;
    for (int i = size; i-- > 0;)
        value = value << 8 | bytes[at + static_cast<std::size_t>(i)];
    return value;
}

std::optional<BmpLayout> ParseBmp(std::span<const std::uint8_t> file) noexcept {
    const std::optional<Fields> fields = ReadFields(file);
    if (!fields || !AreSound(*fields)) return std::nullopt;
    const std::size_t start = GetNumber(file, kPixelOffset, 4);
    if (start < fields->HeadersEnd() || start > file.size()) return std::nullopt;

    BmpLayout layout;
    layout.topDown = fields->height < 0;
    const std::int64_t height = layout.topDown ? -fields->height : fields->height;
    layout.bitsPerPixel = fields->bits;
    layout.runLengths = fields->compression == kRunLengths8 || fields->compression == kRunLengths4;
    layout.pixels = file.subspan(start);
    const std::int64_t line = PaddedLine(fields->width, fields->bits);
    if (!layout.runLengths && static_cast<std::int64_t>(layout.pixels.size()) / line < height)
        return std::nullopt;
    layout.width = static_cast<std::int32_t>(fields->width);
    layout.height = static_cast<std::int32_t>(height);

    if (layout.HasPalette()) {
        const std::optional<Palette> colours = ReadColours(file, *fields, start);
        if (!colours) return std::nullopt;
        layout.colours = *colours;
    } else if (fields->bits != 24) {
        const auto channels = ReadChannels(file, *fields);
        if (!channels) return std::nullopt;
        layout.channels = *channels;
    }
    return layout;
}

}  // namespace tq
