/** @file masks.h
 *  Masks: images whose pels, 0 or not, say which pels of another image count.
 *
 *  A masked pel is 0. Functions that replace the image leave it untouched when they fail.
 */
#ifndef TQIMAGE_MASKS_H
#define TQIMAGE_MASKS_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup masks Masks
 *  @ingroup process
 *  @copydoc masks.h
 *  @{ */

/**
 * @brief Keeps the pels where the mask is not 0.
 *
 * @param[in,out] image address of the pointer to the image, which the result replaces
 * @param[in] mask image; a pel of 0 masks
 * @return 0; -2 image null or invalid; -3 mask null or invalid; -5 no memory
 * @par Ownership
 * The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note A pel of 0 that is kept becomes 1, so that it differs from a masked one. Only what both images cover
 *       from their first pels on is kept; the rest is 0. TotalPelValue and MaxPelValue are those of the
 *       result.
 */
TQ_API int32_t TQ_CALL tqMaskImage(TqImage** image, const TqImage* mask);

/**
 * @brief Keeps the pels where the mask is 0.
 *
 * @param[in,out] image address of the pointer to the image, which the result replaces
 * @param[in] mask image; a pel other than 0 masks
 * @return 0; -2 image null or invalid; -3 mask null or invalid; -5 no memory
 * @par Ownership
 * The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note As tqMaskImage, but TotalPelValue becomes the sum of the first PelCols x PelRows bytes of the new
 *       block, the bytes of its header included, and MaxPelValue stays. Hosts rely on the figure.
 */
TQ_API int32_t TQ_CALL tqInvMaskImage(TqImage** image, const TqImage* mask);

/**
 * @brief Sets pels to 0 where a mask that is aligned by its centre is not 0.
 *
 * @param[in,out] image image, changed in place
 * @param[in] mask image; a pel other than 0 masks. Its CenterCol and CenterRow meet those of the image, the
 *                 differences cut off to whole pels
 * @return 0; -2 image null or invalid; -3 mask null or invalid
 */
TQ_API int32_t TQ_CALL tqInvMaskImageOffset(TqImage* image, const TqImage* mask);

/**
 * @brief Sets a block of pels to 0 around every pel of a mask that is not 0.
 *
 * @param[in,out] image image, changed in place
 * @param[in] mask image of the same size; may be the image itself
 * @param[in] blockWidth columns, clamped to 0 .. PelCols - 1; 0 clears nothing
 * @param[in] blockHeight rows, clamped to 0 .. PelRows - 1; 0 clears nothing
 * @return 0; -2 image null or invalid; -3 mask null or invalid; -4 sizes differ
 * @note A block begins half its size, cut off, before its centre; it is pushed back to lie inside the image.
 *       The cost does not depend on the size of the block.
 */
TQ_API int32_t TQ_CALL tqInvMaskImage2(TqImage* image, const TqImage* mask, int32_t blockWidth,
                                       int32_t blockHeight);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
