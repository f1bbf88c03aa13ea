/** @file bitmap.h
 *  Images as 8-bit bitmaps for the screen, and back.
 */
#ifndef TQIMAGE_BITMAP_H
#define TQIMAGE_BITMAP_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup bitmap Bitmaps for the screen
 *  @ingroup interchange
 *  @copydoc bitmap.h
 *  @{ */

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
 *                      function fails.
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
 * @brief Converts an image into an 8-bit bitmap, with the host's own palette if it likes.
 *
 * As tqImageToLeadBmp, with one more palette code: -2 takes the palette from a text of 256 groups of 16
 * characters. A group has four fields of four characters, red, green, blue and the fourth byte; the first
 * three characters of a field are a decimal number (blanks before it are skipped, the first other character
 * ends it), taken modulo 256. A text that ends early ends the palette with zeros.
 *
 * @param[out] bitmap     Receives the bitmap; what it held is overwritten, not freed. Untouched when the
 *                        function fails.
 * @param[out] scale      Receives 255 / MaxPelValue.
 * @param[in,out] image   Image to show. A MaxPelValue of 0 or below becomes 255 in its header.
 * @param[in] paletteText Text of the palette; used with palette code -2 only.
 * @param[in] palette     Palette code.
 * @param[in] gamma       Exponent of the tone curve; 1 for a screen, negative for a linear curve.
 * @return 0; -100 image is null or invalid, or paletteText is null with code -2; no bitmap: -2 with palette
 *         0, -3 with any other.
 * @par Ownership
 * The host owns the bitmap and releases it with tqFreeLeadBmp.
 * @par Memory
 * The bitmap and a table of up to 65536 bytes.
 */
TQ_API int32_t TQ_CALL tqImageToLeadBmp0(TqLeadBitmap* bitmap, double* scale, TqImage* image,
                                         const char* paletteText, int32_t palette, double gamma);

/**
 * @brief Converts an image into an 8-bit bitmap, stretched between two grey levels.
 *
 * With a gamma of 0 or above, pel / high goes through the tone curve of tqImageToLeadBmp. With a negative
 * gamma the levels are spread: 1 + 254 (pel - low) / (high - low), or 1 + 254 ln(pel / low) / ln(high / low)
 * in the logarithmic form. Results are limited to 1..255 and truncated; only a pel of 0 gives byte 0, so that
 * missing data stays apart from dark. Where high equals low, brighter pels give 255, others 1.
 *
 * @param[out] bitmap     Receives the bitmap; what it held is overwritten, not freed. Untouched when the
 *                        function fails.
 * @param[out] scale      Receives 255 / MaxPelValue.
 * @param[in,out] image   Image to show. A MaxPelValue of 0 or below becomes 255 in its header.
 * @param[in] paletteText Text of the palette, as for tqImageToLeadBmp0; used with palette code -2 only.
 * @param[in] palette     Palette code.
 * @param[in] low         Grey level of byte 1. The logarithmic form takes values below 1 as 1.
 * @param[in] high        Grey level of byte 255; 0 means MaxPelValue truncated, at least 1. The logarithmic
 *                        form takes values below 1 as 1.
 * @param[in] logarithmic Non-zero for the logarithmic form.
 * @param[in] gamma       Exponent of the tone curve; negative for the stretch.
 * @return 0; -100 image is null or invalid, or paletteText is null with code -2; no bitmap: -2 with palette
 *         0, -3 with any other.
 * @par Ownership
 * The host owns the bitmap and releases it with tqFreeLeadBmp.
 * @par Memory
 * The bitmap and a table of up to 65536 bytes.
 */
TQ_API int32_t TQ_CALL tqImageToLeadBmpScale(TqLeadBitmap* bitmap, double* scale, TqImage* image,
                                             const char* paletteText, int32_t palette, int32_t low,
                                             int32_t high, int32_t logarithmic, double gamma);

/**
 * @brief Takes the bytes of a bitmap as the pels of a new image.
 *
 * The image's first row is the bitmap's top one, which is the last stored row when viewPerspective is 2. The
 * header tells 1 pel a metre, 1 lux a grey level, 1 metre from the source, the largest pel (at least 1), and
 * 0 for the rest. More than 8000 columns or rows are kept, but most functions refuse such an image.
 *
 * @param[in] bitmap The bitmap, by value. Of a row of colours the first `width` bytes become pels.
 * @param[in,out] image Receives the image; the block it held is freed. Untouched when the function fails.
 * @return 0; -1 the bitmap's rows cannot be read (no rows, a size below 1, a depth other than 8 or 24, lines
 *         that are too short), no memory, or image is null.
 * @par Ownership
 * The host owns the image and releases it with tqImageFree; the bitmap stays the host's.
 * @par Memory
 * The image.
 */
TQ_API int32_t TQ_CALL tqLeadBmpToImage(TqLeadBitmap bitmap, TqImage** image);

/**
 * @brief Releases a bitmap's palette and rows and clears the record.
 *
 * @param[in,out] bitmap Bitmap made by the library, or a record of zeros, or null: nothing happens then.
 * @return 0 always.
 * @par Ownership
 * The record itself stays the host's and may be used again.
 */
TQ_API int32_t TQ_CALL tqFreeLeadBmp(TqLeadBitmap* bitmap);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
