/** @file test_patterns.h
 *  The standard test images for measuring displays and projectors.
 *
 *  A pattern is a new image of white pels, 65535, on black ones, 0, unless its function says otherwise. Its
 *  header holds the size, the centre in the middle, 1000 pels a metre, a largest pel of 65535 and binning
 *  factors of 1; the rest of it is 0. Whatever lies outside the image is cut off, so counts, steps and sizes
 *  may have any value. "Nearest" means to the nearest whole pel, halves to the even one.
 */
#ifndef TQIMAGE_TEST_PATTERNS_H
#define TQIMAGE_TEST_PATTERNS_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup test_patterns Test patterns
 *  @ingroup patterns
 *  @copydoc test_patterns.h
 *  @{ */

/**
 * @brief Draws a rectangular lattice of filled discs.
 * @param[in,out] image address of the host's block pointer; receives the pattern
 * @param[in] cols columns, pels, 0 or more
 * @param[in] rows rows, pels, 0 or more
 * @param[in] firstCol column of the first disc's centre, pels from 0
 * @param[in] firstRow row of the first disc's centre
 * @param[in] countX discs in a row; below 2 counts as 2
 * @param[in] countY discs in a column; below 2 counts as 2
 * @param[in] stepX columns from one centre to the next, may be negative
 * @param[in] stepY rows from one centre to the next, may be negative
 * @param[in] radius of the discs, pels; 0 draws single pels, below 0 nothing
 * @return 0; -2 when image is null, a side is negative or no block of that size can be had
 * @par Ownership
 * A block that *image holds is freed when the new one stands; after -2 it stays. The new block belongs to the
 * host, which releases it with tqImageFree.
 * @par Memory
 * The new block and a few numbers a column and a row.
 * @note A pel belongs to a disc when its centre is at most radius away. Discs may overlap, and one whose
 *       centre lies outside the image is cut, not left out. A lattice has at least 2 x 2 discs: hosts rely on
 *       finding its corners.
 */
TQ_API int32_t TQ_CALL tqCreateDotPattern(TqImage** image, int32_t cols, int32_t rows, int32_t firstCol,
                                          int32_t firstRow, int32_t countX, int32_t countY, int32_t stepX,
                                          int32_t stepY, int32_t radius);

/**
 * @brief Draws a Fresnel zone plate: rings of equal area around the middle of the image.
 * @param[in,out] image address of the host's block pointer; receives the pattern
 * @param[in] cols columns, pels, 0 or more
 * @param[in] rows rows, pels, 0 or more
 * @param[in] firstRadius radius of the innermost zone, pels; below 1 counts as 1
 * @param[in] zones zones to draw, dark ones included; 0 or less: as many as are a pel wide or wider, which
 *            are firstRadius^2 / 4
 * @param[in] centreWhite non-zero for a white innermost zone, 0 for a black one
 * @return 0; -2 when image is null, a side is negative or no block of that size can be had
 * @par Ownership
 * A block that *image holds is freed when the new one stands; after -2 it stays. The new block belongs to the
 * host, which releases it with tqImageFree.
 * @par Memory
 * The new block.
 * @note A pel at the distance d from the middle, which lies between pels when a side is even, belongs to zone
 *       d^2 / firstRadius^2, truncated. Beyond the last zone the image is black.
 */
TQ_API int32_t TQ_CALL tqCreateZonePattern(TqImage** image, int32_t cols, int32_t rows, int32_t firstRadius,
                                           int32_t zones, int32_t centreWhite);

/**
 * @brief Draws the thirteen points at which the light of a projector is measured, as filled discs.
 * @param[in,out] image address of the host's block pointer; receives the pattern
 * @param[in] cols columns, pels, 0 or more
 * @param[in] rows rows, pels, 0 or more
 * @param[in] radius of the discs, pels; 0 draws single pels, below 0 nothing
 * @param[in] extended non-zero for 25 points instead of 13
 * @return 0; -2 when image is null, a side is negative or no block of that size can be had
 * @par Ownership
 * A block that *image holds is freed when the new one stands; after -2 it stays. The new block belongs to the
 * host, which releases it with tqImageFree.
 * @par Memory
 * The new block.
 * @note Nine points lie in the middles of a 3 x 3 division, at 100/6, 50 and 500/6 percent of either extent,
 *       four in the corners at 5 and 95 percent. The 25 points are all crossings of these five columns and
 *       five rows. A point at p percent lies at column p / 100 x (cols - 1) + 0.5, nearest, and rows alike.
 */
TQ_API int32_t TQ_CALL tqCreateANSI13Pattern(TqImage** image, int32_t cols, int32_t rows, int32_t radius,
                                             int32_t extended);

/**
 * @brief Draws filled discs in the middles of equal fields that cover the image, for measuring distortion.
 * @param[in,out] image address of the host's block pointer; receives the pattern
 * @param[in] cols columns, pels, 0 or more
 * @param[in] rows rows, pels, 0 or more
 * @param[in] countX discs in a row; below 2 counts as 2
 * @param[in] countY discs in a column; below 2 counts as 2
 * @param[in] radius of the discs, pels; 0 draws single pels, below 0 nothing
 * @return 0; -2 when image is null, a side is negative or no block of that size can be had
 * @par Ownership
 * A block that *image holds is freed when the new one stands; after -2 it stays. The new block belongs to the
 * host, which releases it with tqImageFree.
 * @par Memory
 * The new block and a few numbers a column and a row.
 * @note Disc i of a row has its centre at column (2 i + 1) (cols - 1) / (2 countX), nearest, and rows alike.
 */
TQ_API int32_t TQ_CALL tqCreateDistortionPattern(TqImage** image, int32_t cols, int32_t rows, int32_t countX,
                                                 int32_t countY, int32_t radius);

/**
 * @brief Draws a grid of vertical and horizontal lines.
 * @param[in,out] image address of the host's block pointer; receives the pattern
 * @param[in] cols columns, pels, 0 or more
 * @param[in] rows rows, pels, 0 or more
 * @param[in] left first column of the first vertical line, pels from 0
 * @param[in] top first row of the first horizontal line
 * @param[in] countX vertical lines; below 2 counts as 2
 * @param[in] countY horizontal lines; below 2 counts as 2
 * @param[in] stepX columns from one line to the next
 * @param[in] stepY rows from one line to the next
 * @param[in] lineWidth width of the lines, pels; below 1 nothing is drawn
 * @return 0; -2 when image is null, a side is negative or no block of that size can be had
 * @par Ownership
 * A block that *image holds is freed when the new one stands; after -2 it stays. The new block belongs to the
 * host, which releases it with tqImageFree.
 * @par Memory
 * The new block and a few numbers a column and a row.
 * @note Lines run from left and top to 2 x ((lineWidth - 1) / 2) pels past the first pel of the last line
 *       across them. With an even width that is one pel short of the grid's corner, and hosts rely on it. A
 *       line that would start before the image is moved to its first column or row, not cut.
 */
TQ_API int32_t TQ_CALL tqCreateGridPattern(TqImage** image, int32_t cols, int32_t rows, int32_t left,
                                           int32_t top, int32_t countX, int32_t countY, int32_t stepX,
                                           int32_t stepY, int32_t lineWidth);

/**
 * @brief Draws a crosshatch across the whole image, for judging how primaries or projectors converge.
 * @param[in,out] image address of the host's block pointer; receives the pattern
 * @param[in] cols columns, pels, 0 or more
 * @param[in] rows rows, pels, 0 or more
 * @param[in] countX vertical lines; 0 or less draws none
 * @param[in] countY horizontal lines; 0 or less draws none
 * @param[in] lineWidth width of the lines, pels; below 1 nothing is drawn
 * @return 0; -2 when image is null, a side is negative or no block of that size can be had
 * @par Ownership
 * A block that *image holds is freed when the new one stands; after -2 it stays. The new block belongs to the
 * host, which releases it with tqImageFree.
 * @par Memory
 * The new block and a few numbers a column and a row.
 * @note Vertical line k starts at column (2 k + 1) (cols - 1) / (2 countX), nearest, less lineWidth / 2,
 *       truncated; rows alike.
 */
TQ_API int32_t TQ_CALL tqCreateConvergencePattern(TqImage** image, int32_t cols, int32_t rows, int32_t countX,
                                                  int32_t countY, int32_t lineWidth);

/**
 * @brief Draws five parallel lines across the whole image, at 10, 30, 50, 70 and 90 percent of its extent.
 * @param[in,out] image address of the host's block pointer; receives the pattern
 * @param[in] cols columns, pels, 0 or more
 * @param[in] rows rows, pels, 0 or more
 * @param[in] horizontal non-zero for horizontal lines, 0 for vertical ones
 * @param[in] lineWidth width of the lines, pels; below 1 counts as 1
 * @return 0; -2 when image is null, a side is negative or no block of that size can be had
 * @par Ownership
 * A block that *image holds is freed when the new one stands; after -2 it stays. The new block belongs to the
 * host, which releases it with tqImageFree.
 * @par Memory
 * The new block.
 * @note A vertical line at p percent starts at column p / 100 x (cols - 1), nearest, less lineWidth / 2,
 *       truncated; horizontal ones by rows.
 */
TQ_API int32_t TQ_CALL tqCreateVESAConvergencePattern(TqImage** image, int32_t cols, int32_t rows,
                                                      int32_t horizontal, int32_t lineWidth);

/**
 * @brief Draws nested frames around a plain interior.
 * @param[in,out] image address of the host's block pointer; receives the pattern
 * @param[in] count number of frames, from the outermost; 0 or less draws none
 * @param[in] values grey levels of the frames, count of them; null for white and black in turn
 * @param[in] cols columns, pels, 0 or more
 * @param[in] rows rows, pels, 0 or more
 * @param[in] frameX width of every frame's left and right sides, pels; below 1 the frames have no such sides
 * @param[in] frameY height of every frame's top and bottom sides, pels; below 1 the frames have none
 * @param[in] interior grey level inside the frames; below 0 counts as 0, above 65535 as 65535
 * @return 0; -2 when image is null, a side is negative or no block of that size can be had
 * @par Ownership
 * A block that *image holds is freed when the new one stands; after -2 it stays. The new block belongs to the
 * host, which releases it with tqImageFree.
 * @par Memory
 * The new block and a row.
 * @note A pel with dx and dy pels between it and the nearest edges lies in frame dx / frameX or dy / frameY,
 *       truncated, whichever is less.
 */
TQ_API int32_t TQ_CALL tqCreateBorderPattern(TqImage** image, int32_t count, const uint16_t* values,
                                             int32_t cols, int32_t rows, int32_t frameX, int32_t frameY,
                                             int32_t interior);

/**
 * @brief Draws a checkerboard that fills the image.
 * @param[in,out] image address of the host's block pointer; receives the pattern
 * @param[in] cols columns, pels, 0 or more
 * @param[in] rows rows, pels, 0 or more
 * @param[in] fieldsX fields in a row; below 2 counts as 2
 * @param[in] fieldsY fields in a column; below 2 counts as 2
 * @param[in] whiteFirst non-zero for a white field in the first column and row, 0 for a black one
 * @return 0; -2 when image is null, a side is negative or no block of that size can be had
 * @par Ownership
 * A block that *image holds is freed when the new one stands; after -2 it stays. The new block belongs to the
 * host, which releases it with tqImageFree.
 * @par Memory
 * The new block and two rows.
 * @note Field k of a row, counted from 1, ends with column k (cols - 1) / fieldsX, nearest; rows alike. With
 *       more fields than pels some are empty, and still count for the alternation.
 */
TQ_API int32_t TQ_CALL tqCreateCheckerboardPattern(TqImage** image, int32_t cols, int32_t rows,
                                                   int32_t fieldsX, int32_t fieldsY, int32_t whiteFirst);

/**
 * @brief Draws four fields, red, green, blue and white, as one image for each primary.
 * @param[in,out] red address of a host's block pointer; receives the plane that lights the upper left field
 * @param[in,out] green address of a host's block pointer; receives the one for the upper right field
 * @param[in,out] blue address of a host's block pointer; receives the one for the lower left field
 * @param[in,out] white address of a host's block pointer; receives the lower right field alone; may be null
 *                when fourPrimaries is 0
 * @param[in] cols columns, pels, 0 or more
 * @param[in] rows rows, pels, 0 or more
 * @param[in] fourPrimaries 0: the lower right field is lit in red, green and blue, and the fourth plane marks
 *            it; else it is lit in the fourth plane only
 * @return 0; -2 when a pointer that is needed is null, a side is negative or no block of that size can be had
 * @par Ownership
 * Blocks that the pointers hold are freed when all new ones stand; after -2 they stay. The new blocks belong
 * to the host, which releases each with tqImageFree.
 * @par Memory
 * The new blocks.
 * @note The middle column and row of odd sides belong to the left and upper fields.
 */
TQ_API int32_t TQ_CALL tqCreateFourColorImage(TqImage** red, TqImage** green, TqImage** blue, TqImage** white,
                                              int32_t cols, int32_t rows, int32_t fourPrimaries);

/**
 * @brief Draws vertical bands from black on the left to white on the right.
 * @param[in,out] image address of the host's block pointer; receives the pattern
 * @param[in] steps number of bands, 2 or more
 * @param[in] cols columns, pels, 0 or more
 * @param[in] rows rows, pels, 0 or more
 * @return 0; -2 when image is null, a side is negative or no block of that size can be had; -3 when steps is
 *         below 2
 * @par Ownership
 * A block that *image holds is freed when the new one stands; after -2 and -3 it stays. The new block belongs
 * to the host, which releases it with tqImageFree.
 * @par Memory
 * The new block and a row.
 * @note A band is cols / steps + 0.5 columns wide, nearest; the last one takes what is left, so when the
 *       width is rounded up the right bands are narrower, or cut off by the image. Band k from 0 has the
 *       grey level k x 65535 / (steps - 1), truncated.
 */
TQ_API int32_t TQ_CALL tqCreateGrayScaleImage(TqImage** image, int32_t steps, int32_t cols, int32_t rows);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
