/** @file bitmap_files.h
 *  Images and bitmaps as BMP files, as device-independent bitmaps in memory, and on the clipboard.
 */
#ifndef TQIMAGE_BITMAP_FILES_H
#define TQIMAGE_BITMAP_FILES_H

#include "tqimage/bitmap.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup bitmap_files BMP files and the clipboard
 *  @ingroup interchange
 *  @copydoc bitmap_files.h
 *  @{ */

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
 * The bitmap and a table of up to 65536 bytes.
 * @note A file that cannot be written completely is removed.
 */
TQ_API int32_t TQ_CALL tqImageToDiskBmp(const char* fileName, TqImage* image, int32_t palette);

/**
 * @brief Writes a bitmap as a Windows BMP file of its own depth.
 *
 * @param[in] fileName Name of the file, created or replaced.
 * @param[in] bitmap   Bitmap of 8 or 24 bits a pixel. 8 bits without a palette are written with a grey ramp.
 * @return 0; -1 the bitmap is null or its rows cannot be read (see tqLeadBmpToImage), fileName is null, or
 *         the file cannot be written.
 * @note A file that cannot be written completely is removed.
 */
TQ_API int32_t TQ_CALL tqLeadBmpToDiskBmp(const char* fileName, const TqLeadBitmap* bitmap);

/**
 * @brief Reads a BMP file into a new image of bytes.
 *
 * Files of 1, 4, 8, 16, 24 and 32 bits a pixel are read, with run lengths, bit masks or rows from top to
 * bottom, and with the headers of Windows and OS/2. Up to 8 bits the pel is the entry of the palette, which
 * gives back what tqImageToDiskBmp wrote; colours become grey, (299 red + 587 green + 114 blue) / 1000
 * rounded.
 *
 * @param[in] fileName Name of the file.
 * @param[in] info     Header of the new image; sizes and MaxPelValue (the largest pel, at least 1) are the
 *                     file's. May lie in the image that is replaced.
 * @param[in,out] image   Receives the image; the block it held is freed. Untouched when the function fails.
 * @return 0; -100 the file cannot be read or is malformed, or no memory for its bitmap; -3 no memory for the
 *         image, or info or image is null.
 * @par Ownership
 * The host owns the image and releases it with tqImageFree.
 * @par Memory
 * The file, its bitmap, and the image.
 */
TQ_API int32_t TQ_CALL tqDiskBmpToImage(const char* fileName, const TqImageHeader* info, TqImage** image);

/**
 * @brief Converts an image into a device-independent bitmap of 8 bits a pixel.
 *
 * The bytes are those of tqImageToLeadBmp with a gamma of 1, behind a header of 40 bytes and a colour table
 * of 256 entries (a grey ramp for palette code 0), rows from bottom to top.
 *
 * @param[out] dib      Receives the handle of moveable global memory; null after -1.
 * @param[in,out] image Image to convert. A MaxPelValue of 0 or below becomes 255 in its header.
 * @param[in] palette   Palette code, as for tqImageToLeadBmp.
 * @return 0; -2 image is null or invalid, or no memory for the bitmap; -1 no memory for the handle, or dib is
 *         null.
 * @par Ownership
 * The host owns the handle: GlobalFree, or tqBmpToClipBoard gives it away.
 * @par Memory
 * The bitmap and the handle.
 */
TQ_API int32_t TQ_CALL tqImageToDIB(void** dib, TqImage* image, int32_t palette);

/**
 * @brief Puts a device-independent bitmap on the clipboard in place of what is there.
 *
 * @param[in] owner Handle of the window that owns the clipboard from then on.
 * @param[in] dib   Handle of moveable global memory, as tqImageToDIB makes it.
 * @return 0; -1 dib is null: the clipboard stays as it is.
 * @par Ownership
 * The handle belongs to the clipboard.
 * @note Whether the clipboard took the handle is not reported. Systems without a clipboard have one within
 *       the process, which frees the handle when the next one comes.
 */
TQ_API int32_t TQ_CALL tqBmpToClipBoard(void* owner, void* dib);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
