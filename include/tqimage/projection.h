/** @file projection.h
 *  Where the camera sees, and what.
 */
#ifndef TQIMAGE_PROJECTION_H
#define TQIMAGE_PROJECTION_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @brief Largest rectangle of a corrected image in which every pel was seen by the camera.
 *
 * An entry counts as seen when its source lies within the unbinned image: columns 0 .. PelCols x BinCols - 1
 * and rows likewise. Of several largest rectangles the topmost is reported, of these the leftmost, of these
 * the one that ends higher up.
 *
 * @param[in] map     Distortion map.
 * @param[in] info    Header of the measured image: PelCols, PelRows 1..8000 and the binning factors, of which
 *                    those below 1 count as 1.
 * @param[out] left   First column, entries of the map; -1 after a failure.
 * @param[out] top    First row; -1 after a failure.
 * @param[out] right  Last column, inclusive; -1 after a failure.
 * @param[out] bottom Last row, inclusive; -1 after a failure.
 * @return 0; -1 info is null or its size outside 1..8000; -2 map is null, or no memory; -99 no entry lies
 *         within the image.
 * @par Memory
 * Two numbers a column of the map.
 */
TQ_API int32_t TQ_CALL tqCalcCameraClipRect(const TqDistortionMap* map, const TqImageHeader* info,
                                            int32_t* left, int32_t* top, int32_t* right, int32_t* bottom);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
