/** @file region_polygon.h
 *  Statistics of the pels of a polygon.
 *
 *  The vertex array: the address of the host's SAFEARRAY pointer. The array has two dimensions and 4-byte
 *  elements (int32, VT_I4): the first index is 0 for a column and 1 for a row, the second the vertex, both
 *  counted from 0, so lower bounds are 0. In C: SafeArrayCreate(VT_I4, 2, {{2, 0}, {n, 0}}). The number of
 *  vertices is the extent of the last dimension. The last vertex joins the first; edges may cross; vertices
 *  may lie anywhere in the range of int32, outside the image too. The array is read once, before any pel.
 *
 *  Which pels belong to it:
 *  - On a row y an edge (x1, y1)-(x2, y2) that is not horizontal crosses at column
 *    trunc((y - y1) / s + x1 + 0.5), with the slope s = (y2 - y1) / (x2 - x1) rounded to single precision;
 *    a vertical edge at x1. Between crossings of a pair both ends are included.
 *  - A row that no horizontal edge touches is filled between crossings taken in pairs from the left; a
 *    vertex where the boundary goes on to the other side counts as one crossing, a tip as two.
 *  - A row that a horizontal edge touches is the union of the edge itself and of the fillings just above and
 *    just below it: (a) pairs of crossings of edges with ymin < y <= ymax, (b) pairs of crossings of edges
 *    with ymin <= y < ymax.
 *  - A pel is visited once. One or two vertices, and a single horizontal line, are measured along the line.
 *
 *  Status, the same for every function (as int32_t or as double):
 *  - -7 image null or invalid, or no memory for the working rows;
 *  - -2 the array is null, has not two dimensions, not 4-byte elements, or a vertex cannot be read.
 *  The codes -3 to -6 once told which coordinate could not be read a second time. Vertices are read once, so
 *  they no longer occur; hosts that test for any negative code keep working.
 *
 *  Without a vertex nothing is visited, which is not an error. Sums of pels are exact: they are formed in
 *  integers and converted to double once. Images and vertex arrays are only read. Extra memory: about a
 *  hundred bytes a vertex.
 */
#ifndef TQIMAGE_REGION_POLYGON_H
#define TQIMAGE_REGION_POLYGON_H

#include "tqimage/automation.h"
#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup region_polygon Polygons
 *  @ingroup measure
 *  @copydoc region_polygon.h
 *  @{ */

/** @brief Largest pel of a polygon.
 *  @param[in] image image to measure
 *  @param[in] vertices vertex array, pels, any int32 coordinates
 *  @return the largest pel, 0..65535, 0 when no pel is visited; -7 image null or invalid, or no memory;
 *          -2 vertex array null or unreadable
 */
TQ_API int32_t TQ_CALL tqGetMaxPelValueInPoly(const TqImage* image, SAFEARRAY** vertices);

/** @brief Smallest pel of a polygon.
 *  @param[in] image image to measure
 *  @param[in] vertices vertex array, pels, any int32 coordinates
 *  @return the smallest pel, 0..65535, 0 when no pel is visited; -7 image null or invalid, or no memory;
 *          -2 vertex array null or unreadable
 */
TQ_API int32_t TQ_CALL tqGetMinPelValueInPoly(const TqImage* image, SAFEARRAY** vertices);

/** @brief Sum and number of the pels of a polygon that reach a threshold.
 *  @param[in] image image to measure
 *  @param[out] count number of pels >= threshold; set to 0 before anything is checked; must not be null
 *  @param[in] vertices vertex array, pels, any int32 coordinates
 *  @param[in] threshold smallest pel that counts, grey levels, any value (below 1: all, above 65535: none)
 *  @return the sum of the pels >= threshold, grey levels; -7.0 image null or invalid, or no memory;
 *          -2.0 vertex array null or unreadable
 */
TQ_API double TQ_CALL tqGetTotalPelValueInPoly(const TqImage* image, int32_t* count, SAFEARRAY** vertices,
                                               int32_t threshold);

/** @brief Sum of the lit pels of a polygon divided by their weighted number.
 *  @param[in] image image to measure
 *  @param[in] vertices vertex array, pels, any int32 coordinates
 *  @param[in] low smallest pel that is summed, grey levels, any value
 *  @param[in] high pel from which the weight is 1, grey levels, any value; 0: every weight is 1
 *  @return as tqGetWeightedPelValueInRegion, grey levels; -7.0 image null or invalid, or no memory;
 *          -2.0 vertex array null or unreadable
 */
TQ_API double TQ_CALL tqGetWeightedPelValueInPoly(const TqImage* image, SAFEARRAY** vertices, int32_t low,
                                                  int32_t high);

/** @brief Characteristic (dark) area of a polygon: pels counted with a soft edge between two levels.
 *  @param[in] image image to measure
 *  @param[in] vertices vertex array, pels, any int32 coordinates
 *  @param[in] full largest pel that counts as 1, grey levels, any value
 *  @param[in] none pel from which on nothing is counted, grey levels, any value
 *  @return the area, pels, as tqCalcCharAreaInRegion; -7.0 image null or invalid, or no memory;
 *          -2.0 vertex array null or unreadable
 */
TQ_API double TQ_CALL tqCalcCharAreaInPoly(const TqImage* image, SAFEARRAY** vertices, int32_t full,
                                           int32_t none);

/** @brief Number of pels of a polygon.
 *  @param[in] image image to measure
 *  @param[in] vertices vertex array, pels, any int32 coordinates
 *  @return the number of pels visited; -7.0 image null or invalid, or no memory; -2.0 vertex array
 *          null or unreadable
 */
TQ_API double TQ_CALL tqCalcAreaInPoly(const TqImage* image, SAFEARRAY** vertices);

/** @brief Mean of all pels of a polygon, pels of 0 included.
 *  @param[in] image image to measure
 *  @param[in] vertices vertex array, pels, any int32 coordinates
 *  @return the mean, grey levels, 0.0 when no pel is visited; -7.0 image null or invalid, or no
 *          memory; -2.0 vertex array null or unreadable
 */
TQ_API double TQ_CALL tqGetPelBlockAvgPoly(const TqImage* image, SAFEARRAY** vertices);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
