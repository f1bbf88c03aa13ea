#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/out_value.h"
#include "core/window.h"
#include "kernels/defect_tests.h"
#include "measure/block_sweep.h"
#include "process/tiled_medians.h"
#include "tqimage/defect_detection.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoMemory = -3;

using kernels::DefectCounts;
using kernels::DefectFactors;

std::size_t Size(std::int32_t count) noexcept {
    return static_cast<std::size_t>(count);
}

/// Tests row after row of the pels that have their whole window inside the image. `pels` are the row's
/// without the border on its left, with 0 for what is not to be tested.
class RowTest {
  public:
    virtual ~RowTest() = default;
    virtual DefectCounts Test(std::int32_t row, const Pel* pels, Pel* out) = 0;
};

/// Against the mean. The windows of a zero-free test hold all their pels: they need no count.
class MeanTest final : public RowTest {
  public:
    MeanTest(const ConstImageView& view, std::int32_t half, bool zeroFree, const DefectFactors& factors)
        : factors_(factors) {
        const std::int32_t side = 2 * half + 1;
        const std::int32_t last = view.cols - half - 1;
        if (zeroFree) {
            all_ = MakeBlockSweep(view, BlockShape::kRectangle, side, side, half, last);
        } else {
            lit_.emplace(view, BlockShape::kRectangle, side, side, half, last);
        }
    }

    DefectCounts Test(std::int32_t row, const Pel* pels, Pel* out) override {
        return all_ ? Against(*all_, row, pels, out) : Against(*lit_, row, pels, out);
    }

  private:
    template <class Sweep>
    DefectCounts Against(Sweep& sweep, std::int32_t row, const Pel* pels, Pel* out) {
        sweep.MoveTo(row);
        const auto sums = sweep.Sums();
        return kernels::FlagByMean(pels, sums.data(), sweep.Counts().data(), sums.size(), factors_, out);
    }

    DefectFactors factors_;
    std::unique_ptr<BlockSweep> all_;
    std::optional<LitBlockSweep> lit_;
};

/// Against the median of a small window, by counting on which side of the pel's bounds it lies.
class CountedMedianTest final : public RowTest {
  public:
    CountedMedianTest(const ConstImageView& view, std::int32_t half, bool zeroFree,
                      const DefectFactors& factors)
        : view_(view),
          half_(half),
          zeroFree_(zeroFree),
          emptyIsBright_(factors.bright * 0.0 < 1.0),
          // As the pel grows so do its bounds, hence one walk through all pairs of pel and median.
          brightBound_(Bounds([&](double pel, double median) { return factors.bright * median < pel; })),
          darkBound_(Bounds([&](double pel, double median) { return !(pel < factors.dark * median); })),
          bright_(Size(view.cols - 2 * half)),
          dark_(bright_.size()) {}

    DefectCounts Test(std::int32_t row, const Pel* pels, Pel* out) override {
        for (std::size_t i = 0; i < bright_.size(); ++i) {
            bright_[i] = brightBound_[pels[i]];
            dark_[i] = darkBound_[pels[i]];
        }
        return kernels::FlagByMedian(
            pels, {view_.Row(row - half_), Size(view_.cols), Size(2 * half_ + 1), zeroFree_}, bright_.size(),
            {bright_.data(), dark_.data(), emptyIsBright_}, out);
    }

  private:
    /// The largest median for each pel that `holds` for it, 0 when none from 1 on does: a median of lit pels
    /// is never 0.
    template <class Holds>
    static std::vector<Pel> Bounds(Holds&& holds) {
        std::vector<Pel> bounds(65536);
        std::int32_t bound = 0;
        for (std::int32_t pel = 1; pel <= kLargestPel; ++pel) {
            while (bound < kLargestPel && holds(pel, bound + 1))
                ++bound;
            bounds[Size(pel)] = static_cast<Pel>(bound);
        }
        return bounds;
    }

    ConstImageView view_;
    std::int32_t half_;
    bool zeroFree_;
    bool emptyIsBright_;
    std::vector<Pel> brightBound_;
    std::vector<Pel> darkBound_;
    std::vector<Pel> bright_;
    std::vector<Pel> dark_;
};

/// Against the median of a large window, a strip of rows at a time. A whole number is its own mean.
class RankedMedianTest final : public RowTest {
  public:
    RankedMedianTest(const ConstImageView& view, std::int32_t half, const DefectFactors& factors)
        : view_(view),
          half_(half),
          factors_(factors),
          stripRows_(std::min(MedianTileSide(2 * half + 1, 2 * half + 1), view.rows - 2 * half)),
          strip_(Size(stripRows_) * Size(view.cols - 2 * half)),
          medians_(Size(view.cols - 2 * half)),
          ones_(medians_.size(), 1.0) {}

    DefectCounts Test(std::int32_t row, const Pel* pels, Pel* out) override {
        const std::int32_t inStrip = (row - half_) % stripRows_;
        if (inStrip == 0) Fill(row);
        const auto first = strip_.begin() + static_cast<std::ptrdiff_t>(Size(inStrip) * medians_.size());
        std::copy_n(first, medians_.size(), medians_.begin());
        return kernels::FlagByMean(pels, medians_.data(), ones_.data(), ones_.size(), factors_, out);
    }

  private:
    /// The strip that begins at this row.
    void Fill(std::int32_t row) {
        const std::int32_t side = 2 * half_ + 1;
        const std::int32_t cols = view_.cols - 2 * half_;
        const std::int32_t rows = std::min(stripRows_, view_.rows - half_ - row);
        TiledMedians({view_.Row(row - half_), view_.cols, cols, rows, side, side, true}, strip_.data(), cols,
                     buffers_);
    }

    ConstImageView view_;
    std::int32_t half_;
    DefectFactors factors_;
    std::int32_t stripRows_;
    std::vector<Pel> strip_;
    std::vector<double> medians_;
    std::vector<double> ones_;
    kernels::RankBuffers buffers_;
};

/// What all detectors share; `kind` and `reference` are the host's codes.
class Detector {
  public:
    Detector(const ConstImageView& source, std::int32_t kind, std::int32_t reference, std::int32_t size,
             double percent)
        : source_(source), byMedian_(reference != 0) {
        // Unlike the windows of the filters an even size is not reduced: 4 means 5 x 5.
        half_ = std::min({std::max(size, 1), source.cols, source.rows}) / 2;
        const double tolerance = percent / 100.0;
        constexpr double kNever = std::numeric_limits<double>::quiet_NaN();
        constexpr std::int32_t kDarkOnly = 0, kBrightOnly = 1;
        factors_ = {kind == kDarkOnly ? kNever : 1.0 + tolerance,
                    kind == kBrightOnly ? kNever : 1.0 - tolerance};
    }

    /// Pels are tested only where the square of this radius lies inside the image and holds no 0; below 1 it
    /// is the neighbourhood's.
    void TestZeroFreeOnly(std::int32_t radius) { radius_ = radius < 1 ? half_ : radius; }

    /// Neighbours at or below the floor are no reference.
    void SetFloor(std::int32_t floor) { floor_ = floor; }

    /// Counts are written, and the host's image replaced, only when the work is done.
    void Run(TqImage** out, std::int32_t* bright, std::int32_t* dark) const {
        OwnedImage result(source_, NewPels::kZero);
        const DefectCounts found = Detect(result.View());
        CommitImage(out, std::move(result));
        StoreIfAsked(bright, static_cast<std::int32_t>(found.bright));
        StoreIfAsked(dark, static_cast<std::int32_t>(found.dark));
    }

  private:
    DefectCounts Detect(const ImageView& out) const {
        DefectCounts found;
        const std::int32_t cols = source_.cols - 2 * half_;
        if (cols < 1 || source_.rows - 2 * half_ < 1) return found;
        const OwnedImage raised = RaiseToFloor();
        const ConstImageView neighbours = floor_ > 0 ? ConstImageView(raised.View()) : source_;
        const std::unique_ptr<RowTest> test = MakeTest(neighbours);
        std::optional<ZeroFreeRows> zeroFree;
        if (radius_ > 0) zeroFree.emplace(source_, radius_);
        std::vector<Pel> tested(Size(cols));
        for (std::int32_t row = 0; row < source_.rows - half_; ++row) {
            const auto free = zeroFree ? zeroFree->Next() : std::span<const std::uint8_t>();
            if (row < half_) continue;
            const Pel* pels = source_.Row(row) + half_;
            if (zeroFree) {
                for (std::size_t i = 0; i < tested.size(); ++i)
                    tested[i] = free[i + Size(half_)] != 0 ? pels[i] : Pel{0};
                pels = tested.data();
            }
            found += test->Test(row, pels, out.Row(row) + half_);
        }
        return found;
    }

    /// A neighbour that is not above the floor becomes one without data.
    OwnedImage RaiseToFloor() const {
        if (floor_ <= 0) return {};
        OwnedImage raised(source_, NewPels::kUnwritten);
        Pel* const pels = raised.View().pels;
        for (std::size_t i = 0; i < source_.Count(); ++i)
            pels[i] = source_.pels[i] > floor_ ? source_.pels[i] : Pel{0};
        return raised;
    }

    std::unique_ptr<RowTest> MakeTest(const ConstImageView& neighbours) const {
        // Counting costs the window's area a pel, but many pels at once; ranks cost two sides, one pel after
        // the other. Where the two meet depends on the vectors: at sides of about 20 with 128 bits, 40 with
        // 512.
        constexpr std::int32_t kLargestCountedHalf = 15;
        const bool zeroFree = radius_ >= half_ && radius_ > 0;
        if (!byMedian_) return std::make_unique<MeanTest>(neighbours, half_, zeroFree, factors_);
        if (half_ <= kLargestCountedHalf) {
            return std::make_unique<CountedMedianTest>(neighbours, half_, zeroFree, factors_);
        }
        return std::make_unique<RankedMedianTest>(neighbours, half_, factors_);
    }

    ConstImageView source_;
    bool byMedian_;
    std::int32_t half_;
    std::int32_t radius_ = 0;  ///< 0: no zero-free test
    std::int32_t floor_ = 0;
    DefectFactors factors_;
};

/// The frame of the exported detectors; `refine` sets what tells them apart.
template <class Refine>
std::int32_t FindDefects(TqImage** out, const TqImage* image, std::int32_t kind, std::int32_t reference,
                         std::int32_t size, double percent, std::int32_t* bright, std::int32_t* dark,
                         Refine&& refine) {
    // Before anything is checked: hosts add the counts up without looking at the status.
    StoreIfAsked(bright, 0);
    StoreIfAsked(dark, 0);
    const ConstImageView source = LocateImage(image);
    if (!source || out == nullptr) return kInvalidImage;
    return Guarded(kNoMemory, [&] {
        Detector detector(source, kind, reference, size, percent);
        refine(detector, source);
        detector.Run(out, bright, dark);
        return 0;
    });
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqFindPixelDefects(TqImage** out, const TqImage* source, std::int32_t kind,
                                        std::int32_t reference, std::int32_t size, double percent,
                                        std::int32_t* bright, std::int32_t* dark) {
    return FindDefects(out, source, kind, reference, size, percent, bright, dark,
                       [](Detector& detector, const ConstImageView&) { detector.TestZeroFreeOnly(0); });
}

std::int32_t TQ_CALL tqFindPixelDefects1(TqImage** out, const TqImage* source, std::int32_t kind,
                                         std::int32_t reference, std::int32_t size, double percent,
                                         std::int32_t* bright, std::int32_t* dark) {
    return FindDefects(out, source, kind, reference, size, percent, bright, dark,
                       [](Detector&, const ConstImageView&) {});
}

std::int32_t TQ_CALL tqFindPixelDefects2(TqImage** out, const TqImage* source, std::int32_t kind,
                                         std::int32_t reference, std::int32_t size, double percent,
                                         std::int32_t radius, std::int32_t* bright, std::int32_t* dark) {
    return FindDefects(
        out, source, kind, reference, size, percent, bright, dark,
        [radius](Detector& detector, const ConstImageView&) { detector.TestZeroFreeOnly(radius); });
}

std::int32_t TQ_CALL tqFindPixelDefects3(TqImage** out, const TqImage* source, std::int32_t kind,
                                         std::int32_t reference, std::int32_t size, double percent,
                                         double floorPercent, std::int32_t* bright, std::int32_t* dark) {
    return FindDefects(out, source, kind, reference, size, percent, bright, dark,
                       [floorPercent](Detector& detector, const ConstImageView& view) {
                           const double mean = view.header->TotalPelValue / static_cast<double>(view.Count());
                           // No neighbour is above 65535, so a floor need not be.
                           const double floor = floorPercent / 100.0 * mean;
                           detector.SetFloor(TruncToInt32(std::min(floor, double{kLargestPel})));
                       });
}
