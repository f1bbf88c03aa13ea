/** @file image_arithmetic.h
 *  Two or three images of one scene made into one: averages, ratios, sums.
 *
 *  A pel times LuxPerGrey is its luminance. Images whose grey scales differ are combined by their luminances,
 *  which are then expressed in the scale of the result. Computation is in double precision unless a function
 *  says otherwise; results are cut off toward zero, and of what is no pel the low 16 bits are kept.
 *  Outputs are untouched when a function fails, unless it says otherwise.
 */
#ifndef TQIMAGE_IMAGE_ARITHMETIC_H
#define TQIMAGE_IMAGE_ARITHMETIC_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup image_arithmetic Arithmetic of images
 *  @ingroup process
 *  @copydoc image_arithmetic.h
 *  @{ */

/**
 * @brief Folds an image into an average of images.
 *
 * @param[in,out] average address of the pointer to the average, which the result replaces; null for none
 * @param[in] image the next image
 * @param[in] count images in the average, this one included
 * @return 0; -2 image null or invalid; -3 no memory for the copy; -4 average invalid; -5 sizes differ;
 *         -6 no memory
 * @par Ownership
 * The block that average held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note Without an average, or with a count below 2, the image is copied. Else LuxPerGrey is the larger one
 *       of the two, every pel ((image * its LuxPerGrey + average * its LuxPerGrey * (count - 1)) / count) /
 *       LuxPerGrey, and MaxPelValue the largest pel; the rest of the header is that of the old average.
 */
TQ_API int32_t TQ_CALL tqRunningAverage(TqImage** average, const TqImage* image, int32_t count);

/**
 * @brief The average luminance of two images.
 *
 * @param[in,out] out address of the pointer that gets the result; it may hold one of the inputs
 * @param[in] a first image, which gives the header
 * @param[in] b second image, of the same size
 * @return 0; -2 a null or invalid, or out null; -3 b null or invalid; -4 sizes differ; -5 no memory
 * @par Ownership
 * The block that out held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note LuxPerGrey is the larger one of the two, MaxPelValue the largest pel.
 */
TQ_API int32_t TQ_CALL tqAverageImages(TqImage** out, const TqImage* a, const TqImage* b);

/**
 * @brief The ratio of the luminances of two images, the largest of which becomes 65000.
 *
 * @param[in,out] out address of the pointer that gets the result
 * @param[in] numerator image, which gives the header
 * @param[in] denominator image of the same size; where it is 0 the ratio is 0
 * @return 0; -2 numerator null or invalid, or out null; -3 denominator null or invalid; -4 sizes differ or no
 *         memory
 * @par Ownership
 * The block that out held is freed first, before anything is checked, and out is null after a failure. If it
 * is an input of the call it is freed at the end.
 * @par Memory
 * The result.
 * @note MaxPelValue is 65000, LuxPerGrey the largest ratio / 65000, every pel ratio / LuxPerGrey + 0.5.
 */
TQ_API int32_t TQ_CALL tqDivideImage(TqImage** out, const TqImage* numerator, const TqImage* denominator);

/**
 * @brief Divides an image by a flat field.
 *
 * @param[in,out] image address of the pointer to the image, which the result replaces
 * @param[in,out] reference image of the flat field, of the same size; its MaxPelValue becomes the largest
 *                          mean of a 3 x 3 neighbourhood if it has one
 * @return 0; -2 image null or invalid; -3 reference null or invalid; -4 sizes differ; -5 no memory;
 *         -8 MaxPelValue of the reference is 0
 * @par Ownership
 * The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note Every pel becomes pel / (reference pel / MaxPelValue of the reference), at most 65535, and 0 where
 *       the reference is 0. TotalPelValue, MaxPelValue and CenterPelValue are those of the result.
 */
TQ_API int32_t TQ_CALL tqNormalizeImage(TqImage** image, TqImage* reference);

/**
 * @brief The root of the weighted sum of the squares of two images, in single precision.
 *
 * @param[in,out] out address of the pointer that gets the result; it may hold one of the inputs
 * @param[in] a first image, which gives the header
 * @param[in] b second image, of the same size
 * @param[in] weightA weight of the square of a
 * @param[in] weightB weight of the square of b
 * @return 0; -2 a null or invalid, or out null; -3 b null or invalid; -4 sizes differ; -5 no memory
 * @par Ownership
 * The block that out held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note Both weights are divided by the larger one first. The header is that of a.
 */
TQ_API int32_t TQ_CALL tqRootSumSquare(TqImage** out, const TqImage* a, const TqImage* b, float weightA,
                                       float weightB);

/**
 * @brief Adds the luminances of up to three colour channels; the largest sum becomes 255.
 *
 * @param[in,out] out address of the pointer that gets the result; it may hold one of the inputs
 * @param[in] first image or null
 * @param[in] second image or null
 * @param[in] third image or null
 * @return 0; -1 out null, all three images null, one of them invalid, sizes differ, or no memory
 * @par Ownership
 * The block that out held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note The sums are kept in single precision, and every pel is sum * 255 / largest sum; a largest sum of 0
 *       counts as 1. The header is that of the first image there is; TotalPelValue is the sum of the pels,
 *       CenterPelValue the pel at the centre cut off to whole pels or 0 outside, MaxPelValue 255, LuxPerGrey
 *       the largest sum / 255.
 */
TQ_API int32_t TQ_CALL tqCombineImages(TqImage** out, const TqImage* first, const TqImage* second,
                                       const TqImage* third);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
