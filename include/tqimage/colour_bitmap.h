/** @file colour_bitmap.h
 *  Three images as one colour bitmap, and a colour bitmap as three images.
 */
#ifndef TQIMAGE_COLOUR_BITMAP_H
#define TQIMAGE_COLOUR_BITMAP_H

#include "tqimage/bitmap.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup colour_bitmap Colour bitmaps
 *  @ingroup interchange
 *  @copydoc colour_bitmap.h
 *  @{ */

/**
 * @brief Combines up to three images into one bitmap of 24 bits a pixel.
 *
 * Each channel of a pixel is pel x gain, 0 where the image is absent; m is the largest of the three and M the
 * largest MaxPelValue of the images present. With normalize, and m above 0, a channel becomes 255 channel /
 * m: the brightest is driven to 255. Otherwise it becomes v = channel / M; a gamma other than 1, with m above
 * 0, multiplies the three v by q^(gamma - 1), q being their largest, which changes the brightness and keeps
 * the colour; then the byte is 255 (1.055 v^0.4166 - 0.055), or 255 x 12.92 v for v up to 0.0031308. An M of
 * 0 or below gives black. Bytes are truncated and limited to 0..255.
 *
 * @param[out] bitmap      Receives the bitmap, stored blue first from the top row on; what it held is
 *                         overwritten, not freed. Untouched when the function fails.
 * @param[in] red          Image of the red channel; null when there is none.
 * @param[in] green        Image of the green channel; null when there is none.
 * @param[in] blue         Image of the blue channel; null when there is none.
 * @param[in] redGain      Factor of the red pels.
 * @param[in] greenGain    Factor of the green pels.
 * @param[in] blueGain     Factor of the blue pels.
 * @param[in] normalize    Non-zero to show the colours at full brightness.
 * @param[in] whiteForBlack Non-zero to show pixels with m = 0 in white.
 * @param[in] gamma        Exponent of the brightness; 0 means 1.
 * @return 0; -1 there is no image, one is invalid, or the sizes differ; -2 no memory, or bitmap is null.
 * @par Ownership
 * The host owns the bitmap and releases it with tqFreeLeadBmp.
 * @par Memory
 * The bitmap and tables of at most 192 KiB.
 */
TQ_API int32_t TQ_CALL tqCombineImagesRGB(TqLeadBitmap* bitmap, const TqImage* red, const TqImage* green,
                                          const TqImage* blue, float redGain, float greenGain, float blueGain,
                                          int32_t normalize, int32_t whiteForBlack, double gamma);

/**
 * @brief Combines up to three images into a device-independent bitmap of 24 bits a pixel.
 *
 * The colours are those of tqCombineImagesRGB.
 *
 * @param[out] dib         Receives the handle of moveable global memory: a header of 40 bytes and the rows
 * from bottom to top. Null after -11.
 * @param[in] red          Image of the red channel; null when there is none.
 * @param[in] green        Image of the green channel; null when there is none.
 * @param[in] blue         Image of the blue channel; null when there is none.
 * @param[in] redGain      Factor of the red pels.
 * @param[in] greenGain    Factor of the green pels.
 * @param[in] blueGain     Factor of the blue pels.
 * @param[in] normalize    Non-zero to show the colours at full brightness.
 * @param[in] whiteForBlack Non-zero to show pixels without any light in white.
 * @param[in] gamma        Exponent of the brightness; 0 means 1.
 * @return 0; -1 there is no image, one is invalid, or the sizes differ; -2 no memory for the bitmap; -11 no
 *         memory for the handle, or dib is null.
 * @par Ownership
 * The host owns the handle: GlobalFree, or tqBmpToClipBoard gives it away.
 * @par Memory
 * The bitmap and the handle.
 */
TQ_API int32_t TQ_CALL tqCombineImagesRGBtoDIB(void** dib, const TqImage* red, const TqImage* green,
                                               const TqImage* blue, float redGain, float greenGain,
                                               float blueGain, int32_t normalize, int32_t whiteForBlack,
                                               double gamma);

/**
 * @brief Reads a BMP file as three images of the tristimulus values X, Y and Z.
 *
 * The bytes of red, green and blue are linearised with the curve of sRGB, r, g and b in 0..1, and mixed to
 *
 * | image | red | green | blue |
 * |---|---|---|---|
 * | first | 4361 | 3851 | 1431 |
 * | second | 2225 | 7169 | 606 |
 * | third | 139 | 971 | 7141 |
 *
 * truncated: white is (9643, 10000, 8251). All forms of files that tqDiskBmpToImage reads are read.
 *
 * @param[in] fileName Name of the file.
 * @param[in] info     Header of the new images; sizes and each image's MaxPelValue (its largest pel, at least
 *                     1) are the file's. Null for the header that tqLeadBmpToImage makes.
 * @param[in,out] first   Receives the X image; the block it held is freed.
 * @param[in,out] second  Receives the Y image; the block it held is freed.
 * @param[in,out] third   Receives the Z image; the block it held is freed.
 * @return 0; -100 the file cannot be read or is malformed; -4 no memory for the images, or an address is
 * null. The host's images are untouched when the function fails.
 * @par Ownership
 * The host owns the images and releases them with tqImageFree.
 * @par Memory
 * The file, its bitmap, and the images.
 * @par Source
 * IEC 61966-2-1, with the primaries adapted to the D50 illuminant as colour profiles of ICC have them, times
 * 10000.
 */
TQ_API int32_t TQ_CALL tq24bitColorBitmapToImage(const char* fileName, const TqImageHeader* info,
                                                 TqImage** first, TqImage** second, TqImage** third);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
