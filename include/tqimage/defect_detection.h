/** @file defect_detection.h
 *  Detection of the pels that a sensor delivers wrong: each is compared with a reference from its
 *  neighbourhood.
 *
 *  The result is a defect image: of the source's size and with its header, 0 everywhere but at the defects,
 *  which keep their values. tqFixDefects takes it as its map. A pel of 0 means "no data": it is never tested
 *  and never part of a reference.
 *
 *  The neighbourhood is a square of size / 2 pels (integer division) to each side of the pel, which belongs
 *  to it. Unlike the sizes of the filters an even one is not reduced: 4 means 5 x 5. A size below 2 means 1,
 *  and it is limited to the image. Pels closer than size / 2 to the border are never defects.
 *
 *  With reference 0 a pel is compared with the mean of the neighbourhood in single precision, with any other
 *  with its median, the upper middle one of an even number of pels. It is bright above
 *  (1 + percent / 100) * reference and dark below (1 - percent / 100) * reference; a pel that is bright is
 *  not dark.
 */
#ifndef TQIMAGE_DEFECT_DETECTION_H
#define TQIMAGE_DEFECT_DETECTION_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup defect_detection Detection of defects
 *  @ingroup process
 *  @copydoc defect_detection.h
 *  @{ */

/**
 * @brief Finds the defects among the pels whose whole neighbourhood has data.
 *
 * As tqFindPixelDefects1, but a pel with a 0 anywhere in its neighbourhood is not tested.
 *
 * @param[in,out] out   Address of the host's pointer to the defect image; the image it holds is freed.
 * @param[in] source    Image to look through; may be the one that out holds.
 * @param[in] kind      0 dark defects, 1 bright defects, any other both.
 * @param[in] reference 0 the mean of the neighbourhood, any other its median.
 * @param[in] size      Size of the neighbourhood, pels.
 * @param[in] percent   Tolerance, percent of the reference.
 * @param[out] bright   Number of bright defects, 0 after a failure; may be null.
 * @param[out] dark     Number of dark defects, 0 after a failure; may be null.
 * @return 0; -2 source is null or invalid, or out is null; -3 no memory, the image in out is kept.
 * @par Ownership
 * The block that out held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result and a few working rows; for medians 256 KiB more.
 */
TQ_API int32_t TQ_CALL tqFindPixelDefects(TqImage** out, const TqImage* source, int32_t kind,
                                          int32_t reference, int32_t size, double percent, int32_t* bright,
                                          int32_t* dark);

/**
 * @brief Finds the pels that differ from the mean or the median of their neighbourhood.
 *
 * The reference is taken over the pels of the neighbourhood that are not 0.
 *
 * @param[in,out] out   Address of the host's pointer to the defect image; the image it holds is freed.
 * @param[in] source    Image to look through; may be the one that out holds.
 * @param[in] kind      0 dark defects, 1 bright defects, any other both.
 * @param[in] reference 0 the mean of the neighbourhood, any other its median.
 * @param[in] size      Size of the neighbourhood, pels.
 * @param[in] percent   Tolerance, percent of the reference.
 * @param[out] bright   Number of bright defects, 0 after a failure; may be null.
 * @param[out] dark     Number of dark defects, 0 after a failure; may be null.
 * @return 0; -2 source is null or invalid, or out is null; -3 no memory, the image in out is kept.
 * @par Ownership
 * The block that out held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result and a few working rows; for medians 256 KiB more.
 */
TQ_API int32_t TQ_CALL tqFindPixelDefects1(TqImage** out, const TqImage* source, int32_t kind,
                                           int32_t reference, int32_t size, double percent, int32_t* bright,
                                           int32_t* dark);

/**
 * @brief Finds the defects among the pels that have data all around within a radius.
 *
 * As tqFindPixelDefects1, but a pel is tested only when the square of `radius` pels to each side of it lies
 * inside the image and holds no 0.
 *
 * @param[in,out] out   Address of the host's pointer to the defect image; the image it holds is freed.
 * @param[in] source    Image to look through; may be the one that out holds.
 * @param[in] kind      0 dark defects, 1 bright defects, any other both.
 * @param[in] reference 0 the mean of the neighbourhood, any other its median.
 * @param[in] size      Size of the neighbourhood, pels.
 * @param[in] percent   Tolerance, percent of the reference.
 * @param[in] radius    Radius of the test, pels; below 1 it is size / 2.
 * @param[out] bright   Number of bright defects, 0 after a failure; may be null.
 * @param[out] dark     Number of dark defects, 0 after a failure; may be null.
 * @return 0; -2 source is null or invalid, or out is null; -3 no memory, the image in out is kept.
 * @par Ownership
 * The block that out held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result and a few working rows; for medians 256 KiB more.
 * @note A radius below size / 2 does not bring defects closer to the border.
 */
TQ_API int32_t TQ_CALL tqFindPixelDefects2(TqImage** out, const TqImage* source, int32_t kind,
                                           int32_t reference, int32_t size, double percent, int32_t radius,
                                           int32_t* bright, int32_t* dark);

/**
 * @brief Finds defects against the neighbours that are bright enough to be part of the scene.
 *
 * As tqFindPixelDefects1, but neighbours at or below a floor are left out of the reference: floorPercent of
 * the image's mean, TotalPelValue / (PelCols * PelRows), truncated. The reference of a pel without any other
 * neighbour is 0, which makes it bright.
 *
 * @param[in,out] out      Address of the host's pointer to the defect image; the image it holds is freed.
 * @param[in] source       Image to look through; may be the one that out holds.
 * @param[in] kind         0 dark defects, 1 bright defects, any other both.
 * @param[in] reference    0 the mean of the neighbourhood, any other its median.
 * @param[in] size         Size of the neighbourhood, pels.
 * @param[in] percent      Tolerance, percent of the reference.
 * @param[in] floorPercent Floor, percent of the image's mean.
 * @param[out] bright      Number of bright defects, 0 after a failure; may be null.
 * @param[out] dark        Number of dark defects, 0 after a failure; may be null.
 * @return 0; -2 source is null or invalid, or out is null; -3 no memory, the image in out is kept.
 * @par Ownership
 * The block that out held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result, while it works a second image of the source's size, and for medians 256 KiB.
 * @note The mean comes from the header as it is; it is not computed anew.
 */
TQ_API int32_t TQ_CALL tqFindPixelDefects3(TqImage** out, const TqImage* source, int32_t kind,
                                           int32_t reference, int32_t size, double percent,
                                           double floorPercent, int32_t* bright, int32_t* dark);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
