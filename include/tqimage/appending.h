/** @file appending.h
 *  Larger images put together from captures that share their centre.
 */
#ifndef TQIMAGE_APPENDING_H
#define TQIMAGE_APPENDING_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup appending Appending captures
 *  @ingroup interchange
 *  @copydoc appending.h
 *  @{ */

/**
 * @brief Joins an image to another one so that their centres (CenterCol, CenterRow) coincide.
 *
 * The joined image just holds both; pels that neither covers are 0. Where they overlap, a pel is the mean of
 * the two, truncated, or the one of them that is not 0. Each overlapping pel can then be replaced by the mean
 * of the pel block around it, as tqGetPelBlockAvg takes it, rounded; that hides the seam.
 *
 * @param[in,out] accumulated address of the host's block pointer; receives the joined image. Its header is
 *                            that of the image before, with the new sizes, the larger of the two centres and
 *                            the larger of the two LuxPerGrey
 * @param[in,out] added       the image to join to it. Like the accumulated image its pels are scaled, and
 *                            truncated, to the larger LuxPerGrey when its own is smaller; its header stays as
 *                            it is
 * @param[in] blockWidth      width of the block for smoothing, pels; smoothing takes place when it or
 *                            blockHeight is above 1
 * @param[in] blockHeight     height of that block, pels
 * @return 0; -2 *accumulated is null or invalid; -3 added is null or invalid; -4 no memory, a LuxPerGrey that
 *         is not above 0, a centre that is not finite, or a joined image of more than 8000 columns or rows;
 *         -5 no memory for smoothing. After a failure both images are as they were
 * @par Ownership
 * The block that *accumulated held is freed. The joined image belongs to the host.
 * @par Memory
 * The joined image, and its size again when it is smoothed.
 * @note Hosts rely on the added image being scaled in place: both then share one photometric scale. Its
 *       header still tells the old one, so it is not to be joined a second time.
 */
TQ_API int32_t TQ_CALL tqAppendImage(TqImage** accumulated, TqImage* added, int32_t blockWidth,
                                     int32_t blockHeight);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
