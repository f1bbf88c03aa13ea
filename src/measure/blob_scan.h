#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "core/image_view.h"

namespace tq {

/// Pels of one kind that touch by sides or corners.
struct Blob {
    std::int64_t count = 0;
    std::int64_t sum = 0;       ///< of their pels
    std::int64_t firstPel = 0;  ///< index of the first one in row order
};

/// The two kinds of pels that make blobs: 1..darkMax and brightMin..65535. A dark blob and a bright one stay
/// apart where they touch; a pel of 0 holds no data.
struct BlobLevels {
    std::int32_t darkMax;
    std::int32_t brightMin;
};

/// Finds the blobs of an image out of the runs of its rows. Only blobs that reach the current row are kept,
/// so the memory is that of a few rows whatever the image holds, and the time grows with the number of pels.
class BlobScan {
  public:
    using Visit = std::function<void(const Blob&)>;

    BlobScan(const ConstImageView& view, const BlobLevels& levels) : view_(view), levels_(levels) {}

    /// Calls visit once for each blob, when its last row has passed.
    void ForEachBlob(const Visit& visit);

  private:
    enum class Kind : std::uint8_t { kNone, kDark, kBright };
    struct PelRun {
        std::int32_t first;
        std::int32_t last;
        Kind kind;
        std::size_t blob;
    };

    Kind KindOf(Pel pel) const noexcept;
    void FindRuns(std::int32_t row);
    void AddRun(std::int32_t row, std::int32_t first, std::int32_t last, Kind kind);
    void JoinWithRowAbove();
    void KeepOpenBlobs(const Visit& visit);
    std::size_t RootOf(std::size_t blob);
    void Unite(std::size_t a, std::size_t b);

    ConstImageView view_;
    BlobLevels levels_;
    std::vector<PelRun> above_;  ///< runs of the row above, left to right
    std::vector<PelRun> runs_;   ///< runs of the current row
    std::vector<Blob> blobs_;    ///< of both rows; those that are their own parents are whole
    std::vector<std::size_t> parents_;
    std::vector<Blob> open_;
    std::vector<std::size_t> renamed_;
};

}  // namespace tq
