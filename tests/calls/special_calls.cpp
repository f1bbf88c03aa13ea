#include "special_calls.h"

#include <map>
#include <vector>

#include "arguments.h"

namespace tqtest {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// Plain or compressed. The bytes of a compressed string are the zlib release's own affair.
Bytes MakeByteString(Scene& scene, Fingerprint& print) {
    Bytes bytes(100'000);  // the plain form asks for no capacity
    std::uint32_t length = 0;
    const bool compress = scene.Choice().OneIn(2);
    const TqImage* const image = scene.AnyImage(Checking::kChecked);
    const auto capacity = static_cast<std::uint32_t>(scene.Choice().Between(0, 20'000));
    scene.Make(print, [&] { return tqHandleToString(image, bytes.data(), &length, capacity, compress); });
    bytes.resize(length);
    if (!compress) print.Add(bytes.data(), bytes.size());
    return bytes;
}

/// Most strings come as they were made; the others are cut or have a byte changed behind the header.
Bytes DrawByteString(Scene& scene, Fingerprint& print) {
    Bytes bytes = MakeByteString(scene, print);
    Draw& draw = scene.Choice();
    const auto size = static_cast<std::int32_t>(bytes.size());
    if (size > 60 && draw.OneIn(6)) bytes[static_cast<std::size_t>(draw.Between(57, size - 1))] ^= 0x10;
    if (size > 60 && draw.OneIn(6)) bytes.resize(static_cast<std::size_t>(draw.Between(57, size)));
    return bytes;
}

void CallHandleToString(Scene& scene, Fingerprint& print) {
    MakeByteString(scene, print);
}

/// Restores a string; `call` gets its bytes and the place of the block.
template <class Call>
void Restore(Scene& scene, Fingerprint& print, Call&& call) {
    const Bytes bytes = DrawByteString(scene, print);
    const bool compressed = scene.Choice().OneIn(2);
    void* block = nullptr;
    scene.Make(print, [&] {
        return call(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &block, compressed);
    });
    auto* image = static_cast<TqImage*>(block);
    if (image != nullptr && scene.Result() == 0) tqImageFree(&image);
}

void CallStringToHandle(Scene& scene, Fingerprint& print) {
    Restore(scene, print, tqStringToHandle);
}

void CallStringToHandle2(Scene& scene, Fingerprint& print) {
    const auto expected = static_cast<std::uint32_t>(scene.Choice().Between(0, 10'000));
    Restore(scene, print, [&](auto* source, std::uint32_t length, void** block, std::int32_t compressed) {
        return tqStringToHandle2(source, length, block, expected, compressed);
    });
}

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
        {"tqCreateDistortionImage", CallCreateDistortionImage},
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
