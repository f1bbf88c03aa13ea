#include "process_tests.h"
#include "tqimage/clustering.h"
#include "tqimage/defect_detection.h"
#include "tqimage/defects.h"
#include "tqimage/filters.h"
#include "tqimage/gradients.h"
#include "tqimage/image_arithmetic.h"
#include "tqimage/local_contrast.h"
#include "tqimage/masks.h"
#include "tqimage/offset_arithmetic.h"
#include "tqimage/point_operations.h"
#include "tqimage/thresholds.h"

namespace {

using namespace tqtest;

const Image& Second() {
    static const Image image = [] {
        Image made = RandomImage(91, 87, 9, 1);
        made.Header().CenterCol = made.Header().CenterRow = 0.0f;
        return made;
    }();
    return image;
}

struct Change {
    std::int32_t invalid;
    std::int32_t (*call)(TqImage** image);
};

constexpr Change kChanges[] = {
    {-2, [](TqImage** i) { return tqNeighborhoodAverage(i, 3, 5); }},
    {-2, [](TqImage** i) { return tqNeighborhoodAverage0(i, 3, 5); }},
    {-2, [](TqImage** i) { return tqNeighborhoodAverageInRegion(i, 3, 5, 1, 1, 4, 4); }},
    {-2, [](TqImage** i) { return tqNeighborhoodAverageInRegion0(i, 3, 5, 1, 1, 4, 4); }},
    {-1, [](TqImage** i) { return tqSmoothImage(i, 1); }},
    {-1, [](TqImage** i) { return tqSmoothImage0(i, 1); }},
    {-2, [](TqImage** i) { return tqMedianFilter(i, 1); }},
    {-2, [](TqImage** i) { return tqMedianFilter(i, 3); }},
    {-2, [](TqImage** i) { return tqMedianFilter(i, 5); }},
    {-2, [](TqImage** i) { return tqMedianFilter(i, 9); }},
    {-2, [](TqImage** i) { return tqMedianFilterInRegion(i, 3, 7, 0, 0, 0, 0); }},
    {-2, [](TqImage** i) { return tqSharpenImage(i, 2.0f); }},
    {-2, [](TqImage** i) { return tqSharpenImageInRegion(i, 2.0f, 1, 1, 5, 5); }},
    {-2, [](TqImage** i) { return tqLowPassFilter(i); }},
    {-2, [](TqImage** i) { return tqCalcLocalStdDev(i, 3, 3); }},
    {-2, [](TqImage** i) { return tqSubtractImage(i, Second()); }},
    {-2, [](TqImage** i) { return tqMultiplyImages(i, Second(), 1); }},
    {-2, [](TqImage** i) { return tqSubtractValue(i, 1); }},
    {-2, [](TqImage** i) { return tqBrightnessCorrectionInRegion(i, 1, 0, 0, 0, 0); }},
    {-2, [](TqImage** i) { return tqContrastCorrectionInRegion(i, 1.0f, 0, 0, 0, 0); }},
    {-2, [](TqImage** i) { return tqMaskImage(i, Second()); }},
    {-2, [](TqImage** i) { return tqInvMaskImage(i, Second()); }},
    {-2, [](TqImage** i) { return tqThresholdImage(i, 1, 2); }},
    {-2, [](TqImage** i) { return tqThresholdImageInRegion(i, 1, 2, 0, 0, 0, 0); }},
    {-2, [](TqImage** i) { return tqThresholdImage2(i, 1, 2); }},
    {-2, [](TqImage** i) { return tqThresholdImage2InRegion(i, 1, 2, 0, 0, 0, 0); }},
    {-2, [](TqImage** i) { return tqThresholdImage3(i, 1, 2, 3, nullptr); }},
    {-2, [](TqImage** i) { return tqThresholdImageEdge(i, 1, 10.0f); }},
};

TEST(Refusals, OfFunctionsThatReplaceTheirImage) {
    Image nothing, tooWide(8001, 1), empty(0, 4);
    for (const Change& change : kChanges) {
        SCOPED_TRACE(&change - kChanges);
        for (TqImage** image :
             {static_cast<TqImage**>(nullptr), nothing.Address(), tooWide.Address(), empty.Address()})
            EXPECT_EQ(change.call(image), change.invalid);
    }
}

struct Edit {
    std::int32_t invalid;
    std::int32_t (*call)(TqImage* image);
};

constexpr Edit kEdits[] = {
    {-1, [](TqImage* i) { return tqAddConstant(i, 1); }},
    {-2, [](TqImage* i) { return tqReplaceDarkPels0(i, 1, 1); }},
    {-2, [](TqImage* i) { return tqRemoveDarkPels(i, nullptr, 1); }},
    {-2, [](TqImage* i) { return tqCorrectLinearity(i, Second().Pels()); }},
    {-2, [](TqImage* i) { return tqApplyLUTInRegion(i, Second().Pels(), 0, 0, 0, 0); }},
    {-2, [](TqImage* i) { return tqScaleImage2(i, 1.0f); }},
    {-2, [](TqImage* i) { return tqSetMaxGrayValue(i, 1); }},
    {-2, [](TqImage* i) { return tqInvMaskImageOffset(i, nullptr); }},
    {-2, [](TqImage* i) { return tqInvMaskImage2(i, nullptr, 1, 1); }},
    {-2, [](TqImage* i) { return tqFixDefects(i, nullptr, -1, 0); }},
    {-2, [](TqImage* i) { return tqReplaceHotPixels(i, 1, 1.0f, 3, 3); }},
    {-2, [](TqImage* i) { return tqEditSpikes(i, 1, 1, 3, 3); }},
    {-1, [](TqImage* i) { return tqReplacePel(i, 0, 0, 3, 3); }},
    {-1, [](TqImage* i) { return tqReplaceCol(i, 0, 0, 0, 3); }},
    {-1, [](TqImage* i) { return tqReplaceRow(i, 0, 0, 0, 3); }},
    {-2, [](TqImage* i) { return tqReplaceBlock(i, 0, 0, 1, 1); }},
    {-2, [](TqImage* i) { return tqFillInHole(i, 0, 0, 1, 1); }},
};

TEST(Refusals, OfFunctionsThatEditTheirImage) {
    Image nothing, tooTall(1, 8001), empty(4, 0);
    for (const Edit& edit : kEdits) {
        for (TqImage* image : {nothing.Get(), tooTall.Get(), empty.Get()})
            EXPECT_EQ(edit.call(image), edit.invalid) << &edit - kEdits;
    }
}

struct Result {
    std::int32_t invalid;
    std::int32_t (*call)(TqImage** out, TqImage* source);
};

constexpr Result kResults[] = {
    {-2, [](TqImage** o, TqImage* s) { return tqClusterImage(o, s, 3, nullptr); }},
    {-2, [](TqImage** o, TqImage* s) { return tqFindPixelDefects(o, s, 2, 0, 3, 4, nullptr, nullptr); }},
    {-2, [](TqImage** o, TqImage* s) { return tqFindPixelDefects1(o, s, 2, 1, 5, 4, nullptr, nullptr); }},
    {-2, [](TqImage** o, TqImage* s) { return tqFindPixelDefects2(o, s, 2, 0, 3, 4, 1, nullptr, nullptr); }},
    {-2,
     [](TqImage** o, TqImage* s) { return tqFindPixelDefects3(o, s, 2, 1, 83, 4, 50, nullptr, nullptr); }},
    {-2, [](TqImage** o, TqImage* s) { return tqCalcGradient(o, s, 0); }},
    {-2, [](TqImage** o, TqImage* s) { return tqCalcGradient0(o, s, 2); }},
    {-2, [](TqImage** o, TqImage* s) { return tqCalcGradX0(o, s, 3); }},
    {-2, [](TqImage** o, TqImage* s) { return tqCalcGradY0(o, s, 5); }},
    {-2, [](TqImage** o, TqImage* s) { return tqCombineGradients(o, s, Second(), Second(), 1, 1); }},
    {-1, [](TqImage** o, TqImage* s) { return tqLocalThresholdImage(o, s, 2, 3, 3, 10, nullptr, nullptr); }},
    {-1, [](TqImage** o, TqImage* s) { return tqLocalThresholdImage2(o, s, 2, 3, 3, 10, nullptr, nullptr); }},
    {-1, [](TqImage** o, TqImage* s) { return tqLocalThresholdImage3(o, s, 2, 3, 3, 10, nullptr, nullptr); }},
    {-2, [](TqImage** o, TqImage* s) { return tqCalcLocalLumDiff(o, s, 1, 1, 3, 3); }},
    {-2, [](TqImage** o, TqImage* s) { return tqCalcLocalLumDiffDir(o, s, 3, 3, 1, 4); }},
    {-2, [](TqImage** o, TqImage* s) { return tqAverageImages(o, s, Second()); }},
    {-2, [](TqImage** o, TqImage* s) { return tqRootSumSquare(o, s, Second(), 1, 1); }},
    {-1, [](TqImage** o, TqImage* s) { return tqCombineImages(o, s, nullptr, nullptr); }},
    {-2, [](TqImage** o, TqImage* s) { return tqSubtractImageOffset(o, s, Second(), 0, 0); }},
    {-2, [](TqImage** o, TqImage* s) { return tqAddImageOffset(o, s, Second(), 0, 0); }},
    {-2, [](TqImage** o, TqImage* s) { return tqDivideImageOffset(o, s, Second(), 0, 0); }},
};

TEST(Refusals, OfFunctionsThatMakeAnImageOfAnother) {
    Image nothing, tooWide(8001, 1), empty(0, 4);
    for (const Result& result : kResults) {
        SCOPED_TRACE(&result - kResults);
        Image source = RandomImageWithHoles(91, 87, 8);
        const Image kept(2, 3);
        Image out = kept;
        const auto unchanged = [&] { EXPECT_TRUE(SamePels(kept, out)); };
        EXPECT_EQ(result.call(nullptr, source), result.invalid);
        for (TqImage* bad : {nothing.Get(), tooWide.Get(), empty.Get()})
            EXPECT_EQ(result.call(out.Address(), bad), result.invalid);
        unchanged();
        ASSERT_EQ(result.call(out.Address(), source), 0);
        ASSERT_EQ(result.call(source.Address(), source), 0) << "onto its own source";
        EXPECT_TRUE(SamePels(out, source));
    }
}

}  // namespace
