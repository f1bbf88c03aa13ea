/** @file region_rectangle.h
 *  Statistics of the pels of a rectangle.
 *
 *  The rule of the rectangle, the same for every function here but tqGetROIPelAvg:
 *  - left, top, right and bottom are 0-based pel indices, all four inclusive.
 *  - left and right are clamped to 0 .. PelCols - 1, top and bottom to 0 .. PelRows - 1.
 *  - After that a right of 0 means the last column and a bottom of 0 the last row: 0, 0, 0, 0 measures the
 *    whole image. A rectangle that ends in column 0 cannot be asked for, and one that lies left of or above
 *    the image reaches to its far side; hosts rely on both.
 *  - Rows top .. bottom are visited downward, columns left .. right rightward. With left > right or
 *    top > bottom no pel is visited.
 *
 *  Sums of pels are exact: they are formed in integers and converted to double once. Images are only read.
 *  Output pointers must not be null unless the parameter says so. No function here needs extra memory unless
 *  it says so.
 */
#ifndef TQIMAGE_REGION_RECTANGLE_H
#define TQIMAGE_REGION_RECTANGLE_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup region_rectangle Rectangles
 *  @ingroup measure
 *  @copydoc region_rectangle.h
 *  @{ */

/** @brief Largest pel of a rectangle.
 *  @param[in] image image to measure
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @return the largest pel, 0..65535, 0 when no pel is visited; -2 image null or invalid
 */
TQ_API int32_t TQ_CALL tqGetMaxPelValueInRegion(const TqImage* image, int32_t left, int32_t top,
                                                int32_t right, int32_t bottom);

/** @brief Smallest pel of a rectangle.
 *  @param[in] image image to measure
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @return the smallest pel, 0..65535; right + 1 (the clamped right) when no pel is visited;
 *          -2 image null or invalid
 *  @note An empty rectangle is not an error: hosts rely on right + 1.
 */
TQ_API int32_t TQ_CALL tqGetMinPelValueInRegion(const TqImage* image, int32_t left, int32_t top,
                                                int32_t right, int32_t bottom);

/** @brief Smallest and largest pel of a rectangle in one pass.
 *  @param[in] image image to measure
 *  @param[out] min smallest pel, 0..65535
 *  @param[out] max largest pel, 0..65535
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @return 0; -2 image null or invalid (min and max untouched)
 *  @note When no pel is visited both outputs are the pel at the clamped (left, top).
 */
TQ_API int32_t TQ_CALL tqGetMinMaxPelValueInRegion(const TqImage* image, int32_t* min, int32_t* max,
                                                   int32_t left, int32_t top, int32_t right, int32_t bottom);

/** @brief Sum and number of the pels of a rectangle that reach a threshold.
 *  @param[in] image image to measure
 *  @param[out] count number of pels >= threshold; set to 0 before the image is checked
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @param[in] threshold smallest pel that counts, grey levels, any value (below 1: all, above 65535: none)
 *  @return the sum of the pels >= threshold, grey levels; -2.0 image null or invalid
 */
TQ_API double TQ_CALL tqGetTotalPelValueInRegion(const TqImage* image, int32_t* count, int32_t left,
                                                 int32_t top, int32_t right, int32_t bottom,
                                                 int32_t threshold);

/** @brief Everything a Type A evaluation of uncertainty needs from the pels of a rectangle, in one pass.
 *  @param[in] image image to measure
 *  @param[out] min smallest pel, 0..65535; may be null
 *  @param[out] max largest pel, 0..65535; may be null
 *  @param[out] mean total / count, grey levels; may be null
 *  @param[out] count number of pels; set to 0 before the image is checked; may be null
 *  @param[out] total sum of the pels, grey levels; may be null
 *  @param[out] totalSquares sum of the squares of the pels, grey levels squared; may be null
 *  @param[out] nonZero number of pels other than 0; set to 0 before the image is checked; may be null
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @return 0; -2 image null or invalid (the outputs other than the counts untouched)
 *  @par Source
 *  JCGM 100:2008 (GUM), 4.2: mean q = total / n, experimental variance of the pels
 *  s^2 = (totalSquares - n q^2) / (n - 1), variance of the mean s^2 / n.
 *  @note When no pel is visited every output is 0 and the result is 0.
 */
TQ_API int32_t TQ_CALL tqGetTotalPelValuesInRegion(const TqImage* image, int32_t* min, int32_t* max,
                                                   float* mean, int32_t* count, double* total,
                                                   double* totalSquares, int32_t* nonZero, int32_t left,
                                                   int32_t top, int32_t right, int32_t bottom);

/** @brief Mean of the pels of a rectangle that hold data: pels of 0 are neither summed nor counted.
 *  @param[in] image image to measure
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @return the mean, grey levels, 0.0 when there is no pel above 0; -2.0 image null or invalid
 */
TQ_API double TQ_CALL tqGetAvgPelValueInRegion(const TqImage* image, int32_t left, int32_t top, int32_t right,
                                               int32_t bottom);

/** @brief Sum of the lit pels of a rectangle divided by their weighted number.
 *  @param[in] image image to measure
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @param[in] low smallest pel that is summed, grey levels, any value
 *  @param[in] high pel from which the weight is 1, grey levels, any value; 0: every weight is 1
 *  @return S / W, grey levels: S sums the pels v >= low, W their weights (v - low) / (high - low) below high
 *          and 1 from high on; S when W is 0. With high = 0 or low >= high the plain mean of the pels
 *          v >= low, 0.0 when there are none. -2.0 image null or invalid
 */
TQ_API double TQ_CALL tqGetWeightedPelValueInRegion(const TqImage* image, int32_t left, int32_t top,
                                                    int32_t right, int32_t bottom, int32_t low, int32_t high);

/** @brief Characteristic (dark) area of a rectangle: pels counted with a soft edge between two levels.
 *  @param[in] image image to measure
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @param[in] full largest pel that counts as 1, grey levels, any value
 *  @param[in] none pel from which on nothing is counted, grey levels, any value
 *  @return the area, pels: a pel v counts 1 when v <= full, (v - none) / (full - none) when
 *          full < v <= none, else 0; with full >= none the number of pels v <= full.
 *          -2.0 image null or invalid
 */
TQ_API double TQ_CALL tqCalcCharAreaInRegion(const TqImage* image, int32_t left, int32_t top, int32_t right,
                                             int32_t bottom, int32_t full, int32_t none);

/** @brief Number of pels of a rectangle.
 *  @param[in] image image to measure
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @return the number of pels visited; -2.0 image null or invalid
 */
TQ_API double TQ_CALL tqCalcAreaInRegion(const TqImage* image, int32_t left, int32_t top, int32_t right,
                                         int32_t bottom);

/** @brief Mean of all pels of a rectangle, pels of 0 included. The rectangle is cut to the image by the rule
 *  of tqSumPelBlock, not by the one at the top of this file: a right or bottom of 0 is column or row 0.
 *  @param[in] image image to measure
 *  @param[in] left first column, pels, any value (raised to 0)
 *  @param[in] top first row, pels, any value (raised to 0)
 *  @param[in] right last column, pels, >= left (lowered to the last column)
 *  @param[in] bottom last row, pels, >= top (lowered to the last row)
 *  @return the mean, grey levels; -2.0 right < left or bottom < top (tested first, image or not);
 *          -1.0 image null or invalid
 *  @note With n = (right - left + 1) * (bottom - top + 1) after the cut, n < 0 gives 0.0. Other rectangles
 *        outside the image divide the -2.0 of the empty block sum by n: minus infinity for n = 0. Hosts rely
 *        on finding no guard there.
 */
TQ_API double TQ_CALL tqGetROIPelAvg(const TqImage* image, int32_t left, int32_t top, int32_t right,
                                     int32_t bottom);

/** @brief Darkest and brightest block average inside a rectangle, with their positions.
 *
 *  Every block of blockWidth x blockHeight pels that lies inside the rectangle is tried, row by row; the
 *  block at (x0, y0) is reported as its reference pel (x0 + blockWidth / 2, y0 + blockHeight / 2). Of equal
 *  averages the first in row order is reported.
 *  @param[in] image image to measure
 *  @param[out] min smallest average, grey levels
 *  @param[out] max largest average, grey levels
 *  @param[out] minCol column of the smallest average, pels; -1 after a failure
 *  @param[out] minRow row of the smallest average, pels; -1 after a failure
 *  @param[out] maxCol column of the largest average, pels; -1 after a failure
 *  @param[out] maxRow row of the largest average, pels; -1 after a failure
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @param[in] blockKind 0: block mean; other values: mean of its ellipse (tqGetPelBlockAvgEllipse)
 *  @param[in] blockWidth block width, pels, any value (below 1: 1)
 *  @param[in] blockHeight block height, pels, any value (below 1: 1)
 *  @return 0; -2 image null or invalid, or no memory; -3 no block fits into the rectangle
 *  @par Memory
 *  A few working rows; the cost a pel does not grow with a block of kind 0.
 *  @note Drains the calling thread's message queue once a row (Windows), so window procedures may run during
 *        the call; they must not free the image.
 */
TQ_API int32_t TQ_CALL tqFindMinMaxInRegion(const TqImage* image, double* min, double* max, int32_t* minCol,
                                            int32_t* minRow, int32_t* maxCol, int32_t* maxRow, int32_t left,
                                            int32_t top, int32_t right, int32_t bottom, int32_t blockKind,
                                            int32_t blockWidth, int32_t blockHeight);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
