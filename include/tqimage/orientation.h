/** @file orientation.h
 *  Quarter and half turns and mirrors of an image.
 *
 *  Each keeps the header true to the picture: sizes, optical centre, resolutions and binning factors follow
 *  the turn; everything else is copied.
 */
#ifndef TQIMAGE_ORIENTATION_H
#define TQIMAGE_ORIENTATION_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup orientation Turns and mirrors
 *  @ingroup geometry
 *  @copydoc orientation.h
 *  @{ */

/**
 * @brief Turns an image by a quarter, or upside down.
 * @param[in,out] image address of the host's block pointer; receives the turned image
 * @param[in] mode 0 nothing; 1 a quarter counter-clockwise as displayed; 2 a quarter clockwise; 3 the rows in
 *            reverse order (a vertical flip)
 * @return 0; -1 when the image is invalid; -2 when the new one cannot be allocated
 * @par Ownership
 * *image is replaced by a new block of the host's; on any failure it stays as it was.
 * @par Memory
 * The new block.
 * @note Mode 0 asks nothing of the image, not even that there is one. With any other mode the image becomes
 *       black.
 */
TQ_API int32_t TQ_CALL tqTransposeImage(TqImage** image, int32_t mode);

/**
 * @brief Reverses the order of an image's columns (a horizontal flip).
 * @param[in,out] image address of the host's block pointer; receives the mirrored image
 * @return 0; -1 when the image is invalid; -2 when the new one cannot be allocated
 * @par Ownership
 * *image is replaced by a new block of the host's; on any failure it stays as it was.
 * @par Memory
 * The new block.
 */
TQ_API int32_t TQ_CALL tqMirrorImage(TqImage** image);

/**
 * @brief Mirrors an image as tqMirrorImage and turns the result as tqTransposeImage, in one pass.
 * @param[in,out] image address of the host's block pointer; receives the turned image
 * @param[in] mirror 0 leaves the mirror out
 * @param[in] mode the mode of tqTransposeImage; mirrored before, 1 exchanges columns and rows, 2 does so
 *                 about the other diagonal, and 3 is half a turn
 * @return 0; -1 when the image is invalid; -2 when the new one cannot be allocated
 * @par Ownership
 * *image is replaced by a new block of the host's; on any failure it stays as it was.
 * @par Memory
 * The new block.
 * @note With mirror and mode 0 nothing is asked of the image. With a mode that tqTransposeImage does not know
 *       the image becomes black.
 */
TQ_API int32_t TQ_CALL tqMirrorTransposeImage(TqImage** image, int32_t mirror, int32_t mode);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
