#include "library.h"

#include <algorithm>
#include <new>
#include <type_traits>

#include "failure.h"
#include "text.h"
#include "tqimage/image.h"

namespace cli {

HostImage::HostImage(const GreyImage& pels, const TqImageHeader& header)
    : HostImage(header.PelCols, header.PelRows) {
    std::copy(pels.pels.begin(), pels.pels.end(), Row(0));
    SetHeader(header);
}

HostImage::HostImage(std::int32_t cols, std::int32_t rows) {
    TqImageHeader header{};
    header.PelCols = cols;
    header.PelRows = rows;
    header.BinCols = 1;
    header.BinRows = 1;
    if (tqCreateImage(&header, &block_) != 0) throw std::bad_alloc();
    tqClearImagePels(block_);
}

HostImage::~HostImage() {
    tqImageFree(&block_);
}

TqImageHeader HostImage::Header() const {
    TqImageHeader header{};
    tqGetImageInfo(&header, block_);
    return header;
}

void HostImage::SetHeader(const TqImageHeader& header) {
    tqSetImageInfo(block_, &header);
}

const std::uint16_t* HostImage::Row(std::int32_t row) const noexcept {
    const auto* const pels = reinterpret_cast<const std::uint16_t*>(
        reinterpret_cast<const std::uint8_t*>(block_) + sizeof(TqImageHeader));
    return pels + static_cast<std::int64_t>(row) * tqGetPelCols(block_);
}

std::uint16_t* HostImage::Row(std::int32_t row) noexcept {
    return const_cast<std::uint16_t*>(static_cast<const HostImage*>(this)->Row(row));
}

GreyImage ToGreyImage(const HostImage& image) {
    const TqImageHeader header = image.Header();
    GreyImage copy{header.PelCols, header.PelRows, 16, {}};
    copy.pels.assign(image.Row(0), image.Row(header.PelRows));
    return copy;
}

template <class Number>
HostArray<Number>::HostArray(std::size_t first, std::size_t second) {
    SAFEARRAYBOUND bounds[] = {{static_cast<std::uint32_t>(first), 0},
                               {static_cast<std::uint32_t>(second), 0}};
    array_ = SafeArrayCreate(std::is_same_v<Number, double> ? VT_R8 : VT_I4, 2, bounds);
    if (!array_) throw std::bad_alloc();
}

template <class Number>
HostArray<Number>::~HostArray() {
    // A repair that fails leaves its list locked, and a locked array cannot be destroyed.
    while (SafeArrayDestroy(array_) != S_OK && SafeArrayUnlock(array_) == S_OK) {
    }
}

template <class Number>
void HostArray<Number>::Put(std::size_t first, std::size_t second, Number value) {
    LONG index[] = {static_cast<LONG>(first), static_cast<LONG>(second)};
    if (SafeArrayPutElement(array_, index, &value) != S_OK) throw std::bad_alloc();
}

template class HostArray<std::int32_t>;
template class HostArray<double>;

void Require(std::int32_t status, const std::string& subject, const char* what) {
    if (status != 0) FailMeasurement(subject, Format("%s failed (code %d)", what, status));
}

double RequirePositive(double result, const std::string& subject, const char* what) {
    if (!(result >= 0.0)) FailMeasurement(subject, Format("%s failed (code %g)", what, result));
    return result;
}

}  // namespace cli
