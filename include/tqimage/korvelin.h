/** @file korvelin.h
 *  Images from the host record of Korvelin light-measurement data.
 */
#ifndef TQIMAGE_KORVELIN_H
#define TQIMAGE_KORVELIN_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup korvelin Korvelin records
 *  @ingroup interchange
 *  @copydoc korvelin.h
 *  @{ */

/** The host record: 11 words on a 32-bit system. */
typedef struct TqKorvelinRecord {
    void* Data;            /**< handle of global memory: Cols x Rows bytes, row 0 first */
    int32_t Cols;          /**< columns */
    int32_t Rows;          /**< rows */
    float PelsPerMeterX;   /**< horizontal resolution, pels per metre */
    float PelsPerMeterY;   /**< vertical resolution, pels per metre */
    int32_t CenterCol;     /**< column of the optical axis, pels, 0-based */
    int32_t CenterRow;     /**< row of the optical axis, pels, 0-based */
    int32_t TotalPelValue; /**< sum of all pels */
    float LuxPerGrey;      /**< illuminance of one grey level, lux */
    float CenterPelValue;  /**< pel at the centre */
    float MaxPelValue;     /**< largest pel */
} TqKorvelinRecord;

/**
 * @brief Makes an image of a record; every byte of its data becomes a pel.
 * @param[in,out] image       address of the host's block pointer; receives the image. Its header holds the
 *                            record's fields
 * @param[in] record          the record; its memory is locked for the time of the call
 * @param[in] sourceDistance  distance from the source to the target, metres
 * @return 0; -2 a pointer is null, or the data cannot be locked or are shorter than the record says; -3 the
 *         record has no columns or no rows; -4 a side is negative or there is no memory: *image is untouched
 *         after a failure
 * @par Ownership
 * The block that *image held is freed. The image belongs to the host; the record's memory stays the host's.
 * @par Memory
 * The image.
 */
TQ_API int32_t TQ_CALL TqConvertKorvelinToImage(TqImage** image, const TqKorvelinRecord* record,
                                                int32_t sourceDistance);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
