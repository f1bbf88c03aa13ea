/** @file base.h
 *  Types and calling convention shared by every header of TqImage20.
 *
 *  Conventions, said once:
 *  - Columns come before rows; the centre of the first pel is at (0, 0).
 *  - A pel is an unsigned 16-bit grey level. An image block is one allocation: the 56-byte TqImageHeader
 *    followed by PelCols x PelRows pels, row 0 first. It is valid when 1 <= PelCols, PelRows <= 8000.
 *  - The host owns every image block and every distortion map; release them with tqImageFree. Unless it says
 *    otherwise, a function that replaces the host's image builds the new block before it frees the old one.
 *  - Functions keep no state and no reference to a block after they return, and start no threads: calls
 *    may run side by side unless two of them write the same block or the same block pointer.
 *  - Unless a function says otherwise it returns 0 for success and a negative number for failure.
 */
#ifndef TQIMAGE_BASE_H
#define TQIMAGE_BASE_H

#include <stdint.h>

/** @def TQ_CALL
 *  The calling convention: stdcall on 32-bit Windows, the platform's only one elsewhere.
 *  @def TQ_API
 *  Makes a function visible to hosts. */
#if defined(_WIN32) && !defined(_WIN64)
#define TQ_CALL __stdcall
#else
#define TQ_CALL
#endif

/* Inside the library the module definition file decides what a Windows build exports. */
#if defined(_WIN32)
#if defined(TQIMAGE_BUILDING)
#define TQ_API
#else
#define TQ_API __declspec(dllimport)
#endif
#else
#define TQ_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup base Types
 *  @ingroup core
 *  @copydoc base.h
 *  @{ */

/** An image block: only its address means anything to a host. */
typedef struct TqImage TqImage;

/** The first 56 bytes of every image block, exchanged with hosts in the same layout. */
typedef struct TqImageHeader {
    int32_t PelCols;      /**< columns, 1..8000 */
    int32_t PelRows;      /**< rows, 1..8000 */
    float PelsPerMeterX;  /**< horizontal resolution on the target, pels per metre */
    float PelsPerMeterY;  /**< vertical resolution on the target, pels per metre */
    float CenterCol;      /**< column where the optical axis meets the image, pels, 0-based */
    float CenterRow;      /**< row where the optical axis meets the image, pels, 0-based */
    double TotalPelValue; /**< sum of all pels, as last stored by a producer */
    float LuxPerGrey;     /**< illuminance of one grey level, lux */
    float CenterPelValue; /**< pel at the centre, as stored by a producer */
    float MaxPelValue;    /**< largest possible or largest present pel */
    float SourceDistance; /**< distance from the source to the target along the axis, metres */
    int16_t BinCols;      /**< sensor columns that one pel stands for */
    int16_t BinRows;      /**< sensor rows that one pel stands for */
    uint32_t Spare;       /**< carried wherever the header is copied, never interpreted */
} TqImageHeader;

/** The 12-byte head of a distortion map; Cols x Rows pairs of float (source column, source row) follow it,
 *  row 0 first. A negative source column or row means that the pel has no source. */
typedef struct TqDistortionMap {
    uint16_t Cols;   /**< columns of the map */
    uint16_t Rows;   /**< rows of the map */
    float CenterCol; /**< column of the optical centre, unbinned pels */
    float CenterRow; /**< row of the optical centre, unbinned pels */
} TqDistortionMap;

/** @} */

#ifdef __cplusplus
} /* extern "C" */

static_assert(sizeof(TqImageHeader) == 56, "hosts exchange the header as 56 bytes without gaps");
static_assert(sizeof(TqDistortionMap) == 12, "the head of a distortion map is 12 bytes without gaps");
#endif

#endif
