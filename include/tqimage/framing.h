/** @file framing.h
 *  Rectangles cut out of an image, and images set into a larger frame.
 *
 *  The optical centre moves with the pels; all other header fields but the sizes are copied.
 */
#ifndef TQIMAGE_FRAMING_H
#define TQIMAGE_FRAMING_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup framing Cutting out and framing
 *  @ingroup geometry
 *  @copydoc framing.h
 *  @{ */

/**
 * @brief Cuts an image down to a rectangle, corners included, counted from 1.
 * @param[in,out] image address of the host's block pointer; receives the cut image
 * @param[in] col1 column of a corner, pels from 1, any value (clamped)
 * @param[in] row1 row of that corner
 * @param[in] col2 column of the opposite corner
 * @param[in] row2 row of that corner
 * @return 0; -1 when the image is invalid or the new one cannot be allocated
 * @par Ownership
 * *image is replaced by a new block of the host's; on any failure it stays as it was.
 * @par Memory
 * The new block.
 * @note Corners may come in any order. A rectangle of one column or row gives columns and rows 1..2 of the
 *       image, as far as it has them.
 */
TQ_API int32_t TQ_CALL tqFrameUpImg(TqImage** image, int32_t col1, int32_t row1, int32_t col2, int32_t row2);

/**
 * @brief tqFrameUpImg with corners counted from 0.
 * @param[in,out] image address of the host's block pointer; receives the cut image
 * @param[in] col1 column of a corner, pels from 0, any value (clamped)
 * @param[in] row1 row of that corner
 * @param[in] col2 column of the opposite corner
 * @param[in] row2 row of that corner
 * @return 0; -1 when the image is invalid or the new one cannot be allocated
 * @par Ownership
 * *image is replaced by a new block of the host's; on any failure it stays as it was.
 * @par Memory
 * The new block.
 * @note A rectangle of one column or row gives columns and rows 0..1 of the image, as far as it has them.
 */
TQ_API int32_t TQ_CALL tqFrameUpImg0(TqImage** image, int32_t col1, int32_t row1, int32_t col2, int32_t row2);

/**
 * @brief Copies a rectangle of an image, corners included, into an image of its own.
 * @param[in,out] out address of the host's block pointer; receives the new image
 * @param[in] in the image to copy from; not changed
 * @param[in] col1 column of a corner, pels from 0, any value (clamped)
 * @param[in] row1 row of that corner
 * @param[in] col2 column of the opposite corner
 * @param[in] row2 row of that corner
 * @return 0; -1 when out is null, the image is invalid or the new one cannot be allocated
 * @par Ownership
 * A block that *out holds is freed, also when the new one cannot be allocated: then *out is null. Only when
 * *out is the input itself it stays then. The new block belongs to the host, which releases it with
 * tqImageFree.
 * @par Memory
 * The new block.
 * @note Corners may come in any order. One column or one row is a rectangle, too.
 */
TQ_API int32_t TQ_CALL tqFrameUpImg2(TqImage** out, const TqImage* in, int32_t col1, int32_t row1,
                                     int32_t col2, int32_t row2);

/**
 * @brief Sets an image into a black frame so that its optical centre falls on a given pel.
 * @param[in,out] out address of the host's block pointer; receives the new image
 * @param[in] in the image to frame; not changed
 * @param[in] col column of the frame where the centre's pel comes to lie
 * @param[in] row row of the frame where it comes to lie
 * @param[in] colsAfter columns of the frame to the right of that pel
 * @param[in] rowsAfter rows of the frame below it
 * @return 0; -1 when out is null, the image is invalid or the new one cannot be allocated or would have a
 *         side outside 1..8000
 * @par Ownership
 * A block that *out holds is freed, also when the new one cannot be allocated: then *out is null. Only when
 * *out is the input itself it stays then. The new block belongs to the host, which releases it with
 * tqImageFree.
 * @par Memory
 * The new block.
 * @note The frame has col + 1 + colsAfter columns and row + 1 + rowsAfter rows; pels that fall outside are
 *       cut off. The broken part of the centre is kept, and where there is one the last column or row of the
 *       image is left out. A centre that is not finite leaves the frame empty.
 */
TQ_API int32_t TQ_CALL tqFrameOutImg0(TqImage** out, const TqImage* in, int32_t col, int32_t row,
                                      int32_t colsAfter, int32_t rowsAfter);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
