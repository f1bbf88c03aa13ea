/** @file gradients.h
 *  Gradients of images.
 *
 *  Methods, along a line p of n pels; a line of one pel has gradient 0:
 *  - 0, Sobel: s(k) = p[k + 1] - p[k - 1], doubled one-sided differences at the ends; s of the line before,
 *    twice that of the line and s of the line after are added. The first and the last line give s alone.
 *  - 2: p[k + 1] - p[k], at the last pel p[k] - p[k - 1].
 *  - 3: trunc((p[k + 1] - p[k - 1]) / 2 + 0.5), one-sided differences at the ends.
 *  - 5: trunc((p[k - 2] - 8 p[k - 1] + 8 p[k + 1] - p[k + 2]) / 12 + 0.5); next to the ends as 3.
 *
 *  The vertical gradient is the same along columns. Magnitudes are trunc(sqrt(gx^2 + gy^2)) in single
 *  precision. New images carry the source's header with MaxPelValue = the largest value before pels are
 *  capped at 65535. Functions whose names end in 0 take a pel of 0 for "no data" and give 0 there.
 */
#ifndef TQIMAGE_GRADIENTS_H
#define TQIMAGE_GRADIENTS_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup gradients Gradients
 *  @ingroup process
 *  @copydoc gradients.h
 *  @{ */

/** @brief Magnitude of the gradient at every pel.
 *  @param[in,out] out address of the pointer that receives the new image
 *  @param[in] image source; only read
 *  @param[in] method 0 Sobel, 2 forward, 3 central, 5 five-point
 *  @return 0; -2 image null or invalid; -3 no horizontal gradient by this method; -4 no vertical one (never
 *          alone: both take the same methods); -5 no memory
 *  @par Ownership
 *  The block that out held is freed, after its last use where it is an input; the host frees the new one with
 *  tqImageFree.
 *  @par Memory
 *  The result.
 */
TQ_API int32_t TQ_CALL tqCalcGradient(TqImage** out, const TqImage* image, int32_t method);

/** @brief Magnitude of the gradient where the surrounding pels hold data.
 *  @param[in,out] out address of the pointer that receives the new image
 *  @param[in] image source; only read
 *  @param[in] method 0 Sobel, 2 forward, 3 central, 5 five-point
 *  @return 0; -2 image null or invalid; 1 no gradient by this method; -3 no memory
 *  @par Ownership
 *  The block that out held is freed, after its last use where it is an input; the host frees the new one with
 *  tqImageFree.
 *  @par Memory
 *  The result and a few working rows.
 *  @note A pel is measured when the 3 x 3 (method 5: 5 x 5) pels around it lie inside the image and none is
 *        0; others give 0.
 */
TQ_API int32_t TQ_CALL tqCalcGradient0(TqImage** out, const TqImage* image, int32_t method);

/** @brief Absolute horizontal gradient that does not reach across pels of 0.
 *  @param[in,out] out address of the pointer that receives the new image
 *  @param[in] image source; only read
 *  @param[in] method 0 Sobel, 2 forward, 3 central, 5 five-point
 *  @return 0; -2 image null or invalid; 1 no gradient by this method; -3 no memory
 *  @par Ownership
 *  The block that out held is freed, after its last use where it is an input; the host frees the new one with
 *  tqImageFree.
 *  @par Memory
 *  The result.
 *  @note Pels of 0 split each line into runs; the ends of a run count as first and last pel. A run of one
 *        gives 0. Method 0 uses the lines beside only where the pels that it reads there are inside and not
 *        0, else the rule of the first and last line.
 */
TQ_API int32_t TQ_CALL tqCalcGradX0(TqImage** out, const TqImage* image, int32_t method);

/** @brief Absolute vertical gradient that does not reach across pels of 0.
 *  @param[in,out] out address of the pointer that receives the new image
 *  @param[in] image source; only read
 *  @param[in] method 0 Sobel, 2 forward, 3 central, 5 five-point
 *  @return 0; -2 image null or invalid; 1 no gradient by this method; -3 no memory
 *  @par Ownership
 *  The block that out held is freed, after its last use where it is an input; the host frees the new one with
 *  tqImageFree.
 *  @par Memory
 *  The result.
 *  @note Pels of 0 split each line into runs; the ends of a run count as first and last pel. A run of one
 *        gives 0. Method 0 uses the lines beside only where the pels that it reads there are inside and not
 *        0, else the rule of the first and last line.
 */
TQ_API int32_t TQ_CALL tqCalcGradY0(TqImage** out, const TqImage* image, int32_t method);

/** @brief Weighted root of the squares of three gradient images, such as those of three colours.
 *  @param[in,out] out address of the pointer that receives the new image
 *  @param[in] a first image; gives the header
 *  @param[in] b second image, of the same size
 *  @param[in] c third image, of the same size
 *  @param[in] weightA weight of a; its absolute value counts
 *  @param[in] weightBc weight of b and c; its absolute value counts
 *  @return 0; -2, -3, -4 a, b, c null or invalid; -5 sizes differ; -6 no memory
 *  @par Ownership
 *  The block that out held is freed, after its last use where it is an input; the host frees the new one with
 *  tqImageFree.
 *  @par Memory
 *  The result.
 *  @note v = sqrt(la^2 * |weightA| + (lb^2 + lc^2) * |weightBc|) of the luminances pel * LuxPerGrey, in
 *        single precision. Pels are trunc(v * scale) with scale = 65000 / largest v (1 when that is below
 *        1e-10); MaxPelValue is 65000 and LuxPerGrey 1 / scale.
 */
TQ_API int32_t TQ_CALL tqCombineGradients(TqImage** out, const TqImage* a, const TqImage* b, const TqImage* c,
                                          float weightA, float weightBc);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
