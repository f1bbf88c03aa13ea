/** @file defects.h
 *  Repair of the pels that a sensor delivers wrong: each is replaced by the mean of healthy neighbours.
 *
 *  All functions work in place. Co-ordinates are 0-based pels of the image unless sensor co-ordinates are
 *  named. Means are truncated to whole grey levels, and neighbours of value 0 are included in them; only
 *  tqFixDefects leaves them out.
 */
#ifndef TQIMAGE_DEFECTS_H
#define TQIMAGE_DEFECTS_H

#include "tqimage/automation.h"
#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup defects Repair of defects
 *  @ingroup process
 *  @copydoc defects.h
 *  @{ */

/**
 * @brief Replaces one pel by the mean of the pels around it.
 *
 * The neighbourhood runs from column - width / 2 to column + width / 2 and from row - height / 2 to
 * row + height / 2 (integer division), cut at the border; the pel itself is left out of the mean.
 *
 * @param[in,out] image Image to repair.
 * @param[in] column    Column of the pel, 0..PelCols - 1.
 * @param[in] row       Row of the pel, 0..PelRows - 1.
 * @param[in] width     Width of the neighbourhood, pels.
 * @param[in] height    Height of the neighbourhood, pels.
 * @return 0; -1 image is null or invalid, the pel lies outside, or the neighbourhood has fewer than 2 pels.
 */
TQ_API int32_t TQ_CALL tqReplacePel(TqImage* image, int32_t column, int32_t row, int32_t width,
                                    int32_t height);

/**
 * @brief Replaces a segment of a column, row by row, by the mean of the columns beside it.
 *
 * The neighbourhood of a row runs from column - width / 2 to column + width / 2, cut at the border. When it
 * is exactly 3 columns wide the pel becomes (first + last) / 2 of them, otherwise the mean of all but the
 * repaired one.
 *
 * @param[in,out] image Image to repair.
 * @param[in] column    Column to repair, 0..PelCols - 1.
 * @param[in] firstRow  First row of the segment; below 0 means 0.
 * @param[in] lastRow   Last row of the segment, inclusive; above the last row means the last row.
 * @param[in] width     Width of the neighbourhood, pels.
 * @return 0, also when the segment is empty; -1 image is null or invalid, the column lies outside, or the
 *         neighbourhood has fewer than 2 columns.
 * @note At the border a neighbourhood cut to 3 columns may begin or end with the repaired column itself.
 */
TQ_API int32_t TQ_CALL tqReplaceCol(TqImage* image, int32_t column, int32_t firstRow, int32_t lastRow,
                                    int32_t width);

/**
 * @brief Replaces a segment of a row, column by column, by the mean of the rows above and below it.
 *
 * The rule is the one of tqReplaceCol with rows and columns exchanged.
 *
 * @param[in,out] image   Image to repair.
 * @param[in] row         Row to repair, 0..PelRows - 1.
 * @param[in] firstColumn First column of the segment; below 0 means 0.
 * @param[in] lastColumn  Last column of the segment, inclusive; above the last column means the last column.
 * @param[in] height      Height of the neighbourhood, pels.
 * @return 0, also when the segment is empty; -1 image is null or invalid, the row lies outside, or the
 *         neighbourhood has fewer than 2 rows.
 * @note At the border a neighbourhood cut to 3 rows may begin or end with the repaired row itself.
 */
TQ_API int32_t TQ_CALL tqReplaceRow(TqImage* image, int32_t row, int32_t firstColumn, int32_t lastColumn,
                                    int32_t height);

/**
 * @brief Fills a block with the mean of the frame around it.
 *
 * The frame reaches width columns to each side of the block and height rows above and below it. Block and
 * frame are cut at the border; a block without a pel in the image, or without a frame, changes nothing.
 *
 * @param[in,out] image Image to repair.
 * @param[in] column    First column of the block.
 * @param[in] row       First row of the block.
 * @param[in] width     Columns of the block.
 * @param[in] height    Rows of the block.
 * @return 0; -2 image is null or invalid.
 */
TQ_API int32_t TQ_CALL tqReplaceBlock(TqImage* image, int32_t column, int32_t row, int32_t width,
                                      int32_t height);

/**
 * @brief Repairs every defect of a sensor's defect list.
 *
 * The list is an array of two dimensions of 32-bit integers, element {record, field}, with five fields a
 * record. Columns and rows in it are sensor co-ordinates; the image's are
 * (sensor column - originColumn) / BinCols and (sensor row - originRow) / BinRows, truncated toward zero.
 *
 * | type (0) | x (1) | y (2) | start (3) | end (4) | repaired as |
 * |---|---|---|---|---|---|
 * | 0 single pel | column | row | - | - | tqReplacePel |
 * | 1 whole column | column | - | - | - | tqReplaceCol |
 * | 2 column segment | column | - | first row | last row | tqReplaceCol |
 * | 3 whole row | - | row | - | - | tqReplaceRow |
 * | 4 row segment | - | row | first column | last column | tqReplaceRow |
 * | 5 block | first column | first row | width, image pels | height, image pels | tqReplaceBlock |
 *
 * Records run in the order of the list. A record that lies outside the image, and one of another type, is
 * skipped.
 *
 * @param[in,out] image    Image to repair.
 * @param[in] originColumn Sensor column of the image's first column.
 * @param[in] originRow    Sensor row of the image's first row.
 * @param[in] width        Width of the neighbourhood, image pels.
 * @param[in] height       Height of the neighbourhood, image pels.
 * @param[in] list         Address of the host's pointer to the defect list.
 * @return 0; in the order of the checks: 1 list is null or has not two dimensions; 2 its elements are not
 *         32-bit integers; 3 a record has not five fields; 5 it cannot be locked; -1 image is null or
 *         invalid; then 4 an element cannot be read; -11 a pel cannot be repaired, -21 a column, -31 a column
 *         segment, -41 a row, -51 a row segment; 6 the list cannot be unlocked.
 * @note -11, -21, -31, -41 and -51 end the work at once: earlier repairs stay in the image, and the list
 *       stays locked; the host unlocks it. On every other path it is unlocked.
 */
TQ_API int32_t TQ_CALL tqRemoveBadPixels(TqImage* image, int32_t originColumn, int32_t originRow,
                                         int32_t width, int32_t height, SAFEARRAY** list);

/**
 * @brief Repairs every pel that a defect image marks.
 *
 * A marked pel becomes the mean, truncated, of the pels of its window that are neither 0 nor marked and do
 * not touch it: more than one column or more than one row away. The window starts width / 2 columns left of
 * the pel and height / 2 rows above it; at the border it is moved inward and keeps its size. A pel without
 * such a neighbour is left as it is.
 *
 * @param[in,out] image Image to repair.
 * @param[in] map       Defect image of the same size; every pel that is not 0 marks a defect.
 * @param[in] width     Width of the window, 0..PelCols.
 * @param[in] height    Height of the window, 0..PelRows.
 * @return 0; -2 image is null or invalid; -3 map is null or invalid; -4 their sizes differ; -5 width or
 *         height out of range.
 */
TQ_API int32_t TQ_CALL tqFixDefects(TqImage* image, const TqImage* map, int32_t width, int32_t height);

/**
 * @brief Replaces every pel above a threshold by a multiple of the mean of the pels around it.
 *
 * Width and height below 2 mean 1; they are limited to the image, and an even one is reduced by one. At the
 * border the window is moved inward and keeps its size. A pel above the threshold becomes factor times the
 * mean of the window's pels at or below the threshold, truncated, 65535 at most; without such a pel it stays.
 *
 * @param[in,out] image Image to repair.
 * @param[in] threshold Largest grey level of a healthy pel.
 * @param[in] factor    Factor of the mean; below 0 means 0.
 * @param[in] width     Width of the window, pels.
 * @param[in] height    Height of the window, pels.
 * @return 0; -2 image is null or invalid.
 * @note The work is done in place, row by row from the left: pels already replaced count as healthy for
 *       those that follow. Pels of 0 count as healthy.
 */
TQ_API int32_t TQ_CALL tqReplaceHotPixels(TqImage* image, int32_t threshold, float factor, int32_t width,
                                          int32_t height);

/**
 * @brief Fills a rectangle around every pel above a threshold with one value.
 *
 * The rectangle reaches width / 2 columns to each side of the pel and height / 2 rows above and below it
 * (integer division), cut at the border.
 *
 * @param[in,out] image Image to edit.
 * @param[in] threshold Largest grey level that is no spike.
 * @param[in] value     Value to write, 65535 at most; below 0 the image's mean,
 *                      TotalPelValue / (PelCols * PelRows), truncated.
 * @param[in] width     Width of the rectangle, pels; below -1 nothing is filled.
 * @param[in] height    Height of the rectangle, pels; below -1 nothing is filled.
 * @return 0; -2 image is null or invalid.
 * @note The work is done in place, row by row from the left. A value above the threshold spreads on purpose
 *       through every pel that it reaches.
 * @note The mean comes from the header as it is; it is not computed anew.
 */
TQ_API int32_t TQ_CALL tqEditSpikes(TqImage* image, int32_t threshold, int32_t value, int32_t width,
                                    int32_t height);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
