#include "process/equalised_image.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "core/image_view.h"
#include "core/numerics.h"
#include "core/rectangle.h"
#include "kernels/pel_arithmetic.h"
#include "measure/histogram.h"
#include "measure/image_values.h"
#include "process/equalised_result.h"
#include "process/grey_bins.h"
#include "process/outside_runs.h"
#include "process/pel_runs.h"
#include "tqimage/equalisation.h"

namespace tq {
namespace {

/// What each grey level becomes. Shares of the pels are added up in single precision, the one that stored
/// results of hosts were made with; 0, the pel without data, takes part in them and stays 0.
std::vector<Pel> EqualisingTable(std::span<const std::uint32_t> counts, std::int32_t levels) {
    const std::vector<Pel> bins = BinOfEachGrey(levels, static_cast<Pel>(counts.size() - 1));
    std::vector<std::uint32_t> perBin(static_cast<std::size_t>(levels));
    std::uint64_t pels = 0;
    for (std::size_t grey = 0; grey < counts.size(); ++grey) {
        perBin[bins[grey]] += counts[grey];
        pels += counts[grey];
    }
    std::vector<Pel> levelOfBin(perBin.size());
    const auto top = static_cast<float>(levels - 1);
    float share = 0.0f;
    for (std::size_t bin = 0; bin < perBin.size(); ++bin) {
        share += static_cast<float>(perBin[bin] / static_cast<double>(pels));
        const float level = top * share + 0.5f;
        levelOfBin[bin] = ClampToPel(TruncToInt32(static_cast<double>(level)));
    }
    std::vector<Pel> table(kGreyLevels);
    for (std::size_t grey = 1; grey < bins.size(); ++grey)
        table[grey] = levelOfBin[bins[grey]];
    return table;
}

/// The histogram of a rectangle. `scratch` has room for its pels.
std::vector<std::uint32_t> HistogramOf(const ConstImageView& view, const Rect& rect, Pel* scratch) {
    ConstImageView gathered{view.header, scratch, static_cast<std::int32_t>(rect.Width()),
                            static_cast<std::int32_t>(rect.Height())};
    VisitRuns(view, rect, [&](std::size_t first, std::size_t count) {
        scratch = std::copy_n(view.pels + first, count, scratch);
    });
    return Histogram(gathered);
}

}  // namespace

Pel EqualiseInto(const ImageView& result, const ConstImageView& view, std::int32_t levels) {
    const std::vector<std::uint32_t> counts = Histogram(view);
    if (counts.size() == 1) return 0;
    const std::vector<Pel> table = EqualisingTable(counts, levels);
    StoreImageValues(result, ProduceMeasured(result, [&](std::size_t first, std::size_t count) {
                         kernels::LookUp(view.pels + first, table.data(), result.pels + first, count);
                     }));
    return static_cast<Pel>(counts.size() - 1);
}

}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqHistoEqualize(TqImage** out, TqImage* source, std::int32_t levels) {
    const ImageView view = out == nullptr ? ImageView{} : LocateImage(source);
    if (!view) return kInvalidEqualisationSource;
    const std::int32_t used = EqualisedLevels(levels, *view.header);
    return ProduceEqualised(out, source, view, [&](const ImageView& result) {
        const Pel largest = EqualiseInto(result, view, used);
        // Hosts scale the display of the source by the refreshed field afterwards.
        view.header->MaxPelValue = largest;
        return largest == 0 ? kNoHistogram : 0;
    });
}

std::int32_t TQ_CALL tqHistoEqualizeInRegion(TqImage** out, const TqImage* source, std::int32_t levels,
                                             std::int32_t left, std::int32_t top, std::int32_t right,
                                             std::int32_t bottom) {
    const ConstImageView view = out == nullptr ? ConstImageView{} : LocateImage(source);
    if (!view) return kInvalidEqualisationSource;
    const std::int32_t used = EqualisedLevels(levels, *view.header);
    const Rect region = ClampRegion({left, top, right, bottom}, view.cols, view.rows);
    return ProduceEqualised(out, source, view, [&](const ImageView& result) {
        if (!region.Empty()) {
            // The result's own pels, not yet written, are the room in which the rectangle is gathered.
            const std::vector<std::uint32_t> counts = HistogramOf(view, region, result.pels);
            if (counts.size() == 1) return kNoHistogram;
            const std::vector<Pel> table = EqualisingTable(counts, used);
            VisitRuns(view, region, [&](std::size_t first, std::size_t count) {
                kernels::LookUp(view.pels + first, table.data(), result.pels + first, count);
            });
        }
        VisitOutside(view, region, [&](std::size_t first, std::size_t count) {
            std::copy_n(view.pels + first, count, result.pels + first);
        });
        RefreshImageValues(result);
        return 0;
    });
}
