#pragma once

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>
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
        if (name == "limits" && !scene.Choice().OneIn(8)) {
            std::iota(values_.begin(), values_.end(), Value{});
            return;
        }
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
    Argument(Scene& scene, std::string_view name, Checking checking) : image_(scene.AnyImage(checking)) {
        TqImage** const at = scene.ImageOf(name, &image_);
        image_ = at == nullptr ? nullptr : *at;
    }
    T* Pass() { return image_; }
    void Add(Fingerprint&) {}  // the scene adds all of its images

  private:
    TqImage* image_;
};

template <>
class Argument<TqImage**> {
  public:
    Argument(Scene& scene, std::string_view name, Checking checking) : slot_(scene.AnySlot()) {
        if (checking == Checking::kChecked && scene.Choice().OneIn(60)) slot_ = nullptr;
        slot_ = scene.ImageOf(name, slot_);
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
        } else if (usual && name == "array") {
            const auto rows = static_cast<std::uint32_t>(draw.Between(1, 12));
            array_ =
                draw.OneIn(2) ? MakeInt32Array(length, rows, number) : MakeInt16Array(length, rows, number);
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

}  // namespace tqtest
