/** @file exchange.h
 *  Single pels and the exchange of whole images with hosts: byte strings, SAFEARRAYs, variants, plain arrays.
 *
 *  Co-ordinates outside an image mean the nearest pel of its border; pel access never fails on them.
 *
 *  SAFEARRAYs that hold images are indexed (column, row): a host declares (columns, rows) in that order, and
 *  the column varies fastest in memory. Indices start at 0 whatever lower bound the host declared, so an
 *  array whose lower bounds are not 0 is not read in full. Where an array carries its element type, it must
 *  be an integer of the size named; the wrong type and a null array are refused like a wrong element size.
 *
 *  Plain arrays hold column after column: the value of column c and row r is element PelRows x c + r.
 */
#ifndef TQIMAGE_EXCHANGE_H
#define TQIMAGE_EXCHANGE_H

#include "tqimage/automation.h"
#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup exchange Pels and exchange with hosts
 *  @ingroup core
 *  @copydoc exchange.h
 *  @{ */

/**
 * @brief Reads one pel by co-ordinates that start at 1.
 * @param[in] image the image
 * @param[in] col column, pels, 1-based, clamped to 1..PelCols
 * @param[in] row row, pels, 1-based, clamped to 1..PelRows
 * @return the pel, 0..65535; -1 when the image is invalid
 */
TQ_API int32_t TQ_CALL tqGetImgPel(const TqImage* image, int32_t col, int32_t row);

/**
 * @brief Reads one pel by co-ordinates that start at 0.
 * @param[in] image the image
 * @param[in] col column, pels, 0-based, clamped to 0..PelCols - 1
 * @param[in] row row, pels, 0-based, clamped to 0..PelRows - 1
 * @return the pel, 0..65535; -1 when the image is invalid
 */
TQ_API int32_t TQ_CALL tqGetImgPel0(const TqImage* image, int32_t col, int32_t row);

/**
 * @brief Writes one pel by co-ordinates that start at 1.
 * @param[in,out] image the image; its header stays as it is
 * @param[in] col column, pels, 1-based, clamped to 1..PelCols
 * @param[in] row row, pels, 1-based, clamped to 1..PelRows
 * @param[in] value grey level; its low 16 bits are stored
 * @return value as it was passed; -1 when the image is invalid
 */
TQ_API int32_t TQ_CALL tqPutImgPel(TqImage* image, int32_t col, int32_t row, int32_t value);

/**
 * @brief Writes one pel by co-ordinates that start at 0.
 * @param[in,out] image the image; its header stays as it is
 * @param[in] col column, pels, 0-based, clamped to 0..PelCols - 1
 * @param[in] row row, pels, 0-based, clamped to 0..PelRows - 1
 * @param[in] value grey level; its low 16 bits are stored
 * @return value as it was passed; -1 when the image is invalid
 */
TQ_API int32_t TQ_CALL tqPutImgPel0(TqImage* image, int32_t col, int32_t row, int32_t value);

/**
 * @brief Writes one pel by co-ordinates that start at 0, for hosts whose grey levels are signed 16-bit
 * numbers.
 * @param[in,out] image the image; its header stays as it is
 * @param[in] col column, pels, 0-based, clamped to 0..PelCols - 1
 * @param[in] row row, pels, 0-based, clamped to 0..PelRows - 1
 * @param[in] value grey level; its low 16 bits are stored
 * @return the stored 16 bits as a signed number, -32768..32767; -1 when the image is invalid
 */
TQ_API int32_t TQ_CALL tqPutShortImgPel(TqImage* image, int32_t col, int32_t row, int32_t value);

/**
 * @brief Replaces one grey level by another throughout an image.
 * @param[in,out] image the image; its header stays as it is
 * @param[in] oldValue grey level to replace; above 65535 no pel has it
 * @param[in] newValue grey level to put there
 * @return 0; -1 when the image is invalid
 */
TQ_API int32_t TQ_CALL tqReplacePelValue(TqImage* image, uint32_t oldValue, uint16_t newValue);

/**
 * @brief Replaces one grey level by another throughout the image that a block pointer holds.
 * @param[in,out] image address of the host's block pointer; the image is changed in place
 * @param[in] oldValue grey level to replace; above 65535 no pel has it
 * @param[in] newValue grey level to put there
 * @return 0; -2 when the image is invalid
 * @par Ownership
 * The block stays the one that it is.
 */
TQ_API int32_t TQ_CALL tqSubstituteValue(TqImage** image, uint32_t oldValue, uint16_t newValue);

/**
 * @brief Writes a whole image block, header and pels, to a byte buffer of the host.
 * @param[in] image the image
 * @param[out] destination the buffer; uncompressed it must hold 56 bytes and 2 bytes a pel
 * @param[out] destinationLength receives the number of bytes written
 * @param[in] capacity size of the buffer, bytes; used only when compressing
 * @param[in] compress 0 plain bytes, otherwise a zlib stream of the highest compression
 * @return 0; -1 when the image is invalid or a pointer is null; -2 when the compressed form does not fit or
 *         cannot be made
 * @par Memory
 * Compressing: zlib's working memory, about 270 KB.
 * @par Source
 * RFC 1950, RFC 1951.
 */
TQ_API int32_t TQ_CALL tqHandleToString(const TqImage* image, uint8_t* destination,
                                        uint32_t* destinationLength, uint32_t capacity, int32_t compress);

/**
 * @brief Makes a block of a byte string; an image block when the string came from tqHandleToString.
 * @param[in] source the bytes
 * @param[in] sourceLength number of bytes
 * @param[out] result receives the block; what it held is not freed
 * @param[in] compressed 0 plain bytes, otherwise a zlib stream of at most 6,500,000 bytes when restored
 * @return 0; -1 when a pointer is null or the block cannot be allocated; -4 when the stream is damaged or
 *         restores to more than 6,500,000 bytes
 * @par Ownership
 * The block belongs to the host, which releases it with tqImageFree.
 * @par Memory
 * The block; decompressing, 6,500,000 bytes more.
 * @par Source
 * RFC 1950, RFC 1951.
 * @note A string that ends before the image that its header describes gives that image, the missing pels 0. A
 *       string that is no image gives a block with its bytes.
 */
TQ_API int32_t TQ_CALL tqStringToHandle(const uint8_t* source, uint32_t sourceLength, void** result,
                                        int32_t compressed);

/**
 * @brief Makes a block of a byte string whose restored length is known, without tqStringToHandle's limit.
 * @param[in] source the bytes
 * @param[in] sourceLength number of bytes
 * @param[out] result receives the block; what it held is not freed
 * @param[in] expectedLength length when restored, bytes; 0 acts as tqStringToHandle
 * @param[in] compressed 0 plain bytes, otherwise a zlib stream
 * @return 0; -1 when a pointer is null or the block cannot be allocated; the zlib status when the stream
 *         cannot be restored: -3 damaged, -4 no memory, -5 longer than expected
 * @par Ownership
 * The block belongs to the host, which releases it with tqImageFree. After a zlib status *result holds the
 * address of a block that is already freed: it must not be used or freed.
 * @par Memory
 * The block.
 * @par Source
 * RFC 1950, RFC 1951.
 */
TQ_API int32_t TQ_CALL tqStringToHandle2(const uint8_t* source, uint32_t sourceLength, void** result,
                                         uint32_t expectedLength, int32_t compressed);

/**
 * @brief Makes an image of an array of 32-bit integers.
 * @param[in,out] image address of the host's block pointer; receives the image
 * @param[in] array address of the host's array: two dimensions (columns, rows), 4-byte elements, grey levels
 *            clamped to 0..65535
 * @return 0; -2 when a pointer is null, the elements are not 4-byte integers or the image cannot be
 *         allocated: *image is untouched; -3 when the array has not two dimensions or cannot be locked; -4
 *         when an element cannot be read: the array stays locked; -5 when the array cannot be unlocked
 * @par Ownership
 * The block that *image held is freed. The image belongs to the host, after a failure to lock, read or unlock
 * too: it is then filled in part, the rest 0.
 * @par Memory
 * The image.
 * @note The header holds the sizes and binning factors of 1, the rest of it is 0.
 */
TQ_API int32_t TQ_CALL tqSafeArrayToHandle(TqImage** image, SAFEARRAY** array);

/**
 * @brief Makes an image of an array of 16-bit integers, bit for bit.
 * @param[in,out] image address of the host's block pointer; receives the image
 * @param[in] array address of the host's array: two dimensions (columns, rows), 2-byte elements, grey levels
 * @return 0; -2 when a pointer is null, the elements are not 2-byte integers or the image cannot be
 *         allocated: *image is untouched; -3 when the array has not two dimensions or cannot be locked; -5
 *         when it cannot be unlocked
 * @par Ownership
 * The block that *image held is freed. The image belongs to the host, after a failure to lock or unlock too.
 * @par Memory
 * The image.
 * @note The header holds the sizes and binning factors of 1, the rest of it is 0. Negative elements are grey
 *       levels above 32767; lower bounds do not matter.
 */
TQ_API int32_t TQ_CALL tqShortSafeArrayToHandle(TqImage** image, SAFEARRAY** array);

/**
 * @brief Makes an image of a header and a plain array of unsigned grey levels.
 * @param[in,out] image address of the host's block pointer; receives the image
 * @param[in] info the header, all 14 fields; its columns and rows, pels, give the size and are not held to
 *            1..8000
 * @param[in] values PelCols x PelRows grey levels, column after column
 * @return 0; -2 when a pointer is null, a side is negative or the image cannot be allocated: *image is
 *         untouched
 * @par Ownership
 * The block that *image held is freed. The image belongs to the host.
 * @par Memory
 * The image.
 */
TQ_API int32_t TQ_CALL tqShortSafeArrayToHandle2(TqImage** image, const TqImageHeader* info,
                                                 const uint16_t* values);

/**
 * @brief Makes an image of a header and a plain array of signed grey levels; negative ones become 0.
 * @param[in,out] image address of the host's block pointer; receives the image
 * @param[in] info the header, all 14 fields; its columns and rows, pels, give the size and are not held to
 *            1..8000
 * @param[in] values PelCols x PelRows grey levels, column after column
 * @return 0; -2 when a pointer is null, a side is negative or the image cannot be allocated: *image is
 *         untouched
 * @par Ownership
 * The block that *image held is freed. The image belongs to the host.
 * @par Memory
 * The image.
 */
TQ_API int32_t TQ_CALL tqShortSafeArrayToHandleNew(TqImage** image, const TqImageHeader* info,
                                                   const int16_t* values);

/**
 * @brief Copies an image's pels to a plain array.
 * @param[in] image the image
 * @param[out] values receives PelCols x PelRows grey levels, column after column
 * @return 0; -1 when the image is invalid or values is null
 */
TQ_API int32_t TQ_CALL tqHandleToShortSafeArray(const TqImage* image, uint16_t* values);

/**
 * @brief Copies an image's pels to a plain array, exactly as tqHandleToShortSafeArray does.
 * @param[in] image the image
 * @param[out] values receives PelCols x PelRows grey levels, column after column
 * @return 0; -1 when the image is invalid or values is null
 */
TQ_API int32_t TQ_CALL tqHandleToShortSafeArrayNew(const TqImage* image, uint16_t* values);

/**
 * @brief Makes a bare array of pels, without a header, of an array of 32-bit integers.
 * @param[out] pels receives the pels in the order in which the array lies in memory, leftmost index fastest;
 *                  what it held is not freed
 * @param[in] array address of the host's array: one or two dimensions, 4-byte elements, grey levels clamped
 *                  to 0..65535
 * @return 0; -1 when the pels cannot be allocated or pels is null; -2 when the array is null or its elements
 *         are not 4-byte integers; -3 when it cannot be locked; -4 when an element of one dimension, -5 when
 *         an element of two dimensions cannot be read; -6 when it has another number of dimensions; -7 when
 *         it cannot be unlocked. After -4, -5 and -6 the array stays locked.
 * @par Ownership
 * The pels belong to the host, which releases them with tqImageFree; from -3 on they have been allocated and
 * handed over as well.
 * @par Memory
 * 2 bytes an element.
 */
TQ_API int32_t TQ_CALL tqGetSafeArrayHandle(uint16_t** pels, SAFEARRAY** array);

/**
 * @brief Writes bare pels to an array of 32-bit integers that the host created.
 * @param[in] pels as many grey levels as the array has elements
 * @param[in,out] array address of the host's array: one or two dimensions, 4-byte elements
 * @return 0; -2 when a pointer is null or the elements are not 4-byte integers; -3 when the array cannot be
 *         locked; -4 when an element of one dimension, -5 when an element of two dimensions cannot be
 *         written; -6 when it has another number of dimensions; -7 when it cannot be unlocked. After -4, -5
 *         and -6 the array stays locked.
 * @note In two dimensions consecutive pels run along the rightmost index, the other way round than
 *       tqGetSafeArrayHandle reads. The range of either index is the count of the other dimension, so only an
 *       array with as many columns as rows is written in full; for others writing ends with -5. Hosts rely on
 *       this order.
 */
TQ_API int32_t TQ_CALL tqGetSafeArray(const uint16_t* pels, SAFEARRAY** array);

/**
 * @brief Makes an array of the block averages around every pel.
 * @param[in] image the image
 * @param[in] ellipse 0 averages over rectangular blocks, otherwise over elliptic ones
 * @param[in] blockWidth full width of the block, pels; below 1 counts as 1
 * @param[in] blockHeight full height of the block, pels; below 1 counts as 1
 * @param[in,out] array address of the host's array pointer; receives an array of doubles, dimensions
 *                      (columns, rows), lower bounds 0, in grey levels
 * @return 0; -2 when the image is invalid or array is null; -3 when the array that *array holds cannot be
 *         destroyed; -4 when the new one cannot be created; -5 when it cannot be locked; -6 when the averages
 *         cannot be computed; -7 when it cannot be unlocked
 * @par Ownership
 * The array that *array holds is destroyed; a locked one is not, that is -3. The new one belongs to the host.
 * @par Memory
 * The array, 8 bytes a pel.
 * @note A block of 1 x 1 gives the pels themselves.
 */
TQ_API int32_t TQ_CALL tqGetPixelArray(const TqImage* image, int32_t ellipse, int32_t blockWidth,
                                       int32_t blockHeight, SAFEARRAY** array);

/**
 * @brief Makes a variant that holds the array of the block averages around every pel.
 * @param[in] image the image
 * @param[in] ellipse 0 averages over rectangular blocks, otherwise over elliptic ones
 * @param[in] blockWidth full width of the block, pels, clamped to 1..PelCols
 * @param[in] blockHeight full height of the block, pels, clamped to 1..PelRows
 * @param[out] result receives an array of doubles, dimensions (columns, rows), lower bounds 0, in grey
 *                    levels; what it held is neither read nor released
 * @return 0; -1 when the image is invalid; -4 when result is null or the array cannot be made: the variant is
 *         untouched
 * @par Ownership
 * The variant belongs to the host, which releases it with VariantClear.
 * @par Memory
 * The array, 8 bytes a pel.
 */
TQ_API int32_t TQ_CALL tqGetPelArray(const TqImage* image, int32_t ellipse, int32_t blockWidth,
                                     int32_t blockHeight, VARIANT* result);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
