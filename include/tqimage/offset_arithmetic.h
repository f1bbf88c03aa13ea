/** @file offset_arithmetic.h
 *  Two images that show one scene from different positions or at different scales, combined by the place of
 *  their pels on the target.
 *
 *  A pel of the first image lies (column - CenterCol) / PelsPerMeterX metres right of the axis and
 *  (row - CenterRow) / PelsPerMeterY below it. The offset is added, and the pel of the second image that is
 *  nearest to the place, half a pel rounded up, takes part if there is one.
 *
 *  A pel times LuxPerGrey is its luminance. Computation is in double precision; results are cut off toward
 *  zero. Outputs are untouched when a function fails.
 */
#ifndef TQIMAGE_OFFSET_ARITHMETIC_H
#define TQIMAGE_OFFSET_ARITHMETIC_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup offset_arithmetic Arithmetic of displaced images
 *  @ingroup process
 *  @copydoc offset_arithmetic.h
 *  @{ */

/**
 * @brief Subtracts the luminances of an image in the grey scale of the other.
 *
 * @param[in,out] out address of the pointer that gets the result; it may hold one of the inputs
 * @param[in] a image, which gives the header
 * @param[in] b image to subtract
 * @param[in] offsetX metres, to the right
 * @param[in] offsetY metres, downward
 * @return 0; -2 a null or invalid, or out null; -3 b null or invalid; -5 no memory
 * @par Ownership
 * The block that out held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note 0.5 is added before the result is cut off; it stops at 0 and 65535. Where b has no pel that of a is
 *       kept.
 */
TQ_API int32_t TQ_CALL tqSubtractImageOffset(TqImage** out, const TqImage* a, const TqImage* b, float offsetX,
                                             float offsetY);

/**
 * @brief Adds the luminances of two images; the largest sum becomes 65000.
 *
 * @param[in,out] out address of the pointer that gets the result; it may hold one of the inputs
 * @param[in] a image, which gives the header
 * @param[in] b image to add
 * @param[in] offsetX metres, to the right
 * @param[in] offsetY metres, downward
 * @return 0; -2 a null or invalid, or out null; -3 b null or invalid; -4 no memory
 * @par Ownership
 * The block that out held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note The sums are kept in single precision. LuxPerGrey is the largest sum / 65000, a largest sum of 0
 *       counting as 1; MaxPelValue is 65000; every pel is sum / LuxPerGrey + 0.5.
 */
TQ_API int32_t TQ_CALL tqAddImageOffset(TqImage** out, const TqImage* a, const TqImage* b, float offsetX,
                                        float offsetY);

/**
 * @brief The ratio of the luminances of two images where both are; the largest becomes 65000.
 *
 * @param[in,out] out address of the pointer that gets the result; it may hold one of the inputs
 * @param[in] numerator image
 * @param[in] denominator image; where its luminance is 0 the ratio is 1
 * @param[in] offsetX metres, to the right
 * @param[in] offsetY metres, downward
 * @return 0; -2 numerator null or invalid, or out null; -3 denominator null or invalid; -4 no memory;
 *         -100 the images share less than a pel, or a resolution is not positive
 * @par Ownership
 * The block that out held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note The result is the part of the numerator that the denominator covers, with its header and the centre
 *       moved accordingly. LuxPerGrey is the largest ratio / 65000, a largest ratio of 0 or less counting as
 *       1; MaxPelValue is 65000; every pel is ratio / LuxPerGrey + 0.5, and 0 where the denominator has no
 *       pel.
 */
TQ_API int32_t TQ_CALL tqDivideImageOffset(TqImage** out, const TqImage* numerator,
                                           const TqImage* denominator, float offsetX, float offsetY);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
