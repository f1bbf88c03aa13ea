/** @file colour_bitmap.h
 *  Three images as one colour bitmap, and a colour bitmap as three images. A matrix is nine coefficients in
 *  row order, as in colour_averages.h.
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
 * The bitmap, a few rows, and tables of at most 768 KiB.
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
 *                         from bottom to top. Null after -11.
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
 * The bitmap, the handle, and what tqCombineImagesRGB needs besides.
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
 * @return 0; -100 the file cannot be read or is malformed, or no memory for its bitmap; -4 no memory for the
 *         images, or an address is null. The host's images are untouched when the function fails.
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

/**
 * @brief Shows tristimulus images in the colours of a display.
 *
 * X, Y and Z of a point are the pels times LuxPerGrey of their images, 0 where an image is absent. The
 * matrix times them, divided by the white level, is the light of red, green and blue, 0..1 being what the
 * display can show. Light is limited to that range, what is not a number to 0; then the byte is 255 (1.055
 * v^(0.4166 gamma) - 0.055), or 255 x 12.92 v for v up to 0.0031308, truncated: the tone curve of
 * tqImageToLeadBmp.
 *
 * @param[in] x      Image of X; null when there is none.
 * @param[in] y      Image of Y; null when there is none.
 * @param[in] z      Image of Z; null when there is none.
 * @param[out] bitmap Receives the bitmap of 24 bits a pixel, stored blue first from the top row on; what it
 *                   held is overwritten, not freed. Untouched when the function fails.
 * @param[in] m0     Matrix from X, Y, Z to the display, row 1 (red), coefficient of X.
 * @param[in] m1     Row 1, coefficient of Y.
 * @param[in] m2     Row 1, coefficient of Z.
 * @param[in] m3     Row 2 (green), coefficient of X.
 * @param[in] m4     Row 2, coefficient of Y.
 * @param[in] m5     Row 2, coefficient of Z.
 * @param[in] m6     Row 3 (blue), coefficient of X.
 * @param[in] m7     Row 3, coefficient of Y.
 * @param[in] m8     Row 3, coefficient of Z.
 * @param[in] white  Y that is shown as white, in the unit of pel x LuxPerGrey. 0, below or not a number: the
 *                   largest Y, or without a Y image the largest value of the others.
 * @param[in] gamma  Factor of the curve's exponent; 1 for a screen, 0 means 1, negative for a linear curve.
 * @param[in] gamut  What becomes of a colour that the display cannot show. 0: each channel is limited by
 *                   itself. Any other value: the colour is mixed with the grey of its own Y / white, with as
 *                   much of it as brings the three channels into 0..1, so that its luminance and its hue
 *                   stay.
 * @return 0; -1 there is no image; -2 one is invalid; -3 the sizes differ; -4 no memory, or bitmap is null.
 * @par Ownership
 * The host owns the bitmap and releases it with tqFreeLeadBmp.
 * @par Memory
 * The bitmap: 183 MiB for 8000 x 8000 pels.
 * @par Source
 * IEC 61966-2-1 (sRGB), whose curve it is with 0.4166 for 1/2.4; its matrix from X, Y and Z is 3.2406,
 * -1.5372, -0.4986, -0.9689, 1.8758, 0.0415, 0.0557, -0.2040, 1.0570.
 * @note White has byte 254 with a gamma of 0 or above, as everywhere in the library. Images without any
 *       light, white being left to them, are black.
 */
TQ_API int32_t TQ_CALL tqTransformXYZtoRGB(const TqImage* x, const TqImage* y, const TqImage* z,
                                           TqLeadBitmap* bitmap, float m0, float m1, float m2, float m3,
                                           float m4, float m5, float m6, float m7, float m8, float white,
                                           double gamma, int32_t gamut);

/**
 * @brief The same, with the grey levels of each image equalised first if the host wants.
 *
 * Equalised levels are those of tqHistoEqualize for the levels that it finds by itself, from MaxPelValue;
 * they count as pels in what follows. Dark structures come out, and the colours no longer are those of the
 * scene.
 *
 * @param[in] x      Image of X; null when there is none. Its header stays as it is.
 * @param[in] y      Image of Y; null when there is none.
 * @param[in] z      Image of Z; null when there is none.
 * @param[out] bitmap Receives the bitmap of 24 bits a pixel, stored blue first from the top row on; what it
 *                   held is overwritten, not freed. Untouched when the function fails.
 * @param[in] m0     Matrix from X, Y, Z to the display, row 1 (red), coefficient of X.
 * @param[in] m1     Row 1, coefficient of Y.
 * @param[in] m2     Row 1, coefficient of Z.
 * @param[in] m3     Row 2 (green), coefficient of X.
 * @param[in] m4     Row 2, coefficient of Y.
 * @param[in] m5     Row 2, coefficient of Z.
 * @param[in] m6     Row 3 (blue), coefficient of X.
 * @param[in] m7     Row 3, coefficient of Y.
 * @param[in] m8     Row 3, coefficient of Z.
 * @param[in] white  Y that is shown as white, in the unit of pel x LuxPerGrey; 0, below or not a number as
 *                   above.
 * @param[in] gamma  Factor of the curve's exponent; 1 for a screen, 0 means 1, negative for a linear curve.
 * @param[in] gamut  0 limits each channel by itself, any other value mixes with grey, as above.
 * @param[in] equalise 0 for tqTransformXYZtoRGB; any other value to equalise.
 * @return 0; when equalising, -11 X, -21 Y, -31 Z is invalid, has no pel but 0, or there is no memory for it;
 *         -1 there is no image; -2 one is invalid; -3 the sizes differ; -4 no memory, or bitmap is null.
 * @par Ownership
 * The host owns the bitmap and releases it with tqFreeLeadBmp.
 * @par Memory
 * The bitmap and, when equalising, a copy of each image: 550 MiB for three of 8000 x 8000 pels.
 */
TQ_API int32_t TQ_CALL tqTransformXYZtoRGB2(const TqImage* x, const TqImage* y, const TqImage* z,
                                            TqLeadBitmap* bitmap, float m0, float m1, float m2, float m3,
                                            float m4, float m5, float m6, float m7, float m8, float white,
                                            double gamma, int32_t gamut, int32_t equalise);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
