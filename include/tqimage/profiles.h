/** @file profiles.h
 *  Means of columns and rows, and the pels along a line.
 *
 *  Rectangles follow the rule at the top of region_rectangle.h: 0, 0, 0, 0 is the whole image.
 */
#ifndef TQIMAGE_PROFILES_H
#define TQIMAGE_PROFILES_H

#include "tqimage/automation.h"
#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup profiles Profiles
 *  @ingroup measure
 *  @copydoc profiles.h
 *  @{ */

/** @brief Makes an array of the means of the columns of a rectangle.
 *  @param[in] image image to measure
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @param[in,out] array address of the host's array pointer, which holds an array or null; receives a
 *                 one-dimensional array of doubles (VT_R8), lower bound 0, with one mean, grey levels, for
 *                 each column from left to right; 0 where the rectangle has no rows
 *  @return 0; -2 image null or invalid, or array null; -3 the old array could not be destroyed, as when it is
 *          locked; -4 the array could not be created; -5 it could not be locked; -6 it could not be unlocked
 *  @par Ownership
 *  The old array is destroyed. The new one belongs to the host, which releases it with SafeArrayDestroy;
 *  after -5 and -6, too.
 *  @par Memory
 *  The array, and two working rows.
 *  @note After -2 and -3 the pointer is as before. After -4 it is null, or as before when the working rows
 *        could not be had.
 */
TQ_API int32_t TQ_CALL tqGetColAvg(const TqImage* image, int32_t left, int32_t top, int32_t right,
                                   int32_t bottom, SAFEARRAY** array);

/** @brief Makes an array of the means of the rows of a rectangle.
 *  @param[in] image image to measure
 *  @param[in] left first column, pels, any value (clamped)
 *  @param[in] top first row, pels, any value (clamped)
 *  @param[in] right last column, pels, any value (clamped; 0 is the last column of the image)
 *  @param[in] bottom last row, pels, any value (clamped; 0 is the last row of the image)
 *  @param[in,out] array address of the host's array pointer, which holds an array or null; receives a
 *                 one-dimensional array of doubles (VT_R8), lower bound 0, with one mean, grey levels, for
 *                 each row from top to bottom; 0 where the rectangle has no columns
 *  @return 0; -2 image null or invalid, or array null; -3 the old array could not be destroyed, as when it is
 *          locked; -4 the array could not be created; -5 it could not be locked; -6 it could not be unlocked
 *  @par Ownership
 *  The old array is destroyed. The new one belongs to the host, which releases it with SafeArrayDestroy;
 *  after -5 and -6, too.
 *  @par Memory
 *  The array, and one working row.
 *  @note After -2 and -3 the pointer is as before. After -4 it is null, or as before when the working row
 *        could not be had.
 */
TQ_API int32_t TQ_CALL tqGetRowAvg(const TqImage* image, int32_t left, int32_t top, int32_t right,
                                   int32_t bottom, SAFEARRAY** array);

/** @brief Smallest and largest pel along a line.
 *
 *  The line has one pel a step of its longer axis (of the columns when both are equal); along the other axis
 *  it is rounded to the nearest pel, halves to the even one. It is the same line from either end.
 *  @param[in] image image to measure
 *  @param[in] col1 column of one end, pels, any value
 *  @param[in] row1 row of one end, pels, any value
 *  @param[in] col2 column of the other end, pels, any value
 *  @param[in] row2 row of the other end, pels, any value
 *  @param[out] min smallest pel, 0..65535; must not be null; untouched after a failure
 *  @param[out] max largest pel, 0..65535; must not be null; untouched after a failure
 *  @return 0; -2 image null or invalid; -99 no pel of the line lies in the image
 */
TQ_API int32_t TQ_CALL tqGetXSectionMinMax(const TqImage* image, int32_t col1, int32_t row1, int32_t col2,
                                           int32_t row2, int32_t* min, int32_t* max);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
