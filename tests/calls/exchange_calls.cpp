#include "exchange_calls.h"

#include <vector>

#include "record_arguments.h"

namespace tqtest {
namespace {

using Bytes = std::vector<std::uint8_t>;

enum class Damage { kCut, kCutOrChanged };

/// What another call writes, without the watch. Some are cut or have a byte changed: none of the first 60,
/// for there lie the sizes, which no function can doubt until it runs out of memory.
template <class Make>
Bytes Prepare(Scene& scene, Make&& make, Damage damage = Damage::kCutOrChanged) {
    constexpr std::int32_t kFirst = 60;
    CallWatch* const watch = scene.SetWatch(nullptr);
    Bytes bytes = make();
    scene.SetWatch(watch);
    Draw& draw = scene.Choice();
    const auto size = static_cast<std::int32_t>(bytes.size());
    if (size <= kFirst) return bytes;
    if (damage == Damage::kCutOrChanged && draw.OneIn(6))
        bytes[static_cast<std::size_t>(draw.Between(kFirst, size - 1))] ^= 0x10;
    if (draw.OneIn(6)) bytes.resize(static_cast<std::size_t>(draw.Between(kFirst, size)));
    return bytes;
}

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

/// Restores a string; `call` gets its bytes and the place of the block.
template <class Call>
void Restore(Scene& scene, Fingerprint& print, Call&& call) {
    const Bytes bytes = Prepare(scene, [&] { return MakeByteString(scene, print); });
    const bool compressed = scene.Choice().OneIn(2);
    void* block = nullptr;
    scene.Make(print, [&] {
        return call(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &block, compressed);
    });
    auto* image = static_cast<TqImage*>(block);
    if (image != nullptr && scene.Result() == 0) tqImageFree(&image);
}

Bytes MakeJpeg(Scene& scene, Fingerprint& print) {
    Bytes bytes(static_cast<std::size_t>(scene.Choice().OneIn(8) ? scene.Choice().Between(1, 2000) : 60'000));
    TqImage* const image = scene.AnyImage(Checking::kChecked);
    const std::int32_t quality = scene.Choice().Between(-10, 256);
    std::uint32_t length = 0;
    double scale = 0;
    const auto capacity = static_cast<std::uint32_t>(bytes.size());
    scene.Make(print,
               [&] { return tqCompressImage(image, bytes.data(), &length, &scale, capacity, 0, quality); });
    print.Add(length);
    print.Add(scale);
    bytes.resize(scene.Result() == 0 ? length : 0);
    print.Add(bytes.data(), bytes.size());
    return bytes;
}

/// Lets `call` read a BMP file of 8 or 24 bits.
template <class Call>
void ReadBmp(Scene& scene, Fingerprint& print, Call&& call) {
    const ScratchFile file;
    {
        Argument<const TqLeadBitmap*> bitmap(scene, "bitmap", Checking::kChecked);
        tqLeadBmpToDiskBmp(file.Name(), bitmap.Pass());
    }
    if (file.Exists()) file.Write(Prepare(scene, [&] { return file.Bytes(); }));
    Argument<const TqImageHeader*> info(scene, "info", Checking::kChecked);
    scene.Make(print, [&] { return call(file.Name(), info.Pass()); });
}

}  // namespace

void CallHandleToString(Scene& scene, Fingerprint& print) {
    MakeByteString(scene, print);
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

void CallCompressImage(Scene& scene, Fingerprint& print) {
    MakeJpeg(scene, print);
}

void CallDecompressImage(Scene& scene, Fingerprint& print) {
    // A changed byte may leave a few bytes of the picture over. How many of them go unnoticed depends on the
    // width of the codec's registers.
    const Bytes bytes = Prepare(
        scene, [&] { return MakeJpeg(scene, print); }, Damage::kCut);
    Argument<const TqImageHeader*> info(scene, "info", Checking::kChecked);
    TqImage** const image = scene.AnySlot();
    scene.Make(print, [&] {
        return tqDecompressImage(bytes.data(), static_cast<std::uint32_t>(bytes.size()), info.Pass(), image);
    });
}

void CallDiskBmpToImage(Scene& scene, Fingerprint& print) {
    TqImage** const image = scene.AnySlot();
    ReadBmp(scene, print, [&](auto* name, auto* info) { return tqDiskBmpToImage(name, info, image); });
}

void CallColorBitmapToImage(Scene& scene, Fingerprint& print) {
    TqImage** const first = scene.AnySlot();
    TqImage** const second = scene.AnySlot();
    TqImage** const third = scene.AnySlot();
    ReadBmp(scene, print, [&](auto* name, auto* info) {
        return tq24bitColorBitmapToImage(name, info, first, second, third);
    });
}

}  // namespace tqtest
