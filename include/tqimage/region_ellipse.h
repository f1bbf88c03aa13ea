/** @file region_ellipse.h
 *  Statistics of the pels of an ellipse.
 *
 *  The rule of the ellipse, the same for every function here and for tqGetPelBlockAvgEllipse:
 *  - The centre is a pel, width and height are full diameters in pels.
 *  - The bounding box reaches width / 2 columns and height / 2 rows (integer halves) to each side of the
 *    centre clamped into the image, and is cut to the image.
 *  - A pel (x, y) of the box is inside when (x - centerCol)^2 / a^2 + (y - centerRow)^2 / b^2 <= 1 with
 *    a = width / 2, b = height / 2 in double; the centre is here as passed, so that an ellipse centred
 *    outside the image is measured where it overlaps it. Equality is inside.
 *  - With a width or a height of 0 nothing is scanned: every function, those for areas included, returns the
 *    pel nearest to the centre. Hosts rely on it to read a single pel.
 *  - A size of -1 acts as 1; sizes below that give an empty box.
 *
 *  Sums of pels are exact: they are formed in integers and converted to double once. Images are only read.
 *  Output pointers must not be null. No function here needs extra memory.
 */
#ifndef TQIMAGE_REGION_ELLIPSE_H
#define TQIMAGE_REGION_ELLIPSE_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup region_ellipse Ellipses
 *  @ingroup measure
 *  @copydoc region_ellipse.h
 *  @{ */

/** @brief Largest pel of an ellipse.
 *  @param[in] image image to measure
 *  @param[in] centerCol centre column, pels, any value
 *  @param[in] centerRow centre row, pels, any value
 *  @param[in] width full width, pels, any value (0: the single pel at the centre)
 *  @param[in] height full height, pels, any value (0: the single pel at the centre)
 *  @return the largest pel, 0..65535, 0 when no pel is inside; -1 image null or invalid
 */
TQ_API int32_t TQ_CALL tqGetMaxPelValueInEllipse(const TqImage* image, int32_t centerCol, int32_t centerRow,
                                                 int32_t width, int32_t height);

/** @brief Smallest pel of an ellipse.
 *  @param[in] image image to measure
 *  @param[in] centerCol centre column, pels, any value
 *  @param[in] centerRow centre row, pels, any value
 *  @param[in] width full width, pels, any value (0: the single pel at the centre)
 *  @param[in] height full height, pels, any value (0: the single pel at the centre)
 *  @return the smallest pel, 0..65535, 0 when no pel is inside; -1 image null or invalid
 */
TQ_API int32_t TQ_CALL tqGetMinPelValueInEllipse(const TqImage* image, int32_t centerCol, int32_t centerRow,
                                                 int32_t width, int32_t height);

/** @brief Sum and number of the pels of an ellipse that reach a threshold.
 *  @param[in] image image to measure
 *  @param[out] count number of pels >= threshold; set to 0 before the image is checked
 *  @param[in] centerCol centre column, pels, any value
 *  @param[in] centerRow centre row, pels, any value
 *  @param[in] width full width, pels, any value (0: the single pel at the centre)
 *  @param[in] height full height, pels, any value (0: the single pel at the centre)
 *  @param[in] threshold smallest pel that counts, grey levels, any value (below 1: all, above 65535: none)
 *  @return the sum of the pels >= threshold, grey levels; -1.0 image null or invalid
 *  @note With a width or height of 0 the result is the pel at the centre, whatever the threshold, and count
 *        stays 0.
 */
TQ_API double TQ_CALL tqGetTotalPelValueInEllipse(const TqImage* image, int32_t* count, int32_t centerCol,
                                                  int32_t centerRow, int32_t width, int32_t height,
                                                  int32_t threshold);

/** @brief Sum of the lit pels of an ellipse divided by their weighted number.
 *  @param[in] image image to measure
 *  @param[in] centerCol centre column, pels, any value
 *  @param[in] centerRow centre row, pels, any value
 *  @param[in] width full width, pels, any value (0: the single pel at the centre)
 *  @param[in] height full height, pels, any value (0: the single pel at the centre)
 *  @param[in] low smallest pel that is summed, grey levels, any value
 *  @param[in] high pel from which the weight is 1, grey levels, any value; 0: every weight is 1
 *  @return as tqGetWeightedPelValueInRegion, grey levels; -1.0 image null or invalid
 */
TQ_API double TQ_CALL tqGetWeightedPelValueInEllipse(const TqImage* image, int32_t centerCol,
                                                     int32_t centerRow, int32_t width, int32_t height,
                                                     int32_t low, int32_t high);

/** @brief Characteristic (dark) area of an ellipse: pels counted with a soft edge between two levels.
 *  @param[in] image image to measure
 *  @param[in] centerCol centre column, pels, any value
 *  @param[in] centerRow centre row, pels, any value
 *  @param[in] width full width, pels, any value (0: the result is the pel at the centre)
 *  @param[in] height full height, pels, any value (0: the result is the pel at the centre)
 *  @param[in] full largest pel that counts as 1, grey levels, any value
 *  @param[in] none pel from which on nothing is counted, grey levels, any value
 *  @return the area, pels, as tqCalcCharAreaInRegion; -1.0 image null or invalid
 */
TQ_API double TQ_CALL tqCalcCharAreaInEllipse(const TqImage* image, int32_t centerCol, int32_t centerRow,
                                              int32_t width, int32_t height, int32_t full, int32_t none);

/** @brief Number of pels inside an ellipse.
 *  @param[in] image image to measure
 *  @param[in] centerCol centre column, pels, any value
 *  @param[in] centerRow centre row, pels, any value
 *  @param[in] width full width, pels, any value (0: the result is the pel at the centre)
 *  @param[in] height full height, pels, any value (0: the result is the pel at the centre)
 *  @return the number of pels inside; -1.0 image null or invalid
 */
TQ_API double TQ_CALL tqCalcAreaInEllipse(const TqImage* image, int32_t centerCol, int32_t centerRow,
                                          int32_t width, int32_t height);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
