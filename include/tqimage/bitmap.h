/** @file bitmap.h
 *  Images as 8-bit bitmaps for the screen and as BMP files.
 */
#ifndef TQIMAGE_BITMAP_H
#define TQIMAGE_BITMAP_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** A bitmap in memory. The host keeps the record and fills it with zeros before its first use; the library
 *  makes palette and rows, and tqFreeLeadBmp releases them. Bitmaps that the library makes are top-down. */
typedef struct TqLeadBitmap {
    uint32_t structSize;     /**< sizeof(TqLeadBitmap), set when the bitmap is made */
    int32_t width;           /**< columns */
    int32_t height;          /**< rows */
    int32_t bitsPerPixel;    /**< 8, or 24 stored blue, green, red */
    int32_t bytesPerLine;    /**< from row to row; a multiple of 4 */
    int32_t viewPerspective; /**< 1 the first stored row is the top one, 2 the bottom one */
    int32_t colorOrder;      /**< 0 red first, 1 blue first */
    int32_t paletteEntries;  /**< 0 or 256 */
    uint8_t* palette;        /**< paletteEntries times blue, green, red, 0; null without a palette */
    uint8_t* rows;           /**< height x bytesPerLine bytes */
} TqLeadBitmap;

/**
 * @brief Converts an image into an 8-bit bitmap with a palette and a tone curve.
 *
 * With v = pel / MaxPelValue the byte is 255 v, truncated and limited to 0..255. A gamma of 0 or above first
 * replaces v by 1.055 v^(0.4166 gamma) - 0.055 when v is above 0.0031308, else by 12.92 v; a gamma of exactly
 * 0 means 1. A negative gamma leaves v as it is.
 *
 * | palette | entries (blue, green, red) |
 * |---|---|
 * | 0 | none |
 * | 1 | white for 0..15, then (i, i, i) |
 * | 2 | false colours, white for 0..15 |
 * | 3, 4, 5 | red, green, blue ramp |
 * | -1 | false colours, dark ramp for 0..17 |
 * | other | (i, i, i) |
 *
 * The false colours run linearly through (170, 0, 170) at 18..32, (255, 0, 85) at 64, (170, 170, 0) at 96,
 * (170, 255, 0) at 128, (0, 255, 128) at 160, (0, 170, 255) at 192, (0, 0, 255) at 224, (198, 198, 255) at
 * 254 and (203, 203, 255) at 255.
 *
 * @param[out] bitmap   Receives the bitmap; what it held is overwritten, not freed. Untouched when the
 * function fails.
 * @param[out] scale    Receives 255 / MaxPelValue.
 * @param[in,out] image Image to show. A MaxPelValue of 0 or below becomes 255 in its header, so that later
 *                      calls see the same scale.
 * @param[in] palette   Palette code.
 * @param[in] gamma     Exponent of the tone curve; 1 for a screen, negative for a linear curve.
 * @return 0; -100 image is null or invalid; no bitmap: -2 with palette 0, -3 with any other.
 * @par Ownership
 * The host owns the bitmap and releases it with tqFreeLeadBmp.
 * @par Memory
 * The bitmap and a table of up to 65536 bytes.
 * @par Source
 * The curve's constants are those of IEC 61966-2-1, its exponent rounded to 0.4166.
 * @note Full scale gives byte 254 for a gamma of 0 or above, because 1.055 - 0.055 is just below 1, and 255
 *       with a linear curve.
 */
TQ_API int32_t TQ_CALL tqImageToLeadBmp(TqLeadBitmap* bitmap, double* scale, TqImage* image, int32_t palette,
                                        double gamma);

/**
 * @brief Releases a bitmap's palette and rows and clears the record.
 *
 * @param[in,out] bitmap Bitmap made by the library, or a record of zeros, or null: nothing happens then.
 * @return 0 always.
 * @par Ownership
 * The record itself stays the host's and may be used again.
 */
TQ_API int32_t TQ_CALL tqFreeLeadBmp(TqLeadBitmap* bitmap);

/**
 * @brief Writes an image as an 8-bit Windows BMP file.
 *
 * The bytes are those of tqImageToLeadBmp with a gamma of 1. A bitmap without a palette (code 0) is written
 * with a grey ramp as its colour table.
 *
 * @param[in] fileName  Name of the file, created or replaced.
 * @param[in,out] image Image to write. A MaxPelValue of 0 or below becomes 255 in its header.
 * @param[in] palette   Palette code, as for tqImageToLeadBmp.
 * @return 0; -2 image is null or invalid, or no memory; -3 fileName is null or the file cannot be written.
 * @par Memory
 * The bitmap.
 * @note A file that cannot be written completely is removed.
 */
TQ_API int32_t TQ_CALL tqImageToDiskBmp(const char* fileName, TqImage* image, int32_t palette);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
