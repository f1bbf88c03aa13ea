#include "special_calls.h"

#include <iterator>
#include <map>
#include <vector>

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

/// An image of two grey levels on the sides of a slanted line, for which there is a resolution.
void CallCalcMtf(Scene& scene, Fingerprint& print) {
    Draw& draw = scene.Choice();
    TqImage* image = scene.MakeImage(draw.Between(15, 60), draw.Between(8, 40));
    const auto& header = *reinterpret_cast<const TqImageHeader*>(image);
    const double slope = 0.5 * draw.Fraction();
    const bool isUpright = draw.OneIn(2);
    const std::int32_t middle = (isUpright ? header.PelCols : header.PelRows) / 2;
    for (std::int32_t row = 0; row < header.PelRows; ++row) {
        for (std::int32_t col = 0; col < header.PelCols; ++col) {
            const double place = isUpright ? col + slope * row : row + slope * col;
            tqPutImgPel0(image, col, row, place < middle ? 1000 : 30000);
        }
    }
    std::vector<double> mtf(64);
    double mtf50 = 0, angle = 0;
    const std::int32_t count = draw.Between(-1, 64);
    const std::int32_t right = draw.OneIn(4) ? scene.DrawInt("right", Checking::kChecked) : 0;
    const std::int32_t bottom = draw.OneIn(4) ? scene.DrawInt("bottom", Checking::kChecked) : 0;
    scene.Make(print,
               [&] { return tqCalcMTF(image, 0, 0, right, bottom, count, mtf.data(), &mtf50, &angle); });
    for (const double value : mtf)
        print.Add(value);
    print.Add(mtf50);
    print.Add(angle);
    tqImageFree(&image);
}

/// Marks about where a camera before the middle of an upright cylinder sees them.
void CallCalcCylinderKeyStone(Scene& scene, Fingerprint& print) {
    Draw& draw = scene.Choice();
    TqDistortionMap* map = nullptr;
    const TqImage* const image = scene.AnyImage(Checking::kChecked);
    double points[] = {0.1, 0.2, 0.5, 0.1, 0.9, 0.2, 0.9, 0.8, 0.5, 0.9, 0.1, 0.8};
    for (std::size_t i = 0; i < std::size(points); ++i) {
        points[i] = points[i] * (i % 2 == 0 ? scene.Cols() : scene.Rows()) + 0.5 * draw.Fraction();
        if (draw.OneIn(100)) points[i] = scene.DrawReal("col");
    }
    const double halfAngle = draw.OneIn(8) ? scene.DrawReal("angle") : 0.2 + draw.Fraction();
    const double heightOverRadius = draw.OneIn(8) ? scene.DrawReal("ratio") : 0.5 + draw.Fraction();
    double rms = 0;
    scene.Make(print, [&] {
        return tqCalcCylinderKeyStone(&map, image, points, halfAngle, heightOverRadius, &rms);
    });
    print.Add(rms);
    AddMap(print, map);
    if (map != nullptr) tqImageFree(reinterpret_cast<TqImage**>(&map));
}

/// A table with as many models as the setting says, of lenses that bend a little.
void CallBuildLensDistortionImage(Scene& scene, Fingerprint& print) {
    Draw& draw = scene.Choice();
    const TqLensSetting setting{scene.Cols(),
                                scene.Rows(),
                                draw.Between(0, 3),
                                draw.Between(0, 3),
                                static_cast<float>(draw.Between(-1, 6)) * 0.5f,
                                static_cast<float>(draw.Between(-1, 6)) * 0.5f};
    const std::int32_t models = 1 + setting.CountA * setting.CountB - (draw.OneIn(8) ? 1 : 0);
    const double most = draw.OneIn(6) ? 1.0 : 0.01;
    HostArray table =
        MakeDoubleArray(static_cast<std::uint32_t>(models), draw.OneIn(12) ? 8 : 9, [&](int, int field) {
            if (field == 8) return 1.0;
            return field < 3 ? 10.0 + 30.0 * draw.Fraction() : most * draw.Fraction();
        });
    TqDistortionMap* map = nullptr;
    scene.Make(print, [&] { return tqBuildLensDistortionImage(&map, &setting, table.Address()); });
    AddMap(print, map);
    if (map != nullptr) tqImageFree(reinterpret_cast<TqImage**>(&map));
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
        {"tqBuildLensDistortionImage", CallBuildLensDistortionImage},
        {"tqCalcCylinderKeyStone", CallCalcCylinderKeyStone},
        {"tqCalcMTF", CallCalcMtf},
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
