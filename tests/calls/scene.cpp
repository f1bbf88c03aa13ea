#include "scene.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <span>

namespace tqtest {
namespace {

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();

bool Has(std::string_view name, std::initializer_list<std::string_view> parts) {
    return std::any_of(parts.begin(), parts.end(),
                       [&](std::string_view part) { return name.find(part) != std::string_view::npos; });
}

std::uint16_t* PelsOf(TqImage* image) {
    return reinterpret_cast<std::uint16_t*>(reinterpret_cast<TqImageHeader*>(image) + 1);
}

/// Fills an image in one of the styles that tell functions apart: noise, few levels, holes, smooth light,
/// blobs on black, the ends of the range.
void Paint(std::uint16_t* pels, std::int32_t cols, std::int32_t rows, std::int32_t style,
           std::uint32_t seed) {
    Draw noise(seed);
    const auto count = static_cast<std::size_t>(cols) * static_cast<std::size_t>(rows);
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t bits = noise.Any();
        const auto col = static_cast<std::uint32_t>(i % static_cast<std::size_t>(cols));
        const auto row = static_cast<std::uint32_t>(i / static_cast<std::size_t>(cols));
        std::uint32_t value = 0;
        switch (style) {
            case 0:
                value = bits;
                break;
            case 1:
                value = 1000 * (bits % 7);
                break;
            case 2:
                value = bits % 4 == 0 ? 0 : bits >> 8;
                break;
            case 3:
                value = 20000 + 300 * col + 170 * row + bits % 64;
                break;
            case 4:
                value = (col / 5 + row / 4) % 3 == 0 ? 30000 + bits % 5000 : 0;
                break;
            case 5:
                value = bits % 3 == 0 ? 65535 : bits % 3 == 1 ? 1 : 32768;
                break;
            default:
                value = 12000;
                break;
        }
        pels[i] = static_cast<std::uint16_t>(value);
    }
}

}  // namespace

Scene::Scene(Draw& draw, std::int32_t largest) : draw_(draw), largest_(largest) {
    cols_ = draw.Between(1, draw.OneIn(4) ? 5 : largest_);
    rows_ = draw.Between(1, draw.OneIn(4) ? 5 : largest_);
    const std::int32_t style = draw.Between(0, 6);
    for (TqImage*& image : images_) {
        const bool other = draw.OneIn(12);
        image =
            MakeImage(other ? draw.Between(1, largest_) : cols_, other ? draw.Between(1, largest_) : rows_);
        const auto* header = reinterpret_cast<const TqImageHeader*>(image);
        Paint(PelsOf(image), header->PelCols, header->PelRows, draw.OneIn(5) ? draw.Between(0, 6) : style,
              draw.Any());
    }
    // A header that no image has. Only smaller, so that no size reaches beyond the block.
    if (draw.OneIn(40)) reinterpret_cast<TqImageHeader*>(images_[0])->PelCols = draw.Between(-1, 0);
}

Scene::Scene(Draw& draw, const Scene& lender)
    : draw_(draw),
      largest_(lender.largest_),
      cols_(lender.cols_),
      rows_(lender.rows_),
      images_(lender.images_),
      lent_(kImages / 2) {
    for (std::size_t i = lent_; i < kImages; ++i)
        images_.at(i) = MakeImage(cols_, rows_);
}

Scene::~Scene() {
    for (TqImage*& image : std::span(images_).subspan(lent_))
        if (image != nullptr) tqImageFree(&image);
}

TqImageHeader Scene::DrawHeader(std::int32_t cols, std::int32_t rows) {
    TqImageHeader header{};
    header.PelCols = cols;
    header.PelRows = rows;
    const float resolution = static_cast<float>(draw_.OneIn(3) ? draw_.Between(-10, 5000) : 1000);
    header.PelsPerMeterX = header.PelsPerMeterY = resolution;
    if (draw_.OneIn(6)) header.PelsPerMeterY = static_cast<float>(DrawReal("resolution"));
    const bool isCentred = draw_.OneIn(2);
    header.CenterCol = static_cast<float>(isCentred ? cols - 1 : draw_.Between(-2, 2 * cols)) * 0.5f;
    header.CenterRow = static_cast<float>(isCentred ? rows - 1 : draw_.Between(-2, 2 * rows)) * 0.5f;
    header.LuxPerGrey = draw_.OneIn(3) ? static_cast<float>(DrawReal("scale")) : 0.01f;
    header.MaxPelValue = draw_.OneIn(3) ? static_cast<float>(draw_.Between(0, 70000)) : 65535.0f;
    header.CenterPelValue = static_cast<float>(draw_.Between(0, 65535));
    header.SourceDistance = draw_.OneIn(4) ? static_cast<float>(DrawReal("distance")) : 2.0f;
    header.BinCols = static_cast<std::int16_t>(draw_.OneIn(5) ? draw_.Between(-1, 4) : 1);
    header.BinRows = static_cast<std::int16_t>(draw_.OneIn(5) ? draw_.Between(-1, 4) : header.BinCols);
    header.Spare = draw_.Any();
    return header;
}

TqImage* Scene::MakeImage(std::int32_t cols, std::int32_t rows) {
    const TqImageHeader header = DrawHeader(cols, rows);
    TqImage* image = nullptr;
    tqCreateImage(&header, &image);
    std::memset(PelsOf(image), 0, 2 * static_cast<std::size_t>(cols) * static_cast<std::size_t>(rows));
    return image;
}

TqDistortionMap* Scene::MakeMap() {
    const std::int32_t most = draw_.OneIn(2) ? 3 : 0;
    TqImageHeader info = DrawHeader(cols_ + draw_.Between(0, most), rows_ + draw_.Between(0, most));
    TqDistortionMap* map = nullptr;
    tqCreateDistortionImage(&map, &info);
    if (map == nullptr) return nullptr;
    auto* entry = reinterpret_cast<float*>(map + 1);
    Draw noise(draw_.Any());
    for (std::int32_t row = 0; row < map->Rows; ++row) {
        for (std::int32_t col = 0; col < map->Cols; ++col, entry += 2) {
            const float shift = static_cast<float>(noise.Between(-64, 64)) / 32.0f;
            entry[0] = static_cast<float>(col) * 0.97f + shift;
            entry[1] = static_cast<float>(row) * 1.02f - shift;
            if (noise.OneIn(60)) entry[0] = static_cast<float>(DrawReal("entry"));
        }
    }
    return map;
}

TqImage* Scene::AnyImage(Checking checking) {
    if (checking == Checking::kUnchecked) {
        for (TqImage*& image : std::span(images_).subspan(lent_))  // what an earlier call has freed or spoilt
            if (image == nullptr || reinterpret_cast<TqImageHeader*>(image)->PelCols < 1) {
                if (image != nullptr) tqImageFree(&image);
                image = MakeImage(cols_, rows_);
            }
    } else if (draw_.OneIn(40)) {
        return nullptr;
    }
    return images_.at(static_cast<std::size_t>(draw_.Between(0, kImages - 1)));
}

TqImage** Scene::AnySlot() {
    return &images_.at(static_cast<std::size_t>(draw_.Between(static_cast<int>(lent_), kImages - 1)));
}

std::int32_t Scene::DrawInt(std::string_view name, Checking checking) {
    // A count of what the host passes behind a pointer: no function can know that it is wrong.
    if (name == "count") return draw_.Between(-1, 60);
    if (checking == Checking::kChecked && draw_.OneIn(30)) {
        return draw_.OneOf({kLeast, kLeast + 1, -65536, -2, -1, 0, 65535, 65536, kMost - 1, kMost});
    }
    // What lies around a block is larger than it.
    if (Has(name, {"outer", "around"})) return draw_.Between(draw_.OneIn(6) ? -1 : 5, 15);
    if (Has(name, {"binCols", "binRows"})) return draw_.OneIn(4) ? draw_.Between(-3, 5) : draw_.Between(1, 2);
    if (name == "ceiling" && draw_.OneIn(2)) return 0;
    if (Has(name, {"block", "window", "inner", "ref", "detect", "average", "radius", "width", "height", "win",
                   "depth", "gap", "distance", "frame", "step"})) {
        return draw_.OneIn(10) ? draw_.Between(-1, largest_) : draw_.Between(1, 9);
    }
    if (Has(name, {"Mode",    "order",     "kind",   "method",     "mode",     "palette", "shape",
                   "kernel",  "direction", "mirror", "ellipse",    "quantity", "passes",  "use",
                   "ompress", "type",      "space",  "projection", "divisor",  "gamut",   "equal"})) {
        return draw_.Between(draw_.OneIn(8) ? -3 : 0, 5);
    }
    if (Has(name, {"newCols", "newRows", "size"}) || name == "cols" || name == "rows") {
        return draw_.OneIn(8) ? draw_.OneOf({-1, 0, 1}) : draw_.Between(1, largest_);
    }
    if (Has(name, {"left", "col", "Col", "right"})) {
        if (draw_.OneIn(4)) return 0;
        const bool second = Has(name, {"right", "col2", "last"});
        return draw_.OneIn(8) ? draw_.Between(-3, cols_ + 3)
                              : draw_.Between(second ? cols_ / 2 : 0, second ? cols_ : cols_ / 2);
    }
    if (Has(name, {"top", "row", "Row", "bottom"})) {
        if (draw_.OneIn(4)) return 0;
        const bool second = Has(name, {"bottom", "row2", "last"});
        return draw_.OneIn(8) ? draw_.Between(-3, rows_ + 3)
                              : draw_.Between(second ? rows_ / 2 : 0, second ? rows_ : rows_ / 2);
    }
    if (Has(name, {"levels", "bins", "zones", "rings", "spokes", "margin", "steps", "countX", "countY"})) {
        return draw_.Between(-1, 40);
    }
    return draw_.OneIn(2) ? draw_.Between(0, 65535) : draw_.Between(0, 2000);
}

double Scene::DrawReal(std::string_view name) {
    if (name.size() == 2 && name[0] == 'm') {  // a colour matrix near the unit matrix
        const bool diagonal = (name[1] - '0') % 4 == 0;
        return draw_.OneIn(50) ? 1e30 : (diagonal ? 1.0 : 0.0) + 0.3 * draw_.Fraction();
    }
    if (draw_.OneIn(30)) {
        constexpr double kInfinity = std::numeric_limits<double>::infinity();
        return draw_.OneOf({kInfinity, -kInfinity, std::nan(""), 1e300, -1e30, 1e-30, -0.0, 0.0});
    }
    if (Has(name, {"threshold", "low", "high", "level", "luminance"})) return 65535.0 * draw_.Fraction();
    if (Has(name, {"ngle", "degrees"})) {
        return draw_.OneIn(3) ? 400.0 * draw_.Fraction() - 200.0 : 90.0 * draw_.Fraction();
    }
    if (Has(name, {"offset"})) return 0.02 * draw_.Fraction() - 0.01;  // a few pels at 1000 pels a metre
    if (Has(name, {"percent", "Percent", "row", "col", "Row", "Col"})) return 50.0 * draw_.Fraction();
    return draw_.OneIn(3) ? static_cast<double>(draw_.Between(-2, 3)) : 3.0 * draw_.Fraction();
}

void Scene::Add(Fingerprint& print) const {
    for (const TqImage* image : images_)
        AddImage(print, image);
}

void AddImage(Fingerprint& print, const TqImage* image) {
    if (image == nullptr) return print.Add(-1);
    TqImageHeader header;
    std::memcpy(&header, image, sizeof header);
    AddHeader(print, header);
    if (header.PelCols < 1 || header.PelRows < 1) return;
    print.Add(reinterpret_cast<const TqImageHeader*>(image) + 1,
              2 * static_cast<std::size_t>(header.PelCols) * static_cast<std::size_t>(header.PelRows));
}

void AddHeader(Fingerprint& print, const TqImageHeader& header) {
    print.Add(header.PelCols);
    print.Add(header.PelRows);
    for (const float field :
         {header.PelsPerMeterX, header.PelsPerMeterY, header.CenterCol, header.CenterRow, header.LuxPerGrey,
          header.CenterPelValue, header.MaxPelValue, header.SourceDistance})
        print.Add(field);
    print.Add(header.TotalPelValue);
    print.Add(header.BinCols);
    print.Add(header.BinRows);
    print.Add(header.Spare);
}

void AddMap(Fingerprint& print, const TqDistortionMap* map) {
    if (map == nullptr) return print.Add(-1);
    print.Add(map->Cols);
    print.Add(map->Rows);
    print.Add(map->CenterCol);
    print.Add(map->CenterRow);
    const auto* entry = reinterpret_cast<const float*>(map + 1);
    for (std::size_t i = 0; i < 2u * map->Cols * map->Rows; ++i)
        print.Add(entry[i]);
}

}  // namespace tqtest
