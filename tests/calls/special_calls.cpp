#include "special_calls.h"

#include <map>

#include "arguments.h"
#include "exchange_calls.h"

namespace tqtest {
namespace {

/// The entries are unset, so the head alone counts.
void CallCreateDistortionImage(Scene& scene, Fingerprint& print) {
    const TqImageHeader info = scene.DrawHeader(scene.Cols(), scene.DrawInt("rows", Checking::kUnchecked));
    TqDistortionMap* map = nullptr;
    scene.Make(print, [&] { return tqCreateDistortionImage(&map, &info); });
    if (map == nullptr) return;
    print.Add(map, sizeof *map);
    tqImageFree(reinterpret_cast<TqImage**>(&map));
}

/// The header that is set must describe the block it comes to lie in.
void CallSetImageInfo(Scene& scene, Fingerprint& print) {
    TqImage* image = scene.AnyImage(Checking::kChecked);
    TqImageHeader info{};
    if (image != nullptr) tqGetImageInfo(&info, image);
    print.Add(info.PelCols);
    const TqImageHeader other = scene.DrawHeader(info.PelCols, info.PelRows);
    scene.Make(print, [&] { return tqSetImageInfo(image, &other); });
}

/// With a whole factor the dither, which is another one at each call, decides nothing.
void CallConvert16to8(Scene& scene, Fingerprint& print) {
    TqImage** const image = scene.AnySlot();
    const double factor = scene.Choice().OneOf({-1.0, 0.0, 1.0, 2.0, 255.0, 1e300});
    scene.Make(print, [&] { return tqConvert16to8(image, factor); });
}

/// Copies the array's elements into a block of the host.
void CallGetSafeArrayHandle(Scene& scene, Fingerprint& print) {
    Argument<SAFEARRAY**> array(scene, "array", Checking::kChecked);
    std::uint16_t* pels = nullptr;
    scene.Make(print, [&] { return tqGetSafeArrayHandle(&pels, array.Pass()); });
    array.Add(print);
    auto* block = reinterpret_cast<TqImage*>(pels);
    if (block != nullptr) tqImageFree(&block);
}

}  // namespace

void (*SpecialCall(std::string_view name))(Scene& scene, Fingerprint& print) {
    static const std::map<std::string_view, void (*)(Scene&, Fingerprint&)> calls = {
        {"tq24bitColorBitmapToImage", CallColorBitmapToImage},
        {"tqCompressImage", CallCompressImage},
        {"tqConvert16to8", CallConvert16to8},
        {"tqCreateDistortionImage", CallCreateDistortionImage},
        {"tqDecompressImage", CallDecompressImage},
        {"tqDiskBmpToImage", CallDiskBmpToImage},
        {"tqGetSafeArrayHandle", CallGetSafeArrayHandle},
        {"tqHandleToString", CallHandleToString},
        {"tqSetImageInfo", CallSetImageInfo},
        {"tqStringToHandle", CallStringToHandle},
        {"tqStringToHandle2", CallStringToHandle2},
    };
    const auto found = calls.find(name);
    return found == calls.end() ? nullptr : found->second;
}

}  // namespace tqtest
