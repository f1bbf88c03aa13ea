#include "core/image_view.h"

namespace tq {
namespace {

template <class View, class Block, class Header, class PelType>
View Locate(Block* image) noexcept {
    auto* header = reinterpret_cast<Header*>(image);
    if (header == nullptr || !IsValidSide(header->PelCols) || !IsValidSide(header->PelRows)) return {};
    return {header, reinterpret_cast<PelType*>(header + 1), header->PelCols, header->PelRows};
}

}  // namespace

ConstImageView LocateImage(const TqImage* image) noexcept {
    return Locate<ConstImageView, const TqImage, const TqImageHeader, const Pel>(image);
}

ImageView LocateImage(TqImage* image) noexcept {
    return Locate<ImageView, TqImage, TqImageHeader, Pel>(image);
}

}  // namespace tq
