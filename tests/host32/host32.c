/* A 32-bit host as they exist in the field: it finds tqimage20.dll at run time, looks functions up by plain
 * name, exchanges OLE Automation arrays and variants with it, and guarantees no stack alignment. */
#include <stdio.h>
#include <windows.h>
/* After windows.h, which it needs. */
#include <oleauto.h>

#include "call.h"
#include "tqimage/tqimage.h"

enum { kCols = 9, kRows = 7, kBrightCol = 4, kBrightRow = 3, kBright = 1000, kHotCol = 7, kHotRow = 1 };

static HMODULE library;
static int faults;
static unsigned misalignment;

static void Check(int good, const char* what) {
    if (!good) {
        printf("misaligned by %u: %s\n", misalignment, what);
        ++faults;
    }
}

static Call CallOf(const char* name) {
    Call call = {(void*)(uintptr_t)GetProcAddress(library, name), misalignment, 0, {0}};
    if (call.function == NULL) {
        printf("%s is not exported\n", name);
        ExitProcess(2);
    }
    return call;
}

static SAFEARRAY* CreateTable(VARTYPE type, ULONG first, ULONG second) {
    SAFEARRAYBOUND bounds[2] = {{first, 0}, {second, 0}};
    return SafeArrayCreate(type, 2, bounds);
}

static void Put(SAFEARRAY* table, LONG first, LONG second, LONG value) {
    LONG index[2] = {first, second};
    Check(SafeArrayPutElement(table, index, &value) == S_OK, "SafeArrayPutElement");
}

/* A locked array cannot be destroyed, so this shows that the library unlocked it. */
static void Destroy(SAFEARRAY* table, const char* what) {
    Check(SafeArrayDestroy(table) == S_OK, what);
}

static LONG GreyAt(LONG col, LONG row) {
    if (col == kBrightCol && row == kBrightRow) {
        return kBright;
    }
    if (col == kHotCol && row == kHotRow) {
        return 70000;
    }
    return col == 0 ? -5 : 10 + col;
}

static int32_t PelAt(const TqImage* image, int32_t col, int32_t row) {
    Call call = CallOf("tqGetImgPel0");
    PassAddress(&call, image);
    PassWord(&call, (uint32_t)col);
    PassWord(&call, (uint32_t)row);
    return CallForInteger(&call);
}

static TqImage* ImageFromArray(void) {
    TqImage* image = NULL;
    SAFEARRAY* array = CreateTable(VT_I4, kCols, kRows);
    for (LONG row = 0; row < kRows; ++row) {
        for (LONG col = 0; col < kCols; ++col) {
            Put(array, col, row, GreyAt(col, row));
        }
    }
    Call call = CallOf("tqSafeArrayToHandle");
    PassAddress(&call, &image);
    PassAddress(&call, &array);
    Check(CallForInteger(&call) == 0, "tqSafeArrayToHandle");
    Destroy(array, "tqSafeArrayToHandle left the array locked");
    Check(PelAt(image, kBrightCol, kBrightRow) == kBright && PelAt(image, 8, 6) == 18, "pels of the array");
    Check(PelAt(image, 0, 2) == 0 && PelAt(image, kHotCol, kHotRow) == 65535, "grey levels are clamped");

    SAFEARRAY* narrow = CreateTable(VT_I2, kCols, kRows);
    TqImage* untouched = image;
    call = CallOf("tqSafeArrayToHandle");
    PassAddress(&call, &image);
    PassAddress(&call, &narrow);
    Check(CallForInteger(&call) == -2 && image == untouched, "16-bit elements are refused");
    Destroy(narrow, "a refused array stays locked");
    return image;
}

static void RepairHotPel(TqImage* image) {
    SAFEARRAY* list = CreateTable(VT_I4, 2, 5);
    const LONG records[2][5] = {{0, 100 + kHotCol, 200 + kHotRow, 0, 0}, {0, 5, 5, 0, 0}};
    for (LONG record = 0; record < 2; ++record) {
        for (LONG field = 0; field < 5; ++field) {
            Put(list, record, field, records[record][field]);
        }
    }
    Call call = CallOf("tqRemoveBadPixels");
    PassAddress(&call, image);
    PassWord(&call, 100);
    PassWord(&call, 200);
    PassWord(&call, 3);
    PassWord(&call, 3);
    PassAddress(&call, &list);
    Check(CallForInteger(&call) == 0, "tqRemoveBadPixels");
    Destroy(list, "tqRemoveBadPixels left the list locked");
    const int32_t repaired = PelAt(image, kHotCol, kHotRow);
    Check(repaired >= 16 && repaired <= 18, "the hot pel has a grey level of its neighbourhood");
}

static void MeasurePolygon(const TqImage* image) {
    SAFEARRAY* triangle = CreateTable(VT_I4, 2, 3);
    const LONG corners[3][2] = {{1, 5}, {4, 2}, {7, 5}};
    for (LONG vertex = 0; vertex < 3; ++vertex) {
        Put(triangle, 0, vertex, corners[vertex][0]);
        Put(triangle, 1, vertex, corners[vertex][1]);
    }
    Call call = CallOf("tqGetMaxPelValueInPoly");
    PassAddress(&call, image);
    PassAddress(&call, &triangle);
    Check(CallForInteger(&call) == kBright, "tqGetMaxPelValueInPoly");
    call.arguments[0] = 0;
    Check(CallForInteger(&call) == -7, "tqGetMaxPelValueInPoly of no image");
    Destroy(triangle, "tqGetMaxPelValueInPoly left the vertices locked");
}

static void TakeAverages(const TqImage* image) {
    VARIANT averages;
    VariantInit(&averages);
    Call call = CallOf("tqGetPelArray");
    PassAddress(&call, image);
    PassWord(&call, 0);
    PassWord(&call, 1);
    PassWord(&call, 1);
    PassAddress(&call, &averages);
    Check(CallForInteger(&call) == 0, "tqGetPelArray");
    Check(averages.vt == (VT_ARRAY | VT_R8), "the variant holds an array of doubles");
    if (averages.vt != (VT_ARRAY | VT_R8)) {
        return;
    }
    LONG last[2] = {0, 0};
    Check(SafeArrayGetDim(averages.parray) == 2 && SafeArrayGetUBound(averages.parray, 1, &last[0]) == S_OK &&
              SafeArrayGetUBound(averages.parray, 2, &last[1]) == S_OK && last[0] == kCols - 1 &&
              last[1] == kRows - 1,
          "the array has a dimension for columns and one for rows");
    LONG bright[2] = {kBrightCol, kBrightRow};
    double value = 0;
    Check(SafeArrayGetElement(averages.parray, bright, &value) == S_OK && value == kBright,
          "a block of one pel is the pel");
    Check(VariantClear(&averages) == S_OK, "the host releases the variant");
}

static int dispatched;

static LRESULT CALLBACK CountMessages(HWND window, UINT message, WPARAM wide, LPARAM narrow) {
    if (message == WM_APP) {
        ++dispatched;
        return 0;
    }
    return DefWindowProcA(window, message, wide, narrow);
}

static HWND CreateHostWindow(void) {
    WNDCLASSA type = {0};
    type.lpfnWndProc = CountMessages;
    type.hInstance = GetModuleHandleA(NULL);
    type.lpszClassName = "host32";
    RegisterClassA(&type);
    return CreateWindowExA(0, "host32", "", 0, 0, 0, 0, 0, HWND_MESSAGE, NULL, type.hInstance, NULL);
}

static void SearchWithMessageWaiting(TqImage* image, HWND window) {
    TqImageHeader header = {0};
    header.PelCols = kCols;
    header.PelRows = kRows;
    header.PelsPerMeterX = header.PelsPerMeterY = 10;
    header.CenterCol = kBrightCol;
    header.CenterRow = kBrightRow;
    header.LuxPerGrey = 0.5F;
    header.SourceDistance = 3;
    header.BinCols = header.BinRows = 1;
    Call set = CallOf("tqSetImageInfo");
    PassAddress(&set, image);
    PassAddress(&set, &header);
    Check(CallForInteger(&set) == 0, "tqSetImageInfo");

    int32_t col = 0;
    int32_t row = 0;
    Call call = CallOf("tqFindMaxCandelaInRegion");
    PassAddress(&call, image);
    PassAddress(&call, &col);
    PassAddress(&call, &row);
    const uint32_t rest[7] = {0, 0, kCols - 1, kRows - 1, 0, 1, 1};
    for (int i = 0; i < 7; ++i) {
        PassWord(&call, rest[i]);
    }
    dispatched = 0;
    Check(PostMessageA(window, WM_APP, 0, 0) != 0, "PostMessage");
    const double candela = CallForReal(&call);
    Check(dispatched == 1, "the waiting message is dispatched during the search");
    /* On the axis the intensity is illuminance times distance squared: 1000 x 0.5 lux x 9 square metres. */
    Check(candela == 4500.0 && col == kBrightCol && row == kBrightRow, "tqFindMaxCandelaInRegion");
}

static void FreeImage(TqImage* image) {
    Call call = CallOf("tqImageFree");
    PassAddress(&call, &image);
    Check(CallForInteger(&call) == 0 && image == NULL, "tqImageFree");
}

int main(void) {
    library = LoadLibraryA("tqimage20.dll");
    if (library == NULL) {
        printf("tqimage20.dll cannot be loaded: %lu\n", GetLastError());
        return 2;
    }
    Check(
        GetProcAddress(library, "tqImageFree@4") == NULL && GetProcAddress(library, "_tqImageFree@4") == NULL,
        "a decorated name is exported");
    HWND window = CreateHostWindow();
    Check(window != NULL, "no window");
    for (misalignment = 0; misalignment < 16; misalignment += 4) {
        TqImage* image = ImageFromArray();
        RepairHotPel(image);
        MeasurePolygon(image);
        TakeAverages(image);
        SearchWithMessageWaiting(image, window);
        FreeImage(image);
    }
    Check(StackFaults() == 0, "a function did not take its arguments off the stack");
    Check(FreeLibrary(library) != 0, "FreeLibrary");
    printf(faults == 0 ? "the 32-bit host is served\n" : "%d faults\n", faults);
    return faults != 0;
}
