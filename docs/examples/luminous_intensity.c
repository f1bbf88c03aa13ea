/* A lamp lights a flat target, a camera looks at the target: dark frame, a dead pel, luminous intensity, the
 * brightest direction and the flux. The lamp is computed, so every figure stands next to the true one. */
#include <math.h>
#include <stdio.h>
#include <tqimage/tqimage.h>

enum { kCols = 800, kRows = 600, kDark = 240, kDeadCol = 430, kDeadRow = 280 };
static const double kPelsPerMeter = 400; /* a pel is 2.5 mm of the target, which measures 2 m x 1.5 m */
static const double kDistance = 2.5;     /* metres from the lamp to the target */
static const double kLuxPerGrey = 0.0025;
/* The lamp sends 850 cd toward the point 0.3 m right of and 0.2 m above the middle of the target, and
 * 850 cos^3 of the angle from there into every other direction. */
static const double kPeakCandela = 850, kPeakX = 0.3, kPeakY = 0.2;
static const double kDegrees = 57.29577951308232;

static double true_candela(double x, double y) {
    double distance = sqrt(x * x + y * y + kDistance * kDistance);
    double axis = sqrt(kPeakX * kPeakX + kPeakY * kPeakY + kDistance * kDistance);
    double cosine = (x * kPeakX + y * kPeakY + kDistance * kDistance) / (distance * axis);
    return kPeakCandela * cosine * cosine * cosine;
}

static double true_lux(double x, double y) {
    double distance = sqrt(x * x + y * y + kDistance * kDistance);
    return true_candela(x, y) * kDistance / (distance * distance * distance);
}

/* Noise of the camera, -15..15 grey levels. */
static int noise(void) {
    static uint32_t state = 20;
    state = state * 1664525u + 1013904223u;
    return (int)(state >> 16) % 31 - 15;
}

static double column_to_meters(double column) {
    return (column - (kCols - 1) / 2.0) / kPelsPerMeter;
}

static double row_to_meters(double row) {
    return ((kRows - 1) / 2.0 - row) / kPelsPerMeter;
}

/* What the camera delivers: unsigned grey levels, row 0 first. */
static void expose(uint16_t* pels, double exposure) {
    for (int row = 0; row < kRows; ++row) {
        for (int col = 0; col < kCols; ++col) {
            double grey = exposure * true_lux(column_to_meters(col), row_to_meters(row)) / kLuxPerGrey;
            *pels++ = (uint16_t)(grey + kDark + noise());
        }
    }
    pels[(kDeadRow - kRows) * kCols + kDeadCol] = 65535; /* a pel that is always bright */
}

int main(void) {
    /* [header] */
    TqImageHeader header = {.PelCols = kCols, .PelRows = kRows, .BinCols = 1, .BinRows = 1};
    header.PelsPerMeterX = header.PelsPerMeterY = (float)kPelsPerMeter;
    header.SourceDistance = (float)kDistance;
    header.LuxPerGrey = (float)kLuxPerGrey;
    header.CenterCol = (kCols - 1) / 2.0f; /* where the lamp's axis meets the target */
    header.CenterRow = (kRows - 1) / 2.0f;
    /* [header] */

    /* [capture] */
    TqImage *image = NULL, *dark = NULL;
    uint16_t* pels = NULL;
    if (tqCreateImageA(&image, NULL, &pels, kCols, kRows) != 0) return 1;
    expose(pels, 1);
    tqSetImageInfo(image, &header);
    if (tqCreateImageA(&dark, NULL, &pels, kCols, kRows) != 0) return 1;
    expose(pels, 0); /* lens covered; its CenterCol and CenterRow stay 0, see below */
    /* [capture] */

    /* [correct] */
    if (tqSubtractImage(&image, dark) != 0) return 1;
    if (tqReplacePel(image, kDeadCol, kDeadRow, 3, 3) != 0) return 1;
    /* [correct] */

    /* [toward] */
    double candela, azimuth, polar, off_axis;
    if (tqCalcCandela(image, 400, 300, &candela, &azimuth, &polar, &off_axis, 9, 9, 3) != 0) return 1;
    /* [toward] */
    printf("toward the middle      %7.2f cd (true %.2f)\n", candela,
           true_candela(column_to_meters(400), row_to_meters(300)));

    /* [spread] */
    int32_t count, not_zero;
    double total, squares;
    tqGetTotalPelValuesInRegion(image, NULL, NULL, NULL, &count, &total, &squares, &not_zero, 396, 296, 404,
                                304);
    double mean = total / count;
    double deviation = sqrt((squares - count * mean * mean) / (count - 1));
    /* [spread] */
    printf("uncertainty, type A    %7.3f %% (%d pels)\n", 100 * deviation / sqrt((double)count) / mean,
           (int)count);

    /* [brightest] */
    int32_t col, row;
    if (tqCalcMaxCandela(image, &col, &row, 21, 21) != 0) return 1;
    if (tqCalcCandela(image, col, row, &candela, &azimuth, &polar, &off_axis, 21, 21, 3) != 0) return 1;
    /* [brightest] */
    printf("brightest direction    %7.2f cd (true %.2f)\n", candela, kPeakCandela);
    printf("  azimuth, polar angle %7.2f and %.2f degrees (true 33.69 and 8.21)\n", azimuth * kDegrees,
           polar * kDegrees);

    /* [flux] */
    double lux;
    double lumen = tqCalcFluxInRegion(image, 0, 0, kCols - 1, kRows - 1, &lux);
    /* [flux] */
    printf("flux on the target     %7.2f lm, %.2f lx on average\n", lumen, lux);

    tqImageFree(&dark);
    return tqImageFree(&image);
}
