#include "tqimage/orientation.h"

#include <cstdint>
#include <optional>
#include <utility>

#include "core/replaced_image.h"
#include "geometry/sized_image.h"
#include "geometry/turn.h"

using namespace tq;

namespace {

constexpr std::int32_t kOk = 0;
constexpr std::int32_t kInvalidImage = -1;
constexpr std::int32_t kNoMemory = -2;

OwnedImage TurnImage(const ConstImageView& source, Turn turn) {
    const bool exchanged = ExchangesAxes(turn);
    OwnedImage result = MakeSized(source, exchanged ? source.rows : source.cols,
                                  exchanged ? source.cols : source.rows, NewPels::kUnwritten);
    TqImageHeader& header = result.Header();
    if (exchanged) {
        std::swap(header.PelsPerMeterX, header.PelsPerMeterY);
        std::swap(header.BinCols, header.BinRows);
    }
    const RasterPlace centre =
        TurnPlace(turn, {header.CenterCol, header.CenterRow}, source.cols, source.rows);
    header.CenterCol = centre.col;
    header.CenterRow = centre.row;
    TurnCells(turn, source.pels, source.cols, source.rows, result.View().pels);
    return result;
}

/// No turn is meant by an unknown mode: the image becomes black, and its header stays.
std::int32_t TurnHostImage(TqImage** image, std::optional<Turn> turn) {
    return ReplaceImage(image, kInvalidImage, kNoMemory, [&](const ConstImageView& source) {
        return turn ? TurnImage(source, *turn) : OwnedImage(source, NewPels::kZero);
    });
}

}  // namespace

std::int32_t TQ_CALL tqTransposeImage(TqImage** image, std::int32_t mode) {
    // Nothing is asked of the image when nothing is to be done; hosts pass what they have.
    if (mode == 0) return kOk;
    return TurnHostImage(image, TurnOfMode(mode, false));
}

std::int32_t TQ_CALL tqMirrorImage(TqImage** image) {
    return TurnHostImage(image, Turn::kMirror);
}

std::int32_t TQ_CALL tqMirrorTransposeImage(TqImage** image, std::int32_t mirror, std::int32_t mode) {
    if (mode == 0) return mirror == 0 ? kOk : TurnHostImage(image, Turn::kMirror);
    return TurnHostImage(image, TurnOfMode(mode, mirror != 0));
}
