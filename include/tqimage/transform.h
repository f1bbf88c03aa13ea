/** @file transform.h
 *  Resampling of an image through any projective transformation.
 */
#ifndef TQIMAGE_TRANSFORM_H
#define TQIMAGE_TRANSFORM_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup transform Projective transformation
 *  @ingroup geometry
 *  @copydoc transform.h
 *  @{ */

/**
 * @brief Resamples an image through a projective transformation: turning, scaling, shearing and perspective.
 *
 * The matrix takes a pel (c, r) of the result to its place in the image: x = (m0 c + m1 r + m2) / w,
 * y = (m3 c + m4 r + m5) / w, w = m6 c + m7 r + m8. A place belongs to the image up to half a pel beyond the
 * centres of its border pels and is there taken at the border. Values are rounded, halves to the even grey,
 * and clamped to 0..65535.
 *
 * @param[in,out] image Address of the pointer to the image; the result replaces it. Untouched when the
 *                      function fails.
 * @param[in] matrix    m0 .. m8, nine doubles; not singular.
 * @param[in] cols      Columns of the result, 1..8000; 0: those of the image.
 * @param[in] rows      Rows of the result, 1..8000; 0: those of the image.
 * @param[in] kernel    0: nearest pel; 1: bilinear; 2: cubic convolution with a = -0.5.
 * @param[in] fill      Pel where the place lies outside the image, any value (clamped to 0..65535).
 * @return 0; -1 image is null or invalid; -2 matrix is null, not finite or singular; -3 a size outside
 *         1..8000, or no memory; -4 unknown kernel.
 * @par Ownership
 * The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @par Source
 * R. G. Keys, Cubic convolution interpolation for digital image processing, 1981.
 * @note The header is the image's. CenterCol and CenterRow move with the optical axis, PelsPerMeterX and
 *       PelsPerMeterY become those around it; where they are not positive or would not be finite they stay.
 */
TQ_API int32_t TQ_CALL tqTransformImage(TqImage** image, const double* matrix, int32_t cols, int32_t rows,
                                        int32_t kernel, int32_t fill);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
