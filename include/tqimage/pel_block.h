/** @file pel_block.h
 *  Block sums, block averages around a pel, and the number of block averages beyond a threshold.
 *
 *  Three kinds of block:
 *  - The block sum takes a rectangle of inclusive pel indices and cuts it to the image: left and top are
 *    raised to 0, right and bottom lowered to the last column and row. A right or bottom of 0 is column or
 *    row 0, unlike in region_rectangle.h.
 *  - The circle block is the circle inscribed in such a rectangle before it is cut: centre (left + (right -
 *    left) / 2, top + (bottom - top) / 2), squared radius ((|D| + 1) / 2)^2 with D the larger of the spans
 *    right - left and bottom - top (the vertical one when they are equal). A pel on the circle is inside.
 *    Block 0, 0, 9, 4 has D = 9 and squared radius 25.
 *  - The pel block is given by a centre pel, a width and a height. The block starts width / 2 columns left of
 *    and height / 2 rows above the centre (integer halves). At the left and top border it slides inward and
 *    keeps its size, at the right and bottom border it is cut short; hosts rely on the difference.
 *    The elliptic pel block follows the rule of region_ellipse.h.
 *
 *  Sums of pels are exact: they are formed in integers and converted to double once. Images are only read.
 *  Output pointers must not be null.
 */
#ifndef TQIMAGE_PEL_BLOCK_H
#define TQIMAGE_PEL_BLOCK_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup pel_block Blocks of pels
 *  @ingroup measure
 *  @copydoc pel_block.h
 *  @{ */

/** @brief Sum of the pels of a rectangle that reach a threshold.
 *  @param[in] image image to measure
 *  @param[in] threshold smallest pel that is summed, grey levels; its low 16 bits count, so 65536 acts as 0
 *  @param[in] left first column, pels, any value (raised to 0)
 *  @param[in] top first row, pels, any value (raised to 0)
 *  @param[in] right last column, pels, any value (lowered to the last column)
 *  @param[in] bottom last row, pels, any value (lowered to the last row)
 *  @return the sum, grey levels; -1.0 image null or invalid; -2.0 the cut rectangle is empty; the codes -3.0
 *          (left or top outside) and -4.0 (right or bottom outside) are reserved: the cut rules them out
 */
TQ_API double TQ_CALL tqSumPelBlock(const TqImage* image, int32_t threshold, int32_t left, int32_t top,
                                    int32_t right, int32_t bottom);

/** @brief Sum of the pels of a circle block that reach a threshold.
 *  @param[in] image image to measure
 *  @param[in] threshold smallest pel that is summed, grey levels; its low 16 bits count, so 65536 acts as 0
 *  @param[in] left first column, pels, any value (the circle keeps it, the pels are cut to the image)
 *  @param[in] top first row, pels, any value (likewise)
 *  @param[in] right last column, pels, any value (likewise)
 *  @param[in] bottom last row, pels, any value (likewise)
 *  @return the sum, grey levels; -1.0 image null or invalid; -2.0 the cut rectangle is empty; -3.0 and -4.0
 *          reserved as in tqSumPelBlock
 */
TQ_API double TQ_CALL tqSumPelBlockCircle(const TqImage* image, int32_t threshold, int32_t left, int32_t top,
                                          int32_t right, int32_t bottom);

/** @brief Number of pel positions of a rectangle that lie inside its circle block. Needs no image, so
 *  nothing is cut.
 *  @param[in] left first column, pels, any value
 *  @param[in] top first row, pels, any value
 *  @param[in] right last column, pels, >= left
 *  @param[in] bottom last row, pels, >= top
 *  @return the number of positions, at most INT32_MAX; -2 left > right or top > bottom
 */
TQ_API int32_t TQ_CALL tqSumPelBlockCirclePels(int32_t left, int32_t top, int32_t right, int32_t bottom);

/** @brief Mean of the pel block around a pel.
 *  @param[in] image image to measure
 *  @param[in] centerCol centre column, pels, any value (clamped into the image)
 *  @param[in] centerRow centre row, pels, any value (clamped into the image)
 *  @param[in] width block width, pels, any value (below 1: 1)
 *  @param[in] height block height, pels, any value (below 1: 1)
 *  @return the mean, grey levels; -1.0 image null or invalid
 *  @note Width 4 at column 0 averages columns 0..3, at the last column the last three.
 */
TQ_API double TQ_CALL tqGetPelBlockAvg(const TqImage* image, int32_t centerCol, int32_t centerRow,
                                       int32_t width, int32_t height);

/** @brief Mean of the elliptic pel block around a pel.
 *  @param[in] image image to measure
 *  @param[in] centerCol centre column, pels, any value
 *  @param[in] centerRow centre row, pels, any value
 *  @param[in] width full width, pels, any value (0: the single pel at the centre)
 *  @param[in] height full height, pels, any value (0: the single pel at the centre)
 *  @return the mean of the pels inside, grey levels; -1.0 image null or invalid
 *  @note When no pel is inside, the centre is read as the 1-based co-ordinates of tqGetImgPel, one column and
 *        one row before the pel meant. Hosts rely on the value as it is.
 */
TQ_API double TQ_CALL tqGetPelBlockAvgEllipse(const TqImage* image, int32_t centerCol, int32_t centerRow,
                                              int32_t width, int32_t height);

/** @brief Number of pels of the whole image whose pel block average is at least a threshold.
 *  @param[in] image image to measure
 *  @param[out] count number of positions, pels; untouched after a failure
 *  @param[in] threshold smallest average that counts, grey levels; NaN counts nothing
 *  @param[in] blockWidth block width, pels, any value (below 2: 1; at most PelCols)
 *  @param[in] blockHeight block height, pels, any value (below 2: 1; at most PelRows)
 *  @return 0; -2 image null or invalid, or no memory
 *  @par Memory
 *  A few working rows; the cost a pel does not grow with the block. A 1 x 1 block needs no memory.
 *  @note Averages equal to the threshold count here and in tqCountAllPelBlocksLess.
 */
TQ_API int32_t TQ_CALL tqCountAllPelBlocks(const TqImage* image, uint32_t* count, double threshold,
                                           int32_t blockWidth, int32_t blockHeight);

/** @brief Number of pels of the whole image whose pel block average is at most a threshold.
 *  @param[in] image image to measure
 *  @param[out] count number of positions, pels; untouched after a failure
 *  @param[in] threshold largest average that counts, grey levels; NaN counts nothing
 *  @param[in] blockWidth block width, pels, any value (below 2: 1; at most PelCols)
 *  @param[in] blockHeight block height, pels, any value (below 2: 1; at most PelRows)
 *  @return 0; -2 image null or invalid, or no memory
 *  @par Memory
 *  As tqCountAllPelBlocks.
 *  @note Equality counts despite the name: hosts rely on the two counts overlapping at the threshold.
 */
TQ_API int32_t TQ_CALL tqCountAllPelBlocksLess(const TqImage* image, uint32_t* count, double threshold,
                                               int32_t blockWidth, int32_t blockHeight);

/** @brief Number of pels of the whole image whose elliptic block average is at least a threshold.
 *  @param[in] image image to measure
 *  @param[out] count number of positions, pels; untouched after a failure
 *  @param[in] threshold smallest average that counts, grey levels; NaN counts nothing
 *  @param[in] blockWidth full width, pels, any value (below 2: 1; at most PelCols)
 *  @param[in] blockHeight full height, pels, any value (below 2: 1; at most PelRows)
 *  @return 0; -2 image null or invalid, or no memory
 *  @par Memory
 *  Working rows, at most one for each row of the block; the cost a pel grows with the block height only.
 *  @note Averages equal to the threshold count here and in tqCountAllPelBlocksEllipseLess.
 */
TQ_API int32_t TQ_CALL tqCountAllPelBlocksEllipse(const TqImage* image, uint32_t* count, double threshold,
                                                  int32_t blockWidth, int32_t blockHeight);

/** @brief Number of pels of the whole image whose elliptic block average is at most a threshold.
 *  @param[in] image image to measure
 *  @param[out] count number of positions, pels; untouched after a failure
 *  @param[in] threshold largest average that counts, grey levels; NaN counts nothing
 *  @param[in] blockWidth full width, pels, any value (below 2: 1; at most PelCols)
 *  @param[in] blockHeight full height, pels, any value (below 2: 1; at most PelRows)
 *  @return 0; -2 image null or invalid, or no memory
 *  @par Memory
 *  As tqCountAllPelBlocksEllipse.
 *  @note Equality counts despite the name: hosts rely on the two counts overlapping at the threshold.
 */
TQ_API int32_t TQ_CALL tqCountAllPelBlocksEllipseLess(const TqImage* image, uint32_t* count, double threshold,
                                                      int32_t blockWidth, int32_t blockHeight);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
