/* A colorimeter made of a camera and three filters is calibrated in two steps: a correction image takes out
 * the shading of its optics, and a matrix from the three channels to X, Y and Z follows from the primaries of
 * a display, measured with a reference instrument. The display and the camera are computed. */
#include <math.h>
#include <stdio.h>
#include <tqimage/tqimage.h>
#if defined(_WIN32)
#include <windows.h>
/* Needs windows.h before it. */
#include <oleauto.h>
#endif

enum { kCols = 640, kRows = 480, kPoints = 5 };

/* Red, green, blue and white of the display: X, Y and Z, cd/m^2, as the reference instrument reads them. */
static const double kPrimaries[4][3] = {
    {82.5, 42.5, 3.9}, {71.5, 143.0, 23.8}, {36.1, 14.4, 190.1}, {190.1, 199.9, 217.8}};
/* What the filters make of X, Y and Z, in grey levels a cd/m^2: they match the observer only roughly. */
static const double kFilters[3][3] = {{105, 18, 9}, {22, 118, 4}, {7, 11, 96}};

/* The optics deliver less light toward the corners. */
static double shading(int col, int row) {
    double x = (col - (kCols - 1) / 2.0) / kCols, y = (row - (kRows - 1) / 2.0) / kRows;
    return 1 - 0.4 * (x * x + y * y);
}

/* The display shows one colour over the whole picture; the camera looks at it through one filter. */
static TqImage* capture(const double xyz[3], int filter) {
    TqImage* image = NULL;
    uint16_t* pels = NULL;
    TqImageHeader header;
    if (tqCreateImageA(&image, NULL, &pels, kCols, kRows) != 0) return NULL;
    tqGetImageInfo(&header, image);
    header.CenterCol = kCols / 2.0f;
    header.CenterRow = kRows / 2.0f;
    header.LuxPerGrey = 1;
    tqSetImageInfo(image, &header);
    double grey = 0;
    for (int i = 0; i < 3; ++i)
        grey += kFilters[filter][i] * xyz[i];
    for (int row = 0; row < kRows; ++row)
        for (int col = 0; col < kCols; ++col)
            *pels++ = (uint16_t)(grey * shading(col, row) + 0.5);
    return image;
}

/* Lowest pel of an image in percent of the highest. */
static double evenness(const TqImage* image) {
    return 100.0 * tqGetMinPelValueInRegion(image, 0, 0, 0, 0) / tqGetMaxPelValueInRegion(image, 0, 0, 0, 0);
}

/* [points] */
/* The correction at 5 x 5 points of an even field: mean level in the middle over mean level at the point. */
static SAFEARRAY* correction_points(const TqImage* even) {
    SAFEARRAYBOUND bounds[2] = {{kPoints * kPoints, 0}, {3, 0}}; /* one point a row: column, row, value */
    SAFEARRAY* points = SafeArrayCreate(VT_R8, 2, bounds);
    if (!points) return NULL;
    double middle = tqGetPelBlockAvg(even, kCols / 2, kRows / 2, 15, 15);
    for (int i = 0; i < kPoints * kPoints; ++i) {
        int col = 7 + i % kPoints * (kCols - 15) / (kPoints - 1),
            row = 7 + i / kPoints * (kRows - 15) / (kPoints - 1);
        double fields[3] = {col, row, middle / tqGetPelBlockAvg(even, col, row, 15, 15)};
        for (int field = 0; field < 3; ++field) {
            LONG index[2] = {i, field};
            SafeArrayPutElement(points, index, &fields[field]);
        }
    }
    return points;
}
/* [points] */

/* [invert] */
static void invert(double m[3][3], double inverse[3][3]) {
    double determinant = 0;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            int r = (j + 1) % 3, s = (j + 2) % 3, c = (i + 1) % 3, d = (i + 2) % 3;
            inverse[i][j] = m[r][c] * m[s][d] - m[r][d] * m[s][c];
        }
        determinant += inverse[i][0] * m[0][i];
    }
    for (int i = 0; i < 9; ++i)
        inverse[i / 3][i % 3] /= determinant;
}

/* The matrix that makes the reference's X, Y and Z of the camera's readings of three primaries. */
static void calibrate(double readings[3][3], const double references[4][3], float matrix[9]) {
    double inverse[3][3];
    invert(readings, inverse);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            matrix[3 * i + j] = (float)(inverse[j][0] * references[0][i] + inverse[j][1] * references[1][i] +
                                        inverse[j][2] * references[2][i]);
}
/* [invert] */

static TqImage* make_correction(void) {
    /* [surface] */
    TqImage* even = capture(kPrimaries[3], 1);
    SAFEARRAY* points = correction_points(even);
    TqMultiPointSettings settings = {
        .Columns = kCols, .Rows = kRows, .Method = 3, .MaxColumn = kCols - 1, .MaxRow = kRows - 1};
    TqImage* correction = NULL;
    int32_t status = points ? tqBuildMultiPointImage(&correction, &settings, &points) : -1;
    SafeArrayDestroy(points);
    if (status != 0) return NULL;

    /* The camera's picture and the correction image share their middle. */
    TqImageHeader header;
    tqGetImageInfo(&header, correction);
    header.CenterCol = kCols / 2.0f;
    header.CenterRow = kRows / 2.0f;
    tqSetImageInfo(correction, &header);
    /* [surface] */

    printf("evenness of a white field  %6.2f %% before\n", evenness(even));
    tqApplyMultiPointCalibration(&even, correction);
    printf("                           %6.2f %% with the correction\n", evenness(even));
    tqImageFree(&even);
    return correction;
}

int main(void) {
    TqImage* correction = make_correction();
    if (!correction) return 1;

    /* [readings] */
    double readings[3][3]; /* of the filters, for each primary */
    for (int primary = 0; primary < 3; ++primary) {
        for (int filter = 0; filter < 3; ++filter) {
            TqImage* image = capture(kPrimaries[primary], filter);
            if (!image || tqApplyMultiPointCalibration(&image, correction) != 0) return 1;
            readings[primary][filter] = tqGetAvgPelValueInRegion(image, 270, 190, 369, 289);
            tqImageFree(&image);
        }
    }
    float m[9];
    calibrate(readings, kPrimaries, m);
    /* [readings] */
    for (int i = 0; i < 9; i += 3)
        printf("%c  %10.7f %10.7f %10.7f\n", "X Y Z"[2 * (i / 3)], m[i], m[i + 1], m[i + 2]);

    /* [apply] */
    TqImage *channel[3], *x = NULL, *y = NULL, *z = NULL;
    for (int filter = 0; filter < 3; ++filter) {
        channel[filter] = capture(kPrimaries[3], filter); /* the white that is to be measured */
        if (!channel[filter] || tqApplyMultiPointCalibration(&channel[filter], correction) != 0) return 1;
    }
    if (tqTransformRGBToXYZ2(&x, &y, &z, channel[0], channel[1], channel[2], m[0], m[1], m[2], m[3], m[4],
                             m[5], m[6], m[7], m[8]) != 0)
        return 1;
    double white[3];
    const TqImage* xyz[3] = {x, y, z};
    for (int i = 0; i < 3; ++i)
        white[i] = tqGetPelBlockAvg(xyz[i], 320, 240, 21, 21) * tqGetLuxPerGrey(xyz[i]);
    double sum = white[0] + white[1] + white[2];
    /* [apply] */
    printf("white  Y = %.2f cd/m^2, x = %.4f, y = %.4f\n", white[1], white[0] / sum, white[1] / sum);

    TqImage* all[] = {x, y, z, channel[0], channel[1], channel[2], correction};
    for (int i = 0; i < 7; ++i)
        tqImageFree(&all[i]);
    return 0;
}
