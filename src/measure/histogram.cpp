#include "measure/histogram.h"

#include <cstddef>
#include <cstdio>
#include <span>

#include "core/guard.h"
#include "core/output_file.h"
#include "kernels/histogram.h"
#include "kernels/span_statistics.h"
#include "platform/new_array.h"
#include "tqimage/histogram.h"

namespace tq {

std::vector<std::uint32_t> Histogram(const ConstImageView& view) {
    const std::size_t levels = std::size_t{kernels::FindMinMax(view.pels, view.Count()).max} + 1;
    std::vector<std::uint32_t> table(kernels::HistogramEntries(levels));
    kernels::CountLevels(view.pels, view.Count(), levels, table);
    table.resize(levels);
    return table;
}

}  // namespace tq

using namespace tq;

namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kInvalidWrittenImage = -1;
constexpr std::int32_t kNotWritten = -2;

bool WriteLines(std::FILE* file, std::span<const std::uint32_t> counts) noexcept {
    for (std::size_t level = 0; level < counts.size(); ++level) {
        if (std::fprintf(file, "%u,%u\n", static_cast<unsigned>(level),
                         static_cast<unsigned>(counts[level])) < 0) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::int32_t TQ_CALL tqGetHistogram(const TqImage* image, SAFEARRAY** array) {
    const ConstImageView view = LocateImage(image);
    if (!view || array == nullptr) return kInvalidImage;
    return Guarded(kArrayCodes.notCreated, [&] {
        // Counted before the old array goes, so that a lack of memory for it leaves the host's array.
        const std::vector<std::uint32_t> counts = Histogram(view);
        return ReplaceArray<std::uint32_t>(array, VT_I4, counts);
    });
}

std::int32_t TQ_CALL tqWriteHistogram(const TqImage* image, const char* path) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidWrittenImage;
    return Guarded(kNotWritten, [&] {
        const std::vector<std::uint32_t> counts = Histogram(view);
        // Text mode: the line ends are those of the system.
        const bool written = WriteFile(path, "w", [&](std::FILE* file) { return WriteLines(file, counts); });
        return written ? 0 : kNotWritten;
    });
}
