#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <utility>

#include "draw.h"
#include "tqimage/keystone.h"
#include "tqimage/tqimage.h"

namespace tqtest {

/// Whether a function may be given anything, or only what its contract allows.
enum class Checking { kChecked, kUnchecked };

constexpr std::size_t kImages = 4;

/// What happens around each call of the library, and nothing else.
class CallWatch {
  public:
    virtual ~CallWatch() = default;
    virtual void Before() = 0;
    virtual void After() = 0;
};

/// What a call finds: a few images of mostly one size in one style. Results land among them, so a sequence of
/// calls works on what earlier calls made.
class Scene {
  public:
    /// The sizes are below `largest`.
    Scene(Draw& draw, std::int32_t largest);
    /// The first images of another scene, for calls that write none of them, and others of its own.
    Scene(Draw& draw, const Scene& lender);
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;
    ~Scene();

    Draw& Choice() { return draw_; }
    std::int32_t Cols() const { return cols_; }
    std::int32_t Rows() const { return rows_; }
    TqImage*& Slot(std::size_t index) { return images_.at(index); }
    /// One of the images; now and then none, unless it must be valid.
    TqImage* AnyImage(Checking checking);
    /// The place of one of its own images.
    TqImage** AnySlot();

    /// The argument of this name is that image from now on, if it is an image or the address of one.
    void Substitute(std::string_view argument, TqImage** image) { argument_ = argument, substitute_ = image; }
    /// Where the image of an argument lies: as drawn, or the substitute.
    TqImage** ImageOf(std::string_view argument, TqImage** drawn) {
        if (argument != argument_) return drawn;
        wasSubstituted_ = true;
        return substitute_;
    }
    bool WasSubstituted() const { return wasSubstituted_; }

    TqImageHeader DrawHeader(std::int32_t cols, std::int32_t rows);
    TqImage* MakeImage(std::int32_t cols, std::int32_t rows);
    TqDistortionMap* MakeMap();
    std::int32_t DrawInt(std::string_view name, Checking checking);
    double DrawReal(std::string_view name);

    void Add(Fingerprint& print) const;

    /// Returns the one before.
    CallWatch* SetWatch(CallWatch* watch) { return std::exchange(watch_, watch); }
    /// Makes a call and adds what it returns.
    template <class Call>
    void Make(Fingerprint& print, Call&& call) {
        if (watch_ != nullptr) watch_->Before();
        if constexpr (std::is_void_v<decltype(call())>) {
            call();
        } else {
            const auto result = call();
            result_ = static_cast<double>(result);
            print.Add(result);
        }
        if (watch_ != nullptr) watch_->After();
    }
    /// What the last call returned.
    double Result() const { return result_; }

  private:
    Draw& draw_;
    CallWatch* watch_ = nullptr;
    double result_ = 0;
    std::int32_t largest_;
    std::int32_t cols_, rows_;
    std::array<TqImage*, kImages> images_{};
    std::size_t lent_ = 0;  ///< that many of the images belong to another scene
    std::string_view argument_;
    TqImage** substitute_ = nullptr;
    bool wasSubstituted_ = false;
};

/// Adds header and pels, without the bits that no contract fixes.
void AddHeader(Fingerprint& print, const TqImageHeader& header);
void AddImage(Fingerprint& print, const TqImage* image);
void AddMap(Fingerprint& print, const TqDistortionMap* map);

}  // namespace tqtest
