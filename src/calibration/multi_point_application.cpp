#include <algorithm>
#include <cstdint>
#include <vector>

#include "calibration/sensor_frame.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/numerics.h"
#include "kernels/signed_factors.h"
#include "tqimage/multi_point_calibration.h"

namespace tq {
namespace {

/// Sum and number of the correction pels with data, under each pel of one row of the image. The pels of a
/// correction image are signed numbers here as in every other one.
struct BinSums {
    std::vector<std::int64_t> sums;
    std::vector<std::int64_t> counts;

    explicit BinSums(const SensorFrame& frame)
        : sums(static_cast<std::size_t>(frame.cols.covered)), counts(sums.size()) {}

    void Collect(const SensorFrame& frame, std::int32_t row) noexcept {
        std::fill(sums.begin(), sums.end(), 0);
        std::fill(counts.begin(), counts.end(), 0);
        const std::int64_t firstRow = frame.rows.At(row);
        const std::int64_t endRow = std::min<std::int64_t>(firstRow + frame.rows.bin, frame.correction.rows);
        for (std::int64_t r = firstRow; r < endRow; ++r)
            AddRow(frame, frame.correction.Row(static_cast<std::int32_t>(r)));
    }

    /// 1 where no pel has data.
    double Factor(std::size_t col, float luxPerGrey) const noexcept {
        if (counts[col] == 0) return 1.0;
        return static_cast<double>(sums[col]) / static_cast<double>(counts[col]) * luxPerGrey;
    }

  private:
    void AddRow(const SensorFrame& frame, const Pel* pels) noexcept {
        for (std::size_t i = 0; i < sums.size(); ++i) {
            const std::int64_t first = frame.cols.At(static_cast<std::int32_t>(i));
            const std::int64_t end = std::min<std::int64_t>(first + frame.cols.bin, frame.correction.cols);
            for (std::int64_t c = first; c < end; ++c) {
                if (pels[c] == kNoData) continue;
                sums[i] += static_cast<std::int16_t>(pels[c]);
                ++counts[i];
            }
        }
    }
};

/// A pel of 0 has no data and gets none, whatever its factor.
OwnedImage ScaleImage(const ConstImageView& image, const SensorFrame& frame) {
    const float luxPerGrey = frame.correction.header->LuxPerGrey;
    const auto covered = static_cast<std::size_t>(frame.cols.covered);
    if (frame.cols.bin == 1 && frame.rows.bin == 1) {
        return CorrectRows(image, frame, [&](std::int32_t row, const Pel* pels, Pel* out) {
            kernels::ScaleBySigned(pels, frame.Row(row).first, luxPerGrey, covered, out);
        });
    }
    BinSums bins(frame);
    return CorrectRows(image, frame, [&](std::int32_t row, const Pel* pels, Pel* out) {
        bins.Collect(frame, row);
        for (std::size_t col = 0; col < covered; ++col)
            out[col] = kernels::ScaledPel(pels[col], bins.Factor(col, luxPerGrey));
    });
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqApplyMultiPointCalibration(TqImage** image, const TqImage* correction) {
    return CorrectThroughSensor(image, correction, ScaleImage);
}
