/** @file compressed_image.h
 *  A lossy form of an image, a twentieth of its size and less: 8 bits a pel as a baseline grey JPEG. The form
 *  without loss is tqHandleToString.
 */
#ifndef TQIMAGE_COMPRESSED_IMAGE_H
#define TQIMAGE_COMPRESSED_IMAGE_H

#include "tqimage/base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup compressed_image Compressed images
 *  @ingroup interchange
 *  @copydoc compressed_image.h
 *  @{ */

/**
 * @brief Writes an image as a grey JPEG file to a buffer of the host.
 *
 * The bytes that are compressed are min(255 pel / MaxPelValue, 255), truncated.
 *
 * | quality | JPEG's standard luminance table times |
 * |---|---|
 * | 2..255 | quality / 50: 2 is the finest, 255 the smallest file; 0 and 1 act as 2 |
 * | -1 .. -9 | those of 2, 4, 8, 12, 20, 35, 60, 100, 160 |
 * | other | that of -5 |
 *
 * @param[in,out] image   the image. A MaxPelValue of 0 or below becomes 255 in its header, as it does in
 *                        tqImageToLeadBmp
 * @param[out] destination the buffer; untouched when the function fails. May be null when capacity is 0
 * @param[out] length     receives the size of the file, bytes; also when it does not fit, so that a host can
 *                        ask with a capacity of 0 first
 * @param[out] scale      receives 255 / MaxPelValue: a restored pel divided by it is a grey level again
 * @param[in] capacity    size of the buffer, bytes
 * @param[in] reserved    not read
 * @param[in] quality     the quality, -9..255
 * @return 0; -1 image, length or scale is null; -2 the image is invalid or there is no memory for its bytes;
 *         -3 no memory for the file; -4 the buffer is too small; -5 destination is null
 * @par Memory
 * A table of up to 65536 bytes, the file, and what libjpeg takes.
 * @par Source
 * ITU-T T.81 (ISO/IEC 10918-1), its tables of annex K.
 * @note The same image gives the same bytes on every build.
 */
TQ_API int32_t TQ_CALL tqCompressImage(TqImage* image, uint8_t* destination, uint32_t* length, double* scale,
                                       uint32_t capacity, int32_t reserved, int32_t quality);

/**
 * @brief Makes an image of a grey JPEG file in memory.
 * @param[in] source the file; bytes behind its end do not matter
 * @param[in] length its size, bytes
 * @param[in] info   header of the image. All of it is taken over but the sizes, which are the file's
 * @param[in,out] image address of the host's block pointer; receives the image, its pels 0..255
 * @return 0; -1 a pointer is null, length is 0, the file is anything but a complete grey JPEG with sides of
 *         1..8000 pels, the codec notices damage, or no memory to read it; -2 no memory for the image
 * @par Ownership
 * The block that *image held is freed, after a success only. The image belongs to the host.
 * @par Memory
 * The image, and what libjpeg takes.
 * @par Source
 * ITU-T T.81 (ISO/IEC 10918-1).
 * @note MaxPelValue is that of info, whatever the pels are: hosts rescale them with the scale that
 *       tqCompressImage gave.
 * @note Damage that leaves a valid code goes unnoticed and gives other pels, as may a few bytes too many
 * within the picture, how many depending on the build: a host to which that matters keeps a checksum of its
 * own.
 */
TQ_API int32_t TQ_CALL tqDecompressImage(const uint8_t* source, uint32_t length, const TqImageHeader* info,
                                         TqImage** image);

/** @} */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
