#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <optional>
#include <string_view>
#include <vector>

#include "call_table.h"
#include "failing_allocator.h"
#include "images.h"

namespace tqtest {
namespace {

std::vector<std::uint8_t> BytesOf(const TqImage* image) {
    if (image == nullptr) return {};
    TqImageHeader header;
    std::memcpy(&header, image, sizeof header);
    const std::size_t pels =
        header.PelCols < 1 || header.PelRows < 1
            ? 0
            : static_cast<std::size_t>(header.PelCols) * static_cast<std::size_t>(header.PelRows);
    const auto* first = reinterpret_cast<const std::uint8_t*>(image);
    return {first, first + sizeof header + 2 * pels};
}

/// Lets allocations fail during the call, and remembers the images that it found.
class FailingCall : public CallWatch {
  public:
    FailingCall(Scene& scene, int nth, Afterwards afterwards)
        : scene_(scene), nth_(nth), afterwards_(afterwards) {
        scene.SetWatch(this);
    }
    void Before() override {
        for (std::size_t i = 0; i < kImages; ++i) {
            blocks_[i] = scene_.Slot(i);
            bytes_[i] = BytesOf(scene_.Slot(i));
        }
        failure_.emplace(nth_, afterwards_);
    }
    void After() override {
        happened_ = AllocationFailure::Happened();
        failure_.reset();
    }
    bool Happened() const { return happened_; }
    /// Each image as it was before the call; or gone, where the function may release it.
    bool KeptImages(bool mayRelease) const {
        for (std::size_t i = 0; i < kImages; ++i) {
            const TqImage* const now = scene_.Slot(i);
            const bool released = mayRelease && now == nullptr;
            if (!released && (now != blocks_[i] || BytesOf(now) != bytes_[i])) return false;
        }
        return true;
    }

  private:
    Scene& scene_;
    int nth_;
    Afterwards afterwards_;
    std::optional<AllocationFailure> failure_;
    std::array<const TqImage*, kImages> blocks_{};
    std::array<std::vector<std::uint8_t>, kImages> bytes_;
    bool happened_ = false;
};

struct Outcome {
    std::uint64_t print = 0;
    double result = 0;
    bool happened = false, kept = false;
    long leaked = 0;
};

template <std::size_t kCount>
bool IsOneOf(const std::string_view (&names)[kCount], std::string_view name) {
    return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

/// Functions that change an image before they need memory: the passes that stand, the maximum of the source
/// or of the reference that is brought up to date.
constexpr std::string_view kMayChangeImages[] = {"tqHistoEqualize", "tqLocalHistoEqualize",
                                                 "tqNormalizeImage", "tqSmoothImage", "tqSmoothImage0"};

/// Functions that release the block of their result before they have the new one, and leave null.
constexpr std::string_view kMayReleaseImages[] = {
    "tqBuildMultiPointImage",  "tqCreateImage",       "tqCreateImageA", "tqDivideImage",
    "tqFrameOutImg0",          "tqFrameUpImg2",       "tqGlobalCopy",   "tqHistoEqualize",
    "tqHistoEqualizeInRegion", "tqLocalHistoEqualize"};

Outcome CallWithFailure(const CallEntry& entry, int number, int nth, Afterwards afterwards) {
    Outcome outcome;
    const long before = LiveAllocations();
    {
        Draw draw(FingerprintOf(entry.name) + static_cast<std::uint64_t>(number));
        Scene scene(draw, 24);
        FailingCall failing(scene, nth, afterwards);
        Fingerprint print;
        entry.call(scene, print);
        scene.Add(print);
        outcome = {print.Value(), scene.Result(), failing.Happened(),
                   failing.KeptImages(IsOneOf(kMayReleaseImages, entry.name)), 0};
    }
    outcome.leaked = LiveAllocations() - before;
    return outcome;
}

bool IsCodeOf(const CallEntry& entry, double result) {
    return std::find(entry.withoutMemory.begin(), entry.withoutMemory.end(), result) !=
           entry.withoutMemory.end();
}

/// Whichever allocation fails, alone or with all that follow, a function either does without it or returns
/// one of the codes that its documentation gives for a want of memory, leaves every image of the host as it
/// was, and leaks nothing.
TEST(AllocationFailures, EveryFunctionReportsThemAndKeepsTheImages) {
    constexpr int kCalls = 20, kMostAllocations = 400;
    for (const CallEntry& entry : AllCalls()) {
        int reports = 0;
        for (int number = 0; number < kCalls; ++number) {
            CallWithFailure(entry, number, 0, Afterwards::kSucceed);  // what is made once in a process
            const Outcome whole = CallWithFailure(entry, number, 0, Afterwards::kSucceed);
            EXPECT_EQ(whole.leaked, 0) << entry.name << ", call " << number;
            for (const Afterwards afterwards : {Afterwards::kSucceed, Afterwards::kFail}) {
                for (int nth = 1; nth < kMostAllocations; ++nth) {
                    const Outcome outcome = CallWithFailure(entry, number, nth, afterwards);
                    if (!outcome.happened) break;
                    const bool unharmed = outcome.print == whole.print;
                    const bool reported = IsCodeOf(entry, outcome.result) &&
                                          (outcome.kept || IsOneOf(kMayChangeImages, entry.name));
                    reports += outcome.result != whole.result && reported;
                    EXPECT_TRUE((unharmed || reported) && outcome.leaked == 0)
                        << entry.name << ", call " << number << ", allocation " << nth << ": returned "
                        << outcome.result << " for " << whole.result << ", images "
                        << (outcome.kept ? "kept" : "changed") << ", leaked " << outcome.leaked;
                }
            }
        }
        EXPECT_EQ(reports == 0, entry.withoutMemory.empty()) << entry.name;
    }
}

/// Functions for which an image that is missing is one that is left out.
constexpr std::string_view kMayBeLeftOut[] = {
    "tqCalcLocalColorLumDiff", "tqCalcLocalColorLumDiff0", "tqCombineImages",
    "tqCombineImagesRGB",      "tqCombineImagesRGBtoDIB",  "tqRunningAverage",
    "tqSetColorGraysInRegion", "tqTransformXYZtoRGB",      "tqTransformXYZtoRGB2"};

/// Functions that may be done, or have refused something else, before they come to the image.
constexpr std::string_view kMayNotLook[] = {"tqCalcColorLumDiff", "tqCalcColorLumDiff0", "tqRemoveBadPixels",
                                            "tqSmoothImage",      "tqSmoothImage0",      "tqTransposeImage"};

enum class Flaw { kNone, kNoColumns, kNoRows, kTooWide, kTooHigh, kMissing, kNoAddress };

Image MakeFlawed(Flaw flaw, std::int32_t cols, std::int32_t rows) {
    if (flaw >= Flaw::kMissing) return {};
    if (flaw == Flaw::kNone) return {cols, rows};
    return {flaw == Flaw::kNoColumns ? 0
            : flaw == Flaw::kTooWide ? 8001
                                     : 1,
            flaw == Flaw::kNoRows    ? 0
            : flaw == Flaw::kTooHigh ? 8001
                                     : 1};
}

/// What a call makes of an image that it is given, and whether it has such an argument.
struct Reception {
    double result = 0;
    std::vector<std::uint8_t> bytes;
    bool substituted = false, kept = false;
};

Reception CallWithImage(const CallEntry& entry, int number, std::string_view argument, Flaw flaw) {
    Draw draw(FingerprintOf(entry.name) + static_cast<std::uint64_t>(number));
    Scene scene(draw, 24);
    Image image = MakeFlawed(flaw, scene.Cols(), scene.Rows());
    scene.Substitute(argument, flaw == Flaw::kNoAddress ? nullptr : image.Address());
    FailingCall watch(scene, 0, Afterwards::kSucceed);
    Fingerprint print;
    entry.call(scene, print);
    return {scene.Result(), BytesOf(image), scene.WasSubstituted(),
            watch.KeptImages(IsOneOf(kMayReleaseImages, entry.name))};
}

/// Wherever a function reads an image, one that is missing, empty or too large gives a code that its
/// documentation has for that, and all other images stay; unless it only writes to that place, which must be
/// one.
TEST(Refusals, EveryFunctionRefusesWhatIsNoImage) {
    constexpr int kCalls = 12;
    int tried = 0;
    for (const CallEntry& entry : AllCalls()) {
        for (const std::string_view argument : entry.arguments) {
            const bool isResult = argument.starts_with("out") || argument == "result";
            for (int number = 0; number < kCalls && entry.isChecked; ++number) {
                const Reception sound = CallWithImage(entry, number, argument, Flaw::kNone);
                if (!sound.substituted) break;
                if (sound.result < 0) continue;
                for (int i = static_cast<int>(Flaw::kNoColumns); i <= static_cast<int>(Flaw::kNoAddress);
                     ++i) {
                    const Flaw flaw{i};
                    if (isResult && flaw != Flaw::kNoAddress) continue;
                    if (flaw >= Flaw::kMissing && IsOneOf(kMayBeLeftOut, entry.name)) continue;
                    const Reception refused = CallWithImage(entry, number, argument, flaw);
                    const bool hasCode = std::find(entry.withoutImage.begin(), entry.withoutImage.end(),
                                                   refused.result) != entry.withoutImage.end();
                    const bool written = refused.result == sound.result &&
                                         (refused.bytes == sound.bytes || IsOneOf(kMayNotLook, entry.name));
                    EXPECT_TRUE((hasCode && refused.kept) || written)
                        << entry.name << ", " << argument << ", flaw " << i << ", call " << number << ": "
                        << refused.result << " for " << sound.result
                        << (refused.kept ? "" : ", images changed");
                    ++tried;
                }
            }
        }
    }
    EXPECT_GT(tried, 10'000);
}

}  // namespace
}  // namespace tqtest
