/** @file multi_point_calibration.h
 *  Correction images computed from values measured at scattered points of the sensor, and their application.
 */
#ifndef TQIMAGE_MULTI_POINT_CALIBRATION_H
#define TQIMAGE_MULTI_POINT_CALIBRATION_H

#include "tqimage/automation.h"
#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup multi_point_calibration Multi-point calibration
 *  @ingroup calibration
 *  @copydoc multi_point_calibration.h
 *  @{ */

/** What tqBuildMultiPointImage is asked for. */
typedef struct TqMultiPointSettings {
    int32_t Mode;      /**< 0: pels outside the valid area count as 1.0; others: as without value; 2 also
                            raises negative values to 0 */
    int32_t Columns;   /**< columns of the correction image, 1..8000 */
    int32_t Rows;      /**< rows of the correction image, 1..8000 */
    int32_t Method;    /**< surface, see tqBuildMultiPointImage */
    int32_t Unused[2]; /**< not read */
    float MinColumn;   /**< left edge of the valid area, pels, inclusive */
    float MinRow;      /**< top edge of the valid area, pels, inclusive */
    float MaxColumn;   /**< right edge of the valid area, pels, inclusive */
    float MaxRow;      /**< bottom edge of the valid area, pels, inclusive */
} TqMultiPointSettings;

/**
 * @brief Turns values measured at scattered points into a correction image, through a surface.
 *
 * Methods: 0 Shepard's mean of all points, weighted by the inverse squared distance; 2 the polynomial of
 * method 3 plus a thin-plate spline through what it leaves; 3 polynomial of least squares, of total degree 4
 * from 20 points on, 3 from 13, 2 from 8, 1 from 4, else constant, lower where the points do not determine
 * it; 4 thin-plate spline; 5 linear on the triangles of Delaunay, outside the points' hull the value of the
 * nearest point of the hull; -1, 1 and all others: mean of the twelve nearest points, weighted by the
 * squared difference of the inverse distances to them and to the thirteenth. All but 3 pass through the
 * points.
 *
 * The largest absolute value v of the image becomes the pel 32000: LuxPerGrey = v / 32000, and a pel is its
 * value / LuxPerGrey, truncated, its low 16 bits. Values below -9998 and pels without value are 65535. When
 * the largest value is 0, LuxPerGrey and every pel are 0.
 *
 * @param[in,out] image   Address of the host's block pointer; the correction image replaces the block.
 * @param[in]     settings Size, method and valid area.
 * @param[in]     points  Address of an array {point, field} with the fields column, row and value; elements
 *                        int16, int32, float or double. Without points the surface is 0. Points at the same
 *                        place count as one with their mean value; points that are not finite are left out.
 *                        Places are rounded to 1/1024 pel, or, where one lies 16384 pels or more away, all
 *                        to about 1/16777216 of the largest co-ordinate.
 * @return 0; 1 points is null or not two-dimensional; 2 elements of another type; 3 not 3 fields; 4 an
 *         element could not be read; 5 the array could not be locked; 6 not unlocked: the image is complete;
 *         -2 image or settings is null, a size outside 1..8000, or no memory.
 * @par Ownership
 * The block that image held is freed, and image is null when just the new block could not be had; after any
 * other failure but 6 it is untouched. The host frees the new block with tqImageFree.
 * @par Memory
 * The result, 4 bytes a pel, and what the surface needs: 300 bytes a point, and for a thin-plate spline 16
 * bytes for each pair of up to 1000 points, above that 500 bytes a point.
 * @par Source
 * D. Shepard, A two-dimensional interpolation function, 1968; R. Franke, Scattered data interpolation, 1982;
 * J. Duchon, Splines minimizing rotation-invariant semi-norms, 1977; A. Faul, G. Goodsell, M. Powell, A
 * Krylov subspace algorithm, 2005.
 * @note Header: CenterCol and CenterRow are the middle, the resolutions 1, MaxPelValue 32000, TotalPelValue,
 *       CenterPelValue and SourceDistance 0. The messages of the calling thread are dispatched meanwhile.
 */
TQ_API int32_t TQ_CALL tqBuildMultiPointImage(TqImage** image, const TqMultiPointSettings* settings,
                                              SAFEARRAY** points);

/**
 * @brief Multiplies every pel by the correction of its place on the sensor.
 *
 * The correction image belongs to the full, unbinned sensor and need not have the measurement's size. Image
 * pel (c, r) covers the BinCols x BinRows sensor pels from (BinCols x (c0 + c), BinRows x (r0 + r)) on, with
 * c0 = correction CenterCol / BinCols - image CenterCol, r0 likewise, truncated, -1 counting as 0. Its factor
 * is the mean of the correction pels there, as signed 16-bit numbers and without those of 65535, times the
 * correction's LuxPerGrey; 1 where there is none. The new pel is pel x factor + 0.5, truncated and clamped to
 * 0..65535. A pel of 0 stays 0.
 *
 * @param[in,out] image  Address of the pointer to the measurement; the corrected image, with the
 *                       measurement's whole header, replaces it. Untouched when the function fails.
 * @param[in] correction Correction image, as tqBuildMultiPointImage makes it. The host's image itself is
 *                       accepted.
 * @return 0; -2 image is null or invalid; -3 correction is null or invalid; -7 column offset below -1 or no
 *         number, as with BinCols of 0; -8 the same for rows; -9 no memory.
 * @par Ownership
 * The block that image held is freed and replaced; the host frees the new one with tqImageFree.
 * @par Memory
 * The result and, for a binned measurement, 16 bytes a column.
 * @note TotalPelValue and MaxPelValue are not updated.
 */
TQ_API int32_t TQ_CALL tqApplyMultiPointCalibration(TqImage** image, const TqImage* correction);

/** @} */

#ifdef __cplusplus
} /* extern "C" */

static_assert(sizeof(TqMultiPointSettings) == 40, "hosts exchange the settings as 40 bytes without gaps");
#endif

#endif
