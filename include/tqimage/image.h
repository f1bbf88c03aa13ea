/** @file image.h
 *  Image blocks: creation, copies, release, the header and whole-image filling.
 */
#ifndef TQIMAGE_IMAGE_H
#define TQIMAGE_IMAGE_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup image Image blocks
 *  @ingroup core
 *  @copydoc image.h
 *  @{ */

/**
 * @brief Creates an image block with a given header.
 * @param[in] info the header of the new image; the columns and rows, pels, decide the size, 0 included
 * @param[in,out] image address of the host's block pointer; receives the new block
 * @return 0; -1 when a pointer is null, a side is negative or no block of that size can be had
 * @par Ownership
 * A block that *image holds is freed first; when no block can be had *image is null. The new block belongs to
 * the host, which releases it with tqImageFree.
 * @par Memory
 * The new block: 56 bytes and 2 bytes a pel.
 * @note All 14 header fields are copied as they are. Sides are not held to 1..8000 here: an image outside
 *       that range is created, and refused by every function that validates its image. The pels are 0.
 * @note info may point at the header of the block that is replaced.
 */
TQ_API int32_t TQ_CALL tqCreateImage(const TqImageHeader* info, TqImage** image);

/**
 * @brief Creates an image block and tells where its pels lie, for hosts that fill header and pels themselves.
 * @param[in,out] image address of the host's block pointer; receives the new block
 * @param[out] blockAddress receives the low 32 bits of the block's address, on every build; may be null
 * @param[out] pels receives the address of the first pel; may be null
 * @param[in] cols columns, pels, 0 or more
 * @param[in] rows rows, pels, 0 or more
 * @return 0; -1 when image is null, a side is negative or no block of that size can be had
 * @par Ownership
 * A block that *image holds is freed first; when no block can be had *image is null. The new block belongs to
 * the host, which releases it with tqImageFree.
 * @par Memory
 * The new block: 56 bytes and 2 bytes a pel.
 * @note The header holds the sizes and binning factors of 1, the rest of it and the pels are 0. Hosts fill
 *       it before they use the image.
 */
TQ_API int32_t TQ_CALL tqCreateImageA(TqImage** image, int32_t* blockAddress, uint16_t** pels, int32_t cols,
                                      int32_t rows);

/**
 * @brief Frees an image block or any other block that the library handed out, and sets the pointer to null.
 * @param[in,out] image address of the host's block pointer
 * @return 0; -1 when image or *image is null
 * @par Ownership
 * The block is gone; copies of its address must not be used any more.
 * @note Nothing but the null pointer is tested, so an image with an impossible header can be freed.
 */
TQ_API int32_t TQ_CALL tqImageFree(TqImage** image);

/**
 * @brief Copies an image's whole header out.
 * @param[out] info receives all 14 fields
 * @param[in] image the image
 * @return 0; -1 when a pointer is null or the image's columns or rows are outside 1..8000: nothing is written
 */
TQ_API int32_t TQ_CALL tqGetImageInfo(TqImageHeader* info, const TqImage* image);

/**
 * @brief Replaces an image's whole header.
 * @param[in,out] image the image; only its header changes
 * @param[in] info the new header, all 14 fields; columns and rows 1..8000
 * @return 0; -1 when a pointer is null or the new columns or rows are outside 1..8000: nothing is written
 * @note New sizes are not compared with the block: a host that changes them answers for the block being as
 *       large as its header says.
 */
TQ_API int32_t TQ_CALL tqSetImageInfo(TqImage* image, const TqImageHeader* info);

/**
 * @brief Tells the size of the image that a distortion map was made for.
 * @param[in,out] info PelCols and PelRows receive the map's columns and rows, PelsPerMeterX and
 *                PelsPerMeterY its CenterCol and CenterRow, pels; the other fields stay as they are
 * @param[in] source the head of a distortion map; not checked
 * @return always 0
 * @note The centre arrives in the resolution fields, and hosts read it there. Nothing is written when a
 *       pointer is null.
 */
TQ_API int32_t TQ_CALL tqGetKeyStoneImageInfo(TqImageHeader* info, const TqDistortionMap* source);

/**
 * @brief Copies an image, header and pels.
 * @param[in,out] destination address of the host's block pointer; receives the copy
 * @param[in] source the image to copy
 * @return 0; -1 when destination is null or the source invalid: the destination is untouched; -2 when the
 *         copy cannot be allocated
 * @par Ownership
 * A block that *destination holds is freed; after -2 *destination is null. The copy belongs to the host,
 * which releases it with tqImageFree.
 * @par Memory
 * The copy.
 * @note When *destination is the source itself it stays: it is its own copy.
 */
TQ_API int32_t TQ_CALL tqGlobalCopy(TqImage** destination, const TqImage* source);

/**
 * @brief Sets every pel to 0.
 * @param[in,out] image the image; its header stays as it is
 * @return 0; -1 when the image is invalid
 */
TQ_API int32_t TQ_CALL tqClearImagePels(TqImage* image);

/**
 * @brief Sets every pel to one value.
 * @param[in,out] image the image; its header stays as it is
 * @param[in] value grey level; below 0 counts as 0, above 65535 as 65535
 * @return 0; -1 when the image is invalid
 */
TQ_API int32_t TQ_CALL tqInitializeImagePels(TqImage* image, int32_t value);

/**
 * @brief Reads the header field PelCols.
 * @param[in] image an image block; not checked, not even for null
 * @return columns, pels
 */
TQ_API int32_t TQ_CALL tqGetPelCols(const TqImage* image);

/**
 * @brief Reads the header field PelRows.
 * @param[in] image an image block; not checked, not even for null
 * @return rows, pels
 */
TQ_API int32_t TQ_CALL tqGetPelRows(const TqImage* image);

/**
 * @brief Reads the header field PelsPerMeterX.
 * @param[in] image an image block; not checked, not even for null
 * @return horizontal resolution, pels per metre
 */
TQ_API float TQ_CALL tqGetPelsPerMeterX(const TqImage* image);

/**
 * @brief Reads the header field PelsPerMeterY.
 * @param[in] image an image block; not checked, not even for null
 * @return vertical resolution, pels per metre
 */
TQ_API float TQ_CALL tqGetPelsPerMeterY(const TqImage* image);

/**
 * @brief Reads the header field CenterCol.
 * @param[in] image an image block; not checked, not even for null
 * @return column of the optical centre, pels, 0-based
 */
TQ_API float TQ_CALL tqGetCenterCol(const TqImage* image);

/**
 * @brief Reads the header field CenterRow.
 * @param[in] image an image block; not checked, not even for null
 * @return row of the optical centre, pels, 0-based
 */
TQ_API float TQ_CALL tqGetCenterRow(const TqImage* image);

/**
 * @brief Reads the header field TotalPelValue.
 * @param[in] image an image block; not checked, not even for null
 * @return sum of all pels, grey levels, as last stored
 */
TQ_API double TQ_CALL tqGetTotalPelValue(const TqImage* image);

/**
 * @brief Reads the header field LuxPerGrey.
 * @param[in] image an image block; not checked, not even for null
 * @return illuminance of one grey level, lux
 */
TQ_API float TQ_CALL tqGetLuxPerGrey(const TqImage* image);

/**
 * @brief Reads the header field CenterPelValue.
 * @param[in] image an image block; not checked, not even for null
 * @return pel at the centre, grey levels, as last stored
 */
TQ_API float TQ_CALL tqGetCenterPelValue(const TqImage* image);

/**
 * @brief Reads the header field MaxPelValue.
 * @param[in] image an image block; not checked, not even for null
 * @return largest possible or largest present pel, grey levels, as last stored
 */
TQ_API float TQ_CALL tqGetMaxPelValue(const TqImage* image);

/**
 * @brief Reads the header field SourceDistance.
 * @param[in] image an image block; not checked, not even for null
 * @return distance from the source, metres
 */
TQ_API float TQ_CALL tqGetSourceDistance(const TqImage* image);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
