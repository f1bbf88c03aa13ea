#pragma once

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "arguments.h"
#include "scratch_file.h"

namespace tqtest {

/// The name of a file to write, or the text of a palette.
template <>
class Argument<const char*> {
  public:
    Argument(Scene& scene, std::string_view name, Checking checking) {
        Draw& draw = scene.Choice();
        if (name != "paletteText") {
            file_.emplace();
        } else if (checking != Checking::kChecked || !draw.OneIn(20)) {
            // 4096 characters are a whole palette.
            text_.emplace(static_cast<std::size_t>(draw.Between(0, 4100)), ' ');
            Draw noise(draw.Any());
            for (char& character : *text_)
                character = noise.OneOf({' ', '0', '1', '2', '5', '9', 'x'});
        }
    }
    const char* Pass() { return file_ ? file_->Name() : text_ ? text_->c_str() : nullptr; }
    void Add(Fingerprint& print) {
        if (!file_) return;
        std::vector<std::uint8_t> bytes = file_->Bytes();
        // Text has the line ends of its system.
        bytes.erase(std::remove(bytes.begin(), bytes.end(), '\r'), bytes.end());
        print.Add(file_->Exists());
        print.Add(bytes.data(), bytes.size());
    }

  private:
    std::optional<ScratchFile> file_;
    std::optional<std::string> text_;
};

/// A bitmap that the host has not filled yet.
template <>
class Argument<TqLeadBitmap*> {
  public:
    Argument(Scene&, std::string_view, Checking) {}
    Argument(Argument&&) = delete;
    ~Argument() { tqFreeLeadBmp(&bitmap_); }
    TqLeadBitmap* Pass() { return &bitmap_; }
    void Add(Fingerprint& print) {
        for (const std::int32_t field :
             {bitmap_.width, bitmap_.height, bitmap_.bitsPerPixel, bitmap_.bytesPerLine,
              bitmap_.viewPerspective, bitmap_.colorOrder, bitmap_.paletteEntries})
            print.Add(field);
        if (bitmap_.palette != nullptr) {
            print.Add(bitmap_.palette, 4 * static_cast<std::size_t>(bitmap_.paletteEntries));
        }
        if (bitmap_.rows == nullptr) return;
        print.Add(bitmap_.rows,
                  static_cast<std::size_t>(bitmap_.height) * static_cast<std::size_t>(bitmap_.bytesPerLine));
    }

  private:
    TqLeadBitmap bitmap_{};
};

/// A bitmap that the library has made of an image or of three. Some are described wrongly, though never as
/// larger than they are.
template <>
class Argument<TqLeadBitmap> {
  public:
    Argument(Scene& scene, std::string_view, Checking) {
        Draw& draw = scene.Choice();
        const auto image = [&] { return scene.AnyImage(Checking::kUnchecked); };
        double scale = 0;
        if (draw.OneIn(3)) {
            TqImage* const one = image();
            tqCombineImagesRGB(&made_, one, draw.OneIn(3) ? nullptr : one, one, 1, 0.5f, 2, 0, 0, 1);
        } else {
            tqImageToLeadBmp(&made_, &scale, image(), draw.Between(0, 5), 1);
        }
        shown_ = made_;
        if (draw.OneIn(3)) shown_.viewPerspective = draw.Between(0, 3);
        if (draw.OneIn(6)) shown_.colorOrder = draw.Between(0, 1);
        if (draw.OneIn(8)) shown_.width = draw.Between(-1, shown_.width);
        if (draw.OneIn(8)) shown_.height = draw.Between(-1, shown_.height);
        if (draw.OneIn(8)) shown_.bytesPerLine = draw.Between(-1, shown_.bytesPerLine);
        if (draw.OneIn(8)) shown_.bitsPerPixel = draw.OneOf({0, 1, 8, 16, 24, 32});
        if (draw.OneIn(8)) shown_.paletteEntries = 0;
        if (draw.OneIn(12)) shown_.palette = nullptr;
        if (draw.OneIn(12)) shown_.rows = nullptr;
    }
    Argument(Argument&&) = delete;
    ~Argument() { tqFreeLeadBmp(&made_); }
    TqLeadBitmap Pass() { return shown_; }
    void Add(Fingerprint&) {}

  protected:
    TqLeadBitmap made_{}, shown_{};
};

template <>
class Argument<const TqLeadBitmap*> : public Argument<TqLeadBitmap> {
  public:
    Argument(Scene& scene, std::string_view name, Checking checking)
        : Argument<TqLeadBitmap>(scene, name, checking), isNull_(scene.Choice().OneIn(30)) {}
    const TqLeadBitmap* Pass() { return isNull_ ? nullptr : &shown_; }

  private:
    bool isNull_;
};

/// The handle of a device-independent bitmap that the library makes.
template <>
class Argument<void**> {
  public:
    Argument(Scene& scene, std::string_view, Checking) : isNull_(scene.Choice().OneIn(30)) {}
    Argument(Argument&&) = delete;
    ~Argument() {
        if (dib_ != nullptr) GlobalFree(dib_);
    }
    void** Pass() { return isNull_ ? nullptr : &dib_; }
    void Add(Fingerprint& print) {
        const auto* bytes = dib_ == nullptr ? nullptr : static_cast<const std::uint8_t*>(GlobalLock(dib_));
        if (bytes == nullptr) return print.Add(-1);
        // The block may be larger than what was asked for, so the size is that of the bitmap: 40 bytes of
        // header, the colours, rows of a multiple of 4 bytes.
        std::int32_t width = 0, height = 0;
        std::uint16_t bits = 0;
        std::memcpy(&width, bytes + 4, sizeof width);
        std::memcpy(&height, bytes + 8, sizeof height);
        std::memcpy(&bits, bytes + 14, sizeof bits);
        const std::int32_t size = 40 + (bits == 8 ? 1024 : 0) + (width * bits + 31) / 32 * 4 * height;
        print.Add(bytes, static_cast<std::size_t>(size));
        GlobalUnlock(dib_);
    }

  private:
    void* dib_ = nullptr;
    bool isNull_;
};

/// A handle that the call takes over, or a window, which is none.
template <>
class Argument<void*> {
  public:
    Argument(Scene& scene, std::string_view name, Checking) {
        if (name == "dib") tqImageToDIB(&dib_, scene.AnyImage(Checking::kChecked), 0);
    }
    void* Pass() { return dib_; }
    void Add(Fingerprint&) {}

  private:
    void* dib_ = nullptr;
};

/// The sum form of an image as the host's own block, some with a wrong head or entry. Never with more entries
/// than there are.
template <>
class Argument<const TqImageSum*> {
  public:
    Argument(Scene& scene, std::string_view, Checking) {
        Draw& draw = scene.Choice();
        tqImageToImageSum(&sum_, scene.AnyImage(Checking::kChecked));
        if (sum_ == nullptr) return;
        auto* const entries = reinterpret_cast<TqImageSumEntry*>(sum_ + 1);
        if (sum_->Count > 0 && draw.OneIn(8)) {
            entries[draw.Between(0, sum_->Count - 1)].Index = draw.Any();
        }
        if (draw.OneIn(8)) sum_->Count = draw.Between(-1, sum_->Count);
        if (draw.OneIn(8)) sum_->Header.PelCols = draw.Between(-1, scene.Cols());
        if (draw.OneIn(8)) sum_->Step = static_cast<std::int32_t>(draw.Any());
    }
    Argument(Argument&&) = delete;
    ~Argument() { tqImageFree(reinterpret_cast<TqImage**>(&sum_)); }
    const TqImageSum* Pass() { return sum_; }
    void Add(Fingerprint& print) {
        if (sum_ == nullptr) return print.Add(-1);
        AddHeader(print, sum_->Header);
        print.Add(sum_->Step);
        print.Add(sum_->Count);
        if (sum_->Count > 0)
            print.Add(sum_ + 1, static_cast<std::size_t>(sum_->Count) * sizeof(TqImageSumEntry));
    }

  protected:
    TqImageSum* sum_ = nullptr;
};

template <>
class Argument<TqImageSum**> : public Argument<const TqImageSum*> {
  public:
    using Argument<const TqImageSum*>::Argument;
    TqImageSum** Pass() { return &sum_; }
};

/// A record whose memory holds as many bytes as it says, one less, or none.
template <>
class Argument<const TqKorvelinRecord*> {
  public:
    Argument(Scene& scene, std::string_view, Checking) {
        Draw& draw = scene.Choice();
        record_.Cols = scene.DrawInt("cols", Checking::kUnchecked);
        record_.Rows = scene.DrawInt("rows", Checking::kUnchecked);
        record_.PelsPerMeterX = record_.PelsPerMeterY = static_cast<float>(scene.DrawReal("resolution"));
        record_.CenterCol = scene.DrawInt("col", Checking::kChecked);
        record_.CenterRow = scene.DrawInt("row", Checking::kChecked);
        record_.TotalPelValue = scene.DrawInt("total", Checking::kChecked);
        record_.LuxPerGrey = record_.CenterPelValue = record_.MaxPelValue =
            static_cast<float>(scene.DrawReal("scale"));
        const std::int32_t pels = std::max(record_.Cols * record_.Rows, 0);
        const std::int32_t bytes = draw.OneIn(8) ? pels / 2 : pels;
        if (draw.OneIn(20)) return;
        record_.Data = GlobalAlloc(GMEM_MOVEABLE, static_cast<SIZE_T>(bytes));
        auto* const data = static_cast<std::uint8_t*>(GlobalLock(record_.Data));
        if (data == nullptr) return;
        Draw noise(draw.Any());
        std::generate_n(data, bytes, [&] { return static_cast<std::uint8_t>(noise.Any()); });
        GlobalUnlock(record_.Data);
        // A side beyond what is there, or one that no image has.
        if (draw.OneIn(12)) record_.Cols = scene.DrawInt("total", Checking::kChecked);
    }
    Argument(Argument&&) = delete;
    ~Argument() {
        if (record_.Data != nullptr) GlobalFree(record_.Data);
    }
    const TqKorvelinRecord* Pass() { return &record_; }
    void Add(Fingerprint&) {}

  private:
    TqKorvelinRecord record_{};
};

template <>
class Argument<const TqMultiPointSettings*> {
  public:
    Argument(Scene& scene, std::string_view, Checking)
        : settings_{scene.Choice().Between(0, 2),
                    scene.DrawInt("cols", Checking::kUnchecked),
                    scene.DrawInt("rows", Checking::kUnchecked),
                    scene.Choice().Between(-1, 6),
                    {},
                    static_cast<float>(scene.DrawReal("col")),
                    static_cast<float>(scene.DrawReal("row")),
                    static_cast<float>(scene.DrawReal("col")),
                    static_cast<float>(scene.DrawReal("row"))} {}
    const TqMultiPointSettings* Pass() { return &settings_; }
    void Add(Fingerprint&) {}

  private:
    TqMultiPointSettings settings_;
};

template <>
class Argument<const TqProjection*> {
  public:
    Argument(Scene& scene, std::string_view, Checking) {
        // A camera a little before the surface; the sizes of the result are small.
        double fields[] = {0.0, 0.0,   -1.0,  0,    0,    0,   200, scene.Cols() * 0.5, scene.Rows() * 0.5, 0,
                           0.5, 100.0, 100.0, 20.0, 15.0, 9.5, 7.0};
        static_assert(sizeof fields == sizeof record_);
        for (double& field : fields) {
            const bool isSize = field == 20.0 || field == 15.0;
            if (isSize) {
                field = scene.Choice().Between(0, 40);
            } else if (scene.Choice().OneIn(12)) {
                field = scene.DrawReal("Col");
            }
        }
        fields[9] = scene.Choice().Between(0, 3);  // the kind of surface
        std::memcpy(&record_, fields, sizeof record_);
    }
    const TqProjection* Pass() { return &record_; }
    void Add(Fingerprint&) {}

  private:
    TqProjection record_{};
};

template <>
class Argument<const TqLensSetting*> {
  public:
    Argument(Scene& scene, std::string_view, Checking)
        : setting_{scene.DrawInt("cols", Checking::kUnchecked),
                   scene.DrawInt("rows", Checking::kUnchecked),
                   scene.Choice().Between(-1, 4),
                   scene.Choice().Between(-1, 4),
                   static_cast<float>(scene.DrawReal("a")),
                   static_cast<float>(scene.DrawReal("b"))} {}
    const TqLensSetting* Pass() { return &setting_; }
    void Add(Fingerprint&) {}

  private:
    TqLensSetting setting_;
};

}  // namespace tqtest
