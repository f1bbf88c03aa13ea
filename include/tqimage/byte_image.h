/** @file byte_image.h
 *  Images whose pels are bytes.
 */
#ifndef TQIMAGE_BYTE_IMAGE_H
#define TQIMAGE_BYTE_IMAGE_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup byte_image Images of bytes
 *  @ingroup interchange
 *  @copydoc byte_image.h
 *  @{ */

/**
 * @brief Reduces the pels of an image to 0..255 with random dithering, which keeps grades from showing steps.
 *
 * A pel becomes pel x factor + r / 32768 in double precision, truncated and limited to 0..255. r, 0..32767,
 * is the next number of a generator that is seeded with the time in seconds: r' = bits 16..30 of s, where s =
 * 214013 s + 2531011 modulo 2^32.
 *
 * @param[in,out] image Address of the image; receives the new one, with the header unchanged. The old block
 *                      is freed. Untouched when the function fails.
 * @param[in] factor    Bytes a grey level, for instance 255 / MaxPelValue.
 * @return 0; -2 image is null or invalid; -5 no memory.
 * @par Ownership
 * The host owns the new image as it owned the old one.
 * @par Memory
 * The new image.
 * @note Calls have generators of their own: they do not disturb each other or the host's.
 */
TQ_API int32_t TQ_CALL tqConvert16to8(TqImage** image, double factor);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
