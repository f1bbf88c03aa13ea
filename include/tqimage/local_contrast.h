/** @file local_contrast.h
 *  How much pels differ from what surrounds them.
 *
 *  A pel of 0 means "no data": it is in no figure and gives 0. Window sizes follow the rule of filters.h.
 *  Mura images of differences: 32000 is no difference, the largest of either sign lies 32000 away from it,
 *  LuxPerGrey is scaled by largest / 32000 and MaxPelValue is 64000; pels without a difference are 0.
 */
#ifndef TQIMAGE_LOCAL_CONTRAST_H
#define TQIMAGE_LOCAL_CONTRAST_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup local_contrast Local contrast
 *  @ingroup process
 *  @copydoc local_contrast.h
 *  @{ */

/** @brief Standard deviation of the pels with data in the shifted window of every pel.
 *  @param[in,out] image address of the host's image; the result, replaces it
 *  @param[in] width window width, pels, any value
 *  @param[in] height window height, pels, any value
 *  @return 0; -2 image null or invalid; -3 no memory
 *  @par Ownership
 *  The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 *  @par Memory
 *  The result and a few working rows.
 *  @note Pels are trunc(sigma * 65000 / largest sigma), sigma of the population; MaxPelValue is 65000,
 *        LuxPerGrey is scaled by largest sigma / 65000 (a largest of 0 counts as 1). A window of one pel
 *        returns 0 and keeps the host's block.
 */
TQ_API int32_t TQ_CALL tqCalcLocalStdDev(TqImage** image, int32_t width, int32_t height);

/** @brief Mean of the inner window of every pel minus the mean of the outer one without the inner.
 *  @param[in,out] out address of the pointer that receives the new image
 *  @param[in] image source; only read
 *  @param[in] innerWidth width of the inner window, pels, any value
 *  @param[in] innerHeight height of the inner window, pels, any value
 *  @param[in] outerWidth width of the outer window, pels, any value
 *  @param[in] outerHeight height of the outer window, pels, any value
 *  @return 0; -2 image null or invalid; -3 no memory; -4 the outer window does not contain the inner and more
 *  @par Ownership
 *  The block that out held is freed, after its last use where it is an input; the host frees the new one with
 *  tqImageFree.
 *  @par Memory
 *  The result and a few working rows.
 *  @note Windows are clipped. No difference where less than half of the surround holds data.
 */
TQ_API int32_t TQ_CALL tqCalcLocalLumDiff(TqImage** out, const TqImage* image, int32_t innerWidth,
                                          int32_t innerHeight, int32_t outerWidth, int32_t outerHeight);

/** @brief Mean of a block minus the mean of the two block means a distance away on either side.
 *  @param[in,out] out address of the pointer that receives the new image
 *  @param[in] image source; only read
 *  @param[in] width block width, pels, any value
 *  @param[in] height block height, pels, any value
 *  @param[in] distance offset of the neighbours, pels, along each axis of the direction; >= 1
 *  @param[in] direction 0 horizontal, 1 vertical, 2 falling, 3 rising diagonal, 4 the largest of the four by
 *             magnitude, with its sign
 *  @return 0; -2 image null or invalid; -3 no memory; -4 distance below 1, or no such direction
 *  @par Ownership
 *  The block that out held is freed, after its last use where it is an input; the host frees the new one with
 *  tqImageFree.
 *  @par Memory
 *  The result and a few working rows.
 *  @note Blocks are clipped. No difference where a neighbour lies outside the image or holds no data.
 */
TQ_API int32_t TQ_CALL tqCalcLocalLumDiffDir(TqImage** out, const TqImage* image, int32_t width,
                                             int32_t height, int32_t distance, int32_t direction);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
