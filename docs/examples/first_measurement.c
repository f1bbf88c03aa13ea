/* The first measurement: an evenly lit target, and the luminous intensity of what lights it.
 *
 *     cc first_measurement.c -ltqimage20 -o first_measurement
 */
#include <stdio.h>
#include <tqimage/image.h>
#include <tqimage/photometry.h>

int main(void) {
    /* [measurement] */
    TqImageHeader header = {.PelCols = 640, .PelRows = 480, .BinCols = 1, .BinRows = 1};
    header.PelsPerMeterX = header.PelsPerMeterY = 1000;   /* a pel is 1 mm of the target, */
    header.SourceDistance = 2;                            /* which is 2 m from the source; */
    header.CenterCol = 319.5f, header.CenterRow = 239.5f; /* the axis meets it in the middle, */
    header.LuxPerGrey = 0.01f;                            /* and a grey level is 0.01 lx there */
    TqImage* image = NULL;
    double candela, horizontal, vertical, off_axis;
    if (tqCreateImage(&header, &image) != 0) return 1;
    tqInitializeImagePels(image, 12000); /* in earnest: the camera's pels, see tqPutImgPel0 */
    if (tqCalcCandela(image, 320, 240, &candela, &horizontal, &vertical, &off_axis, 21, 21, 0) != 0) return 1;
    printf("%.2f cd\n", candela);
    return tqImageFree(&image);
    /* [measurement] */
}
