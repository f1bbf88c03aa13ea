#pragma once

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "automation_host.h"
#include "scene.h"

namespace tqtest {

/// What is passed where a function takes a T: drawn when it is made, added to the fingerprint after the call,
/// released with the scope.
template <class T>
class Argument;

template <class T>
requires std::is_arithmetic_v<T>
class Argument<T> {
  public:
    Argument(Scene& scene, std::string_view name, Checking checking) {
        if constexpr (std::is_floating_point_v<T>) {
            value_ = static_cast<T>(scene.DrawReal(name));
        } else {
            value_ = static_cast<T>(scene.DrawInt(name, checking));
        }
    }
    T Pass() { return value_; }
    void Add(Fingerprint&) {}

  private:
    T value_;
};

/// Numbers behind a pointer: one result, a table, a matrix. As many as any function reads or writes.
template <class T>
requires std::is_arithmetic_v<std::remove_const_t<T>>
class Argument<T*> {
  public:
    using Value = std::remove_const_t<T>;

    Argument(Scene& scene, std::string_view name, Checking) : isAddress_(name == "blockAddress") {
        Draw noise(scene.Choice().Any());
        const double scale = scene.Choice().OneIn(2) ? 1.0 : 100.0;
        for (Value& value : values_) {
            if constexpr (std::is_floating_point_v<Value>) {
                value = static_cast<Value>(scale * noise.Fraction());
            } else {
                value = static_cast<Value>(noise.Any());
            }
        }
    }
    T* Pass() { return values_.data(); }
    void Add(Fingerprint& print) {
        if (isAddress_) return;
        if constexpr (std::is_floating_point_v<Value>) {
            for (const Value value : values_)
                print.Add(value);
        } else {
            print.Add(values_.data(), values_.size() * sizeof(Value));
        }
    }

  private:
    static constexpr std::size_t kCount = sizeof(Value) == 2 ? 65536 : 640;
    std::vector<Value> values_ = std::vector<Value>(kCount);
    bool isAddress_;
};

template <class T>
requires std::is_same_v<std::remove_const_t<T>, TqImage>
class Argument<T*> {
  public:
    Argument(Scene& scene, std::string_view, Checking checking) : image_(scene.AnyImage(checking)) {}
    T* Pass() { return image_; }
    void Add(Fingerprint&) {}  // the scene adds all of its images

  private:
    TqImage* image_;
};

template <>
class Argument<TqImage**> {
  public:
    Argument(Scene& scene, std::string_view, Checking checking) : slot_(scene.AnySlot()) {
        if (checking == Checking::kChecked && scene.Choice().OneIn(60)) slot_ = nullptr;
    }
    TqImage** Pass() { return slot_; }
    void Add(Fingerprint&) {}

  private:
    TqImage** slot_;
};

template <class T>
requires std::is_same_v<std::remove_const_t<T>, TqImageHeader>
class Argument<T*> {
  public:
    Argument(Scene& scene, std::string_view, Checking)
        : header_(scene.DrawHeader(scene.DrawInt("cols", Checking::kUnchecked),
                                   scene.DrawInt("rows", Checking::kUnchecked))) {
        // Half of the headers are those of the images, so that they fit what is passed beside them.
        if (scene.Choice().OneIn(2)) header_.PelCols = scene.Cols(), header_.PelRows = scene.Rows();
    }
    T* Pass() { return &header_; }
    void Add(Fingerprint& print) { AddHeader(print, header_); }

  private:
    TqImageHeader header_;
};

template <class T>
requires std::is_same_v<std::remove_const_t<T>, TqDistortionMap>
class Argument<T*> {
  public:
    Argument(Scene& scene, std::string_view, Checking checking)
        : map_(checking == Checking::kChecked && scene.Choice().OneIn(30) ? nullptr : scene.MakeMap()) {}
    Argument(Argument&&) = delete;
    ~Argument() {
        if (map_ != nullptr) tqImageFree(reinterpret_cast<TqImage**>(&map_));
    }
    T* Pass() { return map_; }
    void Add(Fingerprint& print) { AddMap(print, map_); }

  protected:
    TqDistortionMap* map_;
};

template <>
class Argument<TqDistortionMap**> : public Argument<TqDistortionMap*> {
  public:
    using Argument<TqDistortionMap*>::Argument;
    TqDistortionMap** Pass() { return &map_; }
};

/// An array of the form the name asks for, of another one, or none. Most hold small numbers.
template <>
class Argument<SAFEARRAY**> {
  public:
    Argument(Scene& scene, std::string_view name, Checking checking) {
        Draw& draw = scene.Choice();
        if (checking == Checking::kChecked && draw.OneIn(20)) return;
        const auto length = static_cast<std::uint32_t>(draw.Between(0, 12));
        const bool usual = !draw.OneIn(6);
        Draw noise(draw.Any());
        const auto number = [&](int, int) { return noise.Between(-2, 40); };
        if (usual && name == "vertices") {
            array_ = MakeInt32Array(2, length, [&](int part, int) {
                return noise.Between(-2, (part == 0 ? scene.Cols() : scene.Rows()) + 2);
            });
        } else if (usual && (name == "list" || name == "regions" || name == "points")) {
            array_ = MakeInt32Array(length, name == "points" ? 3 : 5, [&](int, int field) {
                return noise.Between(field == 0 ? 0 : -1, field == 0 ? 6 : scene.Cols());
            });
        } else if (usual && name == "table") {
            array_ = MakeDoubleArray(1 + length, 9, [&](int, int field) {
                return field < 3 ? 10.0 + field * noise.Fraction() : 0.01 * noise.Fraction();
            });
        } else if (draw.OneIn(2)) {
            array_ = MakeInt16Array(length, static_cast<std::uint32_t>(draw.Between(1, 12)), number);
        } else {
            array_ = HostArray(draw.OneIn(2) ? VT_I4 : VT_R8, {{length}});
        }
    }
    SAFEARRAY** Pass() { return array_.Address(); }
    void Add(Fingerprint& print) { AddArray(print, array_.Get()); }

    static void AddArray(Fingerprint& print, const SAFEARRAY* array) {
        if (array == nullptr) return print.Add(-1);
        std::size_t count = 1;
        for (int i = 0; i < array->cDims; ++i) {
            print.Add(array->rgsabound[i].cElements);
            print.Add(array->rgsabound[i].lLbound);
            count *= array->rgsabound[i].cElements;
        }
        print.Add(array->cbElements);
        print.Add(static_cast<std::uint32_t>(array->cLocks));
        const auto* bytes = static_cast<const std::uint8_t*>(array->pvData);
        for (std::size_t i = 0; i < count; ++i, bytes += array->cbElements) {
            double value = 0;
            if (array->cbElements != sizeof value) {
                print.Add(bytes, array->cbElements);
                continue;
            }
            std::memcpy(&value, bytes, sizeof value);
            print.Add(value);
        }
    }

  private:
    HostArray array_;
};

template <>
class Argument<VARIANT*> {
  public:
    Argument(Scene&, std::string_view, Checking) { VariantInit(&value_); }
    Argument(Argument&&) = delete;
    ~Argument() {
        if (value_.vt & VT_ARRAY) value_.parray->cLocks = 0;
        VariantClear(&value_);
    }
    VARIANT* Pass() { return &value_; }
    void Add(Fingerprint& print) {
        print.Add(value_.vt);
        if (value_.vt & VT_ARRAY) Argument<SAFEARRAY**>::AddArray(print, value_.parray);
    }

  private:
    VARIANT value_;
};

/// The pels of an image or an array: an address within what another argument owns.
template <>
class Argument<std::uint16_t**> {
  public:
    Argument(Scene&, std::string_view, Checking) {}
    std::uint16_t** Pass() { return &address_; }
    void Add(Fingerprint&) {}

  private:
    std::uint16_t* address_ = nullptr;
};

/// A file to write.
template <>
class Argument<const char*> {
  public:
    Argument(Scene&, std::string_view, Checking) {}
    Argument(Argument&&) = delete;
    ~Argument() { std::remove(name_.c_str()); }
    const char* Pass() { return name_.c_str(); }
    void Add(Fingerprint& print) {
        std::FILE* file = std::fopen(name_.c_str(), "rb");
        if (file == nullptr) return print.Add(-1);
        std::array<char, 4096> buffer;
        while (const std::size_t got = std::fread(buffer.data(), 1, buffer.size(), file)) {
            // Text has the line ends of its system.
            const auto end = std::remove(buffer.begin(), buffer.begin() + got, '\r');
            print.Add(buffer.data(), static_cast<std::size_t>(end - buffer.begin()));
        }
        std::fclose(file);
    }

  private:
    std::string name_ = FileName();
    static std::string FileName();
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

  protected:
    TqLeadBitmap bitmap_{};
};

/// A record of numbers whose fields lie side by side, drawn one by one.
template <class Record, class Field>
class NumberRecord {
  public:
    Record* Pass() { return &record_; }
    void Add(Fingerprint&) {}

  protected:
    template <class DrawField>
    void Fill(DrawField&& drawField) {
        Field fields[sizeof(Record) / sizeof(Field)];
        std::size_t index = 0;
        for (Field& field : fields)
            field = drawField(index++);
        std::memcpy(&record_, fields, sizeof record_);
    }
    Record record_{};
};

template <>
class Argument<const TqProjection*> : public NumberRecord<TqProjection, double> {
  public:
    Argument(Scene& scene, std::string_view, Checking) {
        // A camera a little before the surface; the sizes of the result are small.
        const double usual[] = {
            0.0, 0.0,   -1.0,  0,    0,    0,   200, scene.Cols() * 0.5, scene.Rows() * 0.5, 0,
            0.5, 100.0, 100.0, 20.0, 15.0, 9.5, 7.0};
        Fill([&](std::size_t i) {
            if (i == 9) return static_cast<double>(scene.Choice().Between(0, 3));
            if (i == 13 || i == 14) return static_cast<double>(scene.Choice().Between(0, 40));
            return scene.Choice().OneIn(3) ? scene.DrawReal("Col") : usual[i];
        });
    }
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

/// The block of a byte string.
template <>
class Argument<void**> {
  public:
    Argument(Scene&, std::string_view, Checking) {}
    void** Pass() { return &block_; }
    void Add(Fingerprint&) {}
    void* Get() const { return block_; }

  private:
    void* block_ = nullptr;
};

}  // namespace tqtest
