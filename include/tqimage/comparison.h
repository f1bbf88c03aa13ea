/** @file comparison.h
 *  Photometric comparison of two images.
 */
#ifndef TQIMAGE_COMPARISON_H
#define TQIMAGE_COMPARISON_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup comparison Comparison of images
 *  @ingroup analysis
 *  @copydoc comparison.h
 *  @{ */

/** @brief Image of the relative differences of two images, pel by pel in lux.
 *
 *  With r and t the reference and test pel, each times its image's LuxPerGrey, the difference is |t - r| / r.
 *  The largest one becomes grey level 64000, and LuxPerGrey of the result converts grey levels back to
 *  relative differences.
 *
 *  @param[in,out] result address of the pointer that receives the result, with the header of the reference
 *              but for MaxPelValue (64000) and LuxPerGrey (largest difference / 64000, 1 when all are 0). May
 *              hold one of the inputs. Untouched when the function fails.
 *  @param[in] reference image to compare with
 *  @param[in] test image to compare, of the same size
 *  @return 0; -2 result null, reference null or invalid; -3 test null or invalid; -4 sizes differ; -5 no
 *          memory
 *  @par Ownership
 *  A block that result held is freed; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result.
 *  @note A pel is difference / LuxPerGrey + 0.4999, truncated; the constant is not a half. A reference pel of
 *        0 has an infinite difference, which makes LuxPerGrey infinite and every pel 0; where the test pel is
 *        0 too there is no difference, and the pel is 0.
 */
TQ_API int32_t TQ_CALL tqCompareImages(TqImage** result, const TqImage* reference, const TqImage* test);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
