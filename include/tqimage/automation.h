/** @file automation.h
 *  The OLE Automation arrays and variants and the global memory in which hosts exchange data.
 *
 *  On Windows these are the system's own; hosts include oleauto.h. Elsewhere the library brings equivalents
 *  with the published layouts and names, restricted to what the library exchanges: arrays and variants of
 *  numbers. Strings, objects and records are not supported.
 */
#ifndef TQIMAGE_AUTOMATION_H
#define TQIMAGE_AUTOMATION_H

#include "tqimage/base.h"

#if defined(_WIN32)

typedef struct tagSAFEARRAY SAFEARRAY;
typedef struct tagVARIANT VARIANT;

#else

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup automation Arrays, variants and global memory
 *  @ingroup core
 *  @copydoc automation.h
 *  @{ */

typedef int32_t LONG;     /**< index of an element */
typedef uint32_t ULONG;   /**< number of elements, bytes or locks */
typedef uint16_t USHORT;  /**< number of dimensions, set of flags */
typedef uint32_t UINT;    /**< number of dimensions or bytes, set of flags */
typedef int BOOL;         /**< 0 or not */
typedef size_t SIZE_T;    /**< bytes */
typedef uint16_t VARTYPE; /**< one of the VT_ codes */
typedef int32_t HRESULT;  /**< 0 for success, negative for failure */
typedef void* HGLOBAL;    /**< a handle of global memory */

/* Published values of the Windows interfaces. */
#define S_OK ((HRESULT)0)                           /**< success */
#define E_INVALIDARG ((HRESULT)-2147024809)         /**< 0x80070057 */
#define E_OUTOFMEMORY ((HRESULT)-2147024882)        /**< 0x8007000E */
#define E_UNEXPECTED ((HRESULT)-2147418113)         /**< 0x8000FFFF */
#define DISP_E_BADVARTYPE ((HRESULT)-2147352568)    /**< 0x80020008 */
#define DISP_E_BADINDEX ((HRESULT)-2147352565)      /**< 0x8002000B */
#define DISP_E_ARRAYISLOCKED ((HRESULT)-2147352563) /**< 0x8002000D */

#define GMEM_FIXED 0x0000u                   /**< the handle is the address */
#define GMEM_MOVEABLE 0x0002u                /**< the address is had with GlobalLock */
#define GMEM_ZEROINIT 0x0040u                /**< the memory is cleared */
#define GHND (GMEM_MOVEABLE | GMEM_ZEROINIT) /**< moveable and cleared */
#define GPTR (GMEM_FIXED | GMEM_ZEROINIT)    /**< fixed and cleared */

enum {
    VT_EMPTY = 0,
    VT_NULL = 1,
    VT_I2 = 2,
    VT_I4 = 3,
    VT_R4 = 4,
    VT_R8 = 5,
    VT_CY = 6,
    VT_DATE = 7,
    VT_ERROR = 10,
    VT_BOOL = 11,
    VT_I1 = 16,
    VT_UI1 = 17,
    VT_UI2 = 18,
    VT_UI4 = 19,
    VT_I8 = 20,
    VT_UI8 = 21,
    VT_INT = 22,
    VT_UINT = 23,
    VT_ARRAY = 0x2000,
    VT_BYREF = 0x4000
};

/** What fFeatures of an array says about its memory and its elements. */
enum {
    FADF_AUTO = 0x0001,        /**< the descriptor lies on a stack */
    FADF_STATIC = 0x0002,      /**< the memory is static */
    FADF_EMBEDDED = 0x0004,    /**< the descriptor is part of a structure */
    FADF_FIXEDSIZE = 0x0010,   /**< may not be resized */
    FADF_RECORD = 0x0020,      /**< elements are records */
    FADF_HAVEVARTYPE = 0x0080, /**< the 4 bytes before the descriptor hold the element type */
    FADF_BSTR = 0x0100,        /**< elements are strings */
    FADF_UNKNOWN = 0x0200,     /**< elements are objects */
    FADF_DISPATCH = 0x0400,    /**< elements are objects */
    FADF_VARIANT = 0x0800      /**< elements are variants */
};

/** One dimension of an array. */
typedef struct tagSAFEARRAYBOUND {
    ULONG cElements; /**< number of elements */
    LONG lLbound;    /**< index of the first one */
} SAFEARRAYBOUND;

/** An array's descriptor. The bounds are stored from right to left: rgsabound[0] describes the dimension that
 *  SafeArrayCreate was given last. The leftmost index varies fastest in memory. */
typedef struct tagSAFEARRAY {
    USHORT cDims;                /**< number of dimensions */
    USHORT fFeatures;            /**< flags of FADF_AUTO and its siblings */
    ULONG cbElements;            /**< bytes an element */
    ULONG cLocks;                /**< locks not yet taken back */
    void* pvData;                /**< the first element */
    SAFEARRAYBOUND rgsabound[1]; /**< cDims of them */
} SAFEARRAY;

/** A value with its type. */
typedef struct tagVARIANT {
    VARTYPE vt;          /**< which member of the union counts; VT_ARRAY: parray, VT_BYREF: byref */
    uint16_t wReserved1; /**< unused */
    uint16_t wReserved2; /**< unused */
    uint16_t wReserved3; /**< unused */
    __extension__ union {
        int64_t llVal;
        int32_t lVal;
        uint8_t bVal;
        int16_t iVal;
        float fltVal;
        double dblVal;
        int16_t boolVal;
        HRESULT scode;
        double date;
        int8_t cVal;
        uint16_t uiVal;
        uint32_t ulVal;
        uint64_t ullVal;
        int intVal;
        unsigned uintVal;
        SAFEARRAY* parray;
        SAFEARRAY** pparray;
        void* byref;
        struct {
            void* pvRecord;
            void* pRecInfo;
        } record; /**< no records here; it gives the union its published size */
    };
} VARIANT;

/**
 * @brief Creates an array of numbers, all 0.
 * @param[in] vt element type: VT_I1, VT_UI1, VT_I2, VT_UI2, VT_BOOL, VT_I4, VT_UI4, VT_INT, VT_UINT,
 *               VT_ERROR, VT_R4, VT_R8, VT_I8, VT_UI8, VT_CY or VT_DATE
 * @param[in] cDims number of dimensions, 1..65535
 * @param[in] rgsabound the dimensions, leftmost first
 * @return the array; null for another type, no dimensions, a size above 4 GiB or memory that cannot be had
 * @par Ownership
 * The caller releases the array with SafeArrayDestroy.
 */
TQ_API SAFEARRAY* TQ_CALL SafeArrayCreate(VARTYPE vt, UINT cDims, SAFEARRAYBOUND* rgsabound);

/**
 * @brief Releases an array.
 * @param[in] psa the array; null is nothing to do
 * @return S_OK; DISP_E_ARRAYISLOCKED while it is locked
 * @note Memory marked FADF_AUTO, FADF_STATIC or FADF_EMBEDDED is somebody else's and stays.
 */
TQ_API HRESULT TQ_CALL SafeArrayDestroy(SAFEARRAY* psa);

/**
 * @brief Keeps an array's data in place until the matching SafeArrayUnlock.
 * @param[in,out] psa the array
 * @return S_OK; E_INVALIDARG for null; E_UNEXPECTED after 65535 locks
 */
TQ_API HRESULT TQ_CALL SafeArrayLock(SAFEARRAY* psa);

/**
 * @brief Takes back one SafeArrayLock.
 * @param[in,out] psa the array
 * @return S_OK; E_INVALIDARG for null; E_UNEXPECTED when it is not locked
 */
TQ_API HRESULT TQ_CALL SafeArrayUnlock(SAFEARRAY* psa);

/**
 * @brief Copies one element out.
 * @param[in] psa the array
 * @param[in] rgIndices one index a dimension, leftmost first, counted from the dimension's lower bound
 * @param[out] pv receives the element, cbElements bytes
 * @return S_OK; E_INVALIDARG for a null pointer; DISP_E_BADINDEX for an index outside its dimension;
 *         E_UNEXPECTED for an array without data
 */
TQ_API HRESULT TQ_CALL SafeArrayGetElement(SAFEARRAY* psa, LONG* rgIndices, void* pv);

/**
 * @brief Replaces one element.
 * @param[in,out] psa the array
 * @param[in] rgIndices one index a dimension, leftmost first, counted from the dimension's lower bound
 * @param[in] pv the element, cbElements bytes
 * @return S_OK; E_INVALIDARG for a null pointer; DISP_E_BADINDEX for an index outside its dimension;
 *         E_UNEXPECTED for an array without data
 */
TQ_API HRESULT TQ_CALL SafeArrayPutElement(SAFEARRAY* psa, LONG* rgIndices, void* pv);

/**
 * @brief Counts an array's dimensions.
 * @param[in] psa the array
 * @return the number of dimensions, 0 for null
 */
TQ_API UINT TQ_CALL SafeArrayGetDim(SAFEARRAY* psa);

/**
 * @brief Tells the size of an array's elements.
 * @param[in] psa the array
 * @return bytes an element, 0 for null
 */
TQ_API UINT TQ_CALL SafeArrayGetElemsize(SAFEARRAY* psa);

/**
 * @brief Makes a variant empty without looking at what it held.
 * @param[out] pvarg the variant
 */
TQ_API void TQ_CALL VariantInit(VARIANT* pvarg);

/**
 * @brief Releases what a variant holds and makes it empty.
 * @param[in,out] pvarg the variant
 * @return S_OK; E_INVALIDARG for null; DISP_E_ARRAYISLOCKED when it holds a locked array; DISP_E_BADVARTYPE
 *         for a type that is not a number or an array of numbers: the variant is untouched
 * @par Ownership
 * An array in the variant is destroyed; what a VT_BYREF variant points at is not touched.
 */
TQ_API HRESULT TQ_CALL VariantClear(VARIANT* pvarg);

/**
 * @brief Allocates global memory.
 * @param[in] uFlags GMEM_FIXED or GMEM_MOVEABLE, and GMEM_ZEROINIT
 * @param[in] dwBytes size, bytes
 * @return the handle, for fixed memory its address; null when the memory cannot be had
 * @par Ownership
 * The caller releases the handle with GlobalFree.
 */
TQ_API HGLOBAL TQ_CALL GlobalAlloc(UINT uFlags, SIZE_T dwBytes);

/**
 * @brief Tells the address of global memory and keeps it there until the matching GlobalUnlock.
 * @param[in] hMem the handle
 * @return the address; null for a handle that is not one and for moveable memory of 0 bytes
 */
TQ_API void* TQ_CALL GlobalLock(HGLOBAL hMem);

/**
 * @brief Takes back one GlobalLock.
 * @param[in] hMem the handle
 * @return non-zero while the memory is still locked, always for fixed memory; 0 otherwise and for a handle
 *         that is not one
 */
TQ_API BOOL TQ_CALL GlobalUnlock(HGLOBAL hMem);

/**
 * @brief Tells the size of global memory.
 * @param[in] hMem the handle
 * @return bytes, at least those asked for; 0 for a handle that is not one
 */
TQ_API SIZE_T TQ_CALL GlobalSize(HGLOBAL hMem);

/**
 * @brief Releases global memory, locked or not.
 * @param[in] hMem the handle
 * @return null; the handle itself when it is not one
 */
TQ_API HGLOBAL TQ_CALL GlobalFree(HGLOBAL hMem);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif

#endif
