/** @file point_operations.h
 *  Operations that make each pel from the pels at the same place of one or two images.
 */
#ifndef TQIMAGE_POINT_OPERATIONS_H
#define TQIMAGE_POINT_OPERATIONS_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @brief Subtracts an image, usually a dark exposure, and keeps 0 where the result would be 0 or below.
 *
 * The subtrahend may be larger than the image. Where the image lies in it is told by the subtrahend's own
 * CenterCol and CenterRow, truncated to whole pels: pel (0, 0) of the image meets pel (CenterCol, CenterRow)
 * of the subtrahend. An offset of -1 counts as 0.
 *
 * @param[in,out] a Address of the pointer to the image; the result, with the image's whole header, replaces
 *                  it. Untouched when the function fails.
 * @param[in] b     Image to subtract; may be the image itself. It covers the image from the offset on.
 * @return 0; -2 a is null or invalid; -3 b is null or invalid; -7 column offset below -1; -8 row offset below
 *         -1, or b does not cover the image; -5 no memory.
 * @par Ownership
 * The block that a held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note The checks run in this order: b's size against both offsets as given, the column offset, the row
 *       offset, b's size again with an offset of -1 taken as 0. No field of the header is recomputed.
 */
TQ_API int32_t TQ_CALL tqSubtractImage(TqImage** a, const TqImage* b);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
