/** @file distortion.h
 *  Distortion maps: for every pel of the corrected sensor image, the place in the measured image that it is
 *  to be taken from; and their application.
 */
#ifndef TQIMAGE_DISTORTION_H
#define TQIMAGE_DISTORTION_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup distortion Distortion maps
 *  @ingroup geometry
 *  @copydoc distortion.h
 *  @{ */

/**
 * @brief Creates a distortion map with an entry a pel and its centre in the middle.
 *
 * @param[in,out] map Address of the host's map pointer; a map it holds is released first. Null after a
 *                    failure.
 * @param[in] info    Header whose PelCols and PelRows, the full sensor's, give the size, 0..65535 each.
 * @return 0; -1 map or info is null, a size is negative, or no memory.
 * @par Ownership
 * The map belongs to the host.
 * @par Memory
 * 12 + 8 x PelCols x PelRows bytes, the map itself.
 * @note The entries are left unset: write each one with tqPutDistortionPel before the map is used. Cols and
 *       Rows hold the low 16 bits of larger sizes, which no image reaches.
 */
TQ_API int32_t TQ_CALL tqCreateDistortionImage(TqDistortionMap** map, const TqImageHeader* info);

/**
 * @brief Stores one entry of a distortion map.
 *
 * @param[in,out] map   Map to write.
 * @param[in] info      Header whose PelCols is the number of entries a row, usually the one the map was
 *                      created with; the map's own Cols is not used.
 * @param[in] col       Column of the entry.
 * @param[in] row       Row of the entry.
 * @param[in] sourceCol Column to take the pel from, unbinned pels; negative when the pel has no source.
 * @param[in] sourceRow Row to take the pel from, unbinned pels; negative when the pel has no source.
 * @return 0; -1 map or info is null, or the entry PelCols x row + col lies outside the map.
 */
TQ_API int32_t TQ_CALL tqPutDistortionPel(TqDistortionMap* map, const TqImageHeader* info, int32_t col,
                                          int32_t row, float sourceCol, float sourceRow);

/**
 * @brief Removes the lens distortion: resamples the image, bilinearly, through a distortion map.
 *
 * The map belongs to the full, unbinned sensor; the image may be binned and cut out of it. Its first pel lies
 * at the entry (map CenterCol / BinCols - image CenterCol, map CenterRow / BinRows - image CenterRow), each
 * truncated, -1 counting as 0; BinCols and BinRows are the steps from pel to pel. Source positions beyond the
 * border are taken at the border. A pel without a source becomes 0, and a pel that has one is at least 1.
 *
 * @param[in,out] image Address of the pointer to the image; the result, with the image's whole header,
 *                      replaces it. Untouched when the function fails.
 * @param[in] map       Map with at least as many columns and rows as the image.
 * @return 0; -2 image is null or invalid; -3 map is null or smaller than the image; -7 column offset below -1
 *         or BinCols below 1; -8 row offset below -1 or BinRows below 1; -4 no memory. -5 stands for a failed
 *         sample, which does not occur.
 * @par Ownership
 * The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result.
 * @note Entries that are not a number, and those that the binned image would need outside the map, count as
 *       pels without a source.
 */
TQ_API int32_t TQ_CALL tqCorrectLensDistortion(TqImage** image, const TqDistortionMap* map);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
