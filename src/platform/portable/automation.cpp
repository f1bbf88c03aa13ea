#include "platform/automation.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>

#include "platform/huge_pages.h"

namespace {

/// The type stands in the last four of the bytes before the descriptor; 16 of them keep its alignment.
constexpr std::size_t kHiddenBytes = 16;
constexpr ULONG kMostLocks = 65535;

/// Bytes of one element, 0 for a type that is not a plain number.
ULONG ElementBytes(VARTYPE type) noexcept {
    switch (type) {
        case VT_I1:
        case VT_UI1:
            return 1;
        case VT_I2:
        case VT_UI2:
        case VT_BOOL:
            return 2;
        case VT_I4:
        case VT_UI4:
        case VT_INT:
        case VT_UINT:
        case VT_ERROR:
        case VT_R4:
            return 4;
        case VT_R8:
        case VT_I8:
        case VT_UI8:
        case VT_CY:
        case VT_DATE:
            return 8;
        default:
            return 0;
    }
}

/// Bytes of all elements; the largest number when they pass the 32 bits in which array sizes are counted.
std::uint64_t DataBytes(ULONG elementBytes, UINT dims, const SAFEARRAYBOUND* bounds) noexcept {
    constexpr std::uint64_t kLimit = std::numeric_limits<ULONG>::max();
    std::uint64_t bytes = elementBytes;
    bool empty = false;
    for (UINT i = 0; i < dims; ++i) {
        empty = empty || bounds[i].cElements == 0;
        // Both factors are below 2^32, so the product is exact before it is cut.
        if (bytes <= kLimit) bytes *= bounds[i].cElements == 0 ? 1 : bounds[i].cElements;
    }
    if (empty) return 0;
    return bytes <= kLimit ? bytes : std::numeric_limits<std::uint64_t>::max();
}

/// Address of an element, by indices that stand leftmost first while the bounds are stored last first.
HRESULT Locate(const SAFEARRAY& array, const LONG* indices, unsigned char** element) noexcept {
    if (array.cDims == 0 || array.pvData == nullptr) return E_UNEXPECTED;
    std::uint64_t number = 0;
    std::uint64_t stride = 1;
    for (unsigned dim = 0; dim < array.cDims; ++dim) {
        const SAFEARRAYBOUND& bound = array.rgsabound[array.cDims - 1u - dim];
        const std::int64_t steps = static_cast<std::int64_t>(indices[dim]) - bound.lLbound;
        if (steps < 0 || steps >= static_cast<std::int64_t>(bound.cElements)) return DISP_E_BADINDEX;
        number += static_cast<std::uint64_t>(steps) * stride;
        stride *= bound.cElements;
    }
    *element =
        static_cast<unsigned char*>(array.pvData) + static_cast<std::size_t>(number * array.cbElements);
    return S_OK;
}

}  // namespace

SAFEARRAY* TQ_CALL SafeArrayCreate(VARTYPE vt, UINT cDims, SAFEARRAYBOUND* rgsabound) {
    const ULONG elementBytes = ElementBytes(vt);
    if (elementBytes == 0 || cDims == 0 || cDims > std::numeric_limits<USHORT>::max() || !rgsabound) {
        return nullptr;
    }
    const std::uint64_t dataBytes = DataBytes(elementBytes, cDims, rgsabound);
    if (dataBytes > std::numeric_limits<ULONG>::max()) return nullptr;
    const std::size_t descriptorBytes =
        offsetof(SAFEARRAY, rgsabound) + static_cast<std::size_t>(cDims) * sizeof(SAFEARRAYBOUND);

    auto* const memory = static_cast<unsigned char*>(
        ::operator new(kHiddenBytes + std::max(descriptorBytes, sizeof(SAFEARRAY)), std::nothrow));
    if (memory == nullptr) return nullptr;
    void* const data = ::operator new(static_cast<std::size_t>(dataBytes), std::nothrow);
    if (data == nullptr) {
        ::operator delete(memory);
        return nullptr;
    }
    tq::AdviseHugePages(data, static_cast<std::size_t>(dataBytes));
    std::memset(data, 0, static_cast<std::size_t>(dataBytes));

    const std::uint32_t type = vt;
    std::memset(memory, 0, kHiddenBytes);
    std::memcpy(memory + kHiddenBytes - sizeof type, &type, sizeof type);
    auto* const array = new (memory + kHiddenBytes) SAFEARRAY{};
    array->cDims = static_cast<USHORT>(cDims);
    array->fFeatures = FADF_HAVEVARTYPE;
    array->cbElements = elementBytes;
    array->pvData = data;
    SAFEARRAYBOUND* const stored = array->rgsabound;
    for (UINT i = 0; i < cDims; ++i)
        stored[i] = rgsabound[cDims - 1 - i];
    return array;
}

HRESULT TQ_CALL SafeArrayDestroy(SAFEARRAY* psa) {
    if (psa == nullptr) return S_OK;
    if (psa->cLocks != 0) return DISP_E_ARRAYISLOCKED;
    if ((psa->fFeatures & (FADF_AUTO | FADF_STATIC | FADF_EMBEDDED)) != 0) return S_OK;
    ::operator delete(psa->pvData);
    ::operator delete(reinterpret_cast<unsigned char*>(psa) - kHiddenBytes);
    return S_OK;
}

// The count is atomic because two calls may read one array side by side, and each locks it.
HRESULT TQ_CALL SafeArrayLock(SAFEARRAY* psa) {
    if (psa == nullptr) return E_INVALIDARG;
    std::atomic_ref<ULONG> locks(psa->cLocks);
    ULONG count = locks.load();
    do {
        if (count >= kMostLocks) return E_UNEXPECTED;
    } while (!locks.compare_exchange_weak(count, count + 1));
    return S_OK;
}

HRESULT TQ_CALL SafeArrayUnlock(SAFEARRAY* psa) {
    if (psa == nullptr) return E_INVALIDARG;
    std::atomic_ref<ULONG> locks(psa->cLocks);
    ULONG count = locks.load();
    do {
        if (count == 0) return E_UNEXPECTED;
    } while (!locks.compare_exchange_weak(count, count - 1));
    return S_OK;
}

HRESULT TQ_CALL SafeArrayGetElement(SAFEARRAY* psa, LONG* rgIndices, void* pv) {
    if (psa == nullptr || rgIndices == nullptr || pv == nullptr) return E_INVALIDARG;
    unsigned char* element = nullptr;
    const HRESULT status = Locate(*psa, rgIndices, &element);
    if (status == S_OK) std::memcpy(pv, element, psa->cbElements);
    return status;
}

HRESULT TQ_CALL SafeArrayPutElement(SAFEARRAY* psa, LONG* rgIndices, void* pv) {
    if (psa == nullptr || rgIndices == nullptr || pv == nullptr) return E_INVALIDARG;
    unsigned char* element = nullptr;
    const HRESULT status = Locate(*psa, rgIndices, &element);
    if (status == S_OK) std::memcpy(element, pv, psa->cbElements);
    return status;
}

UINT TQ_CALL SafeArrayGetDim(SAFEARRAY* psa) {
    return psa == nullptr ? 0 : psa->cDims;
}

UINT TQ_CALL SafeArrayGetElemsize(SAFEARRAY* psa) {
    return psa == nullptr ? 0 : psa->cbElements;
}

void TQ_CALL VariantInit(VARIANT* pvarg) {
    if (pvarg != nullptr) *pvarg = VARIANT{};
}

HRESULT TQ_CALL VariantClear(VARIANT* pvarg) {
    if (pvarg == nullptr) return E_INVALIDARG;
    const auto type = static_cast<VARTYPE>(pvarg->vt & ~(VT_ARRAY | VT_BYREF));
    const bool isNumber = type == VT_EMPTY || type == VT_NULL || ElementBytes(type) != 0;
    if (!isNumber) return DISP_E_BADVARTYPE;
    const bool ownsArray = (pvarg->vt & VT_ARRAY) != 0 && (pvarg->vt & VT_BYREF) == 0;
    if (ownsArray) {
        const HRESULT status = SafeArrayDestroy(pvarg->parray);
        if (status != S_OK) return status;
    }
    VariantInit(pvarg);
    return S_OK;
}
