#include "measure/blob_scan.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "kernels/span_statistics.h"

namespace tq {

namespace {

/// Pels looked at together: runs are searched only where one of them belongs to a blob.
constexpr std::int32_t kStretch = 256;
constexpr auto kUnnamed = static_cast<std::size_t>(-1);

}  // namespace

void BlobScan::ForEachBlob(const Visit& visit) {
    for (std::int32_t row = 0; row < view_.rows; ++row) {
        FindRuns(row);
        JoinWithRowAbove();
        KeepOpenBlobs(visit);
    }
    runs_.clear();
    KeepOpenBlobs(visit);
}

BlobScan::Kind BlobScan::KindOf(Pel pel) const noexcept {
    if (pel >= levels_.brightMin) return Kind::kBright;
    return pel <= levels_.darkMax && pel != 0 ? Kind::kDark : Kind::kNone;
}

void BlobScan::FindRuns(std::int32_t row) {
    runs_.clear();
    const Pel* const pels = view_.Row(row);
    for (std::int32_t start = 0; start < view_.cols; start += kStretch) {
        const std::int32_t end = std::min(start + kStretch, view_.cols);
        const auto range = kernels::FindMinMax(pels + start, static_cast<std::size_t>(end - start));
        if (range.max < levels_.brightMin && range.min > levels_.darkMax) continue;
        for (std::int32_t col = start; col < end;) {
            const Kind kind = KindOf(pels[col]);
            const std::int32_t first = col++;
            while (col < end && KindOf(pels[col]) == kind)
                ++col;
            if (kind != Kind::kNone) AddRun(row, first, col - 1, kind);
        }
    }
}

void BlobScan::AddRun(std::int32_t row, std::int32_t first, std::int32_t last, Kind kind) {
    const Pel* const pels = view_.Row(row);
    const std::int64_t count = last - first + 1;
    const auto sum =
        static_cast<std::int64_t>(kernels::SumPels(pels + first, static_cast<std::size_t>(count)));
    if (!runs_.empty() && runs_.back().kind == kind && runs_.back().last == first - 1) {
        // The run goes on from the stretch before.
        runs_.back().last = last;
        blobs_.back().count += count;
        blobs_.back().sum += sum;
        return;
    }
    runs_.push_back({first, last, kind, blobs_.size()});
    blobs_.push_back({count, sum, static_cast<std::int64_t>(row) * view_.cols + first});
    parents_.push_back(parents_.size());
}

void BlobScan::JoinWithRowAbove() {
    auto next = above_.cbegin();
    for (const PelRun& run : runs_) {
        while (next != above_.cend() && next->last < run.first - 1)
            ++next;
        for (auto other = next; other != above_.cend() && other->first <= run.last + 1; ++other) {
            if (other->kind == run.kind) Unite(other->blob, run.blob);
        }
    }
}

/// Visits the blobs that the current row does not reach and numbers the others anew.
void BlobScan::KeepOpenBlobs(const Visit& visit) {
    open_.clear();
    renamed_.assign(blobs_.size(), kUnnamed);
    for (PelRun& run : runs_) {
        const std::size_t root = RootOf(run.blob);
        if (renamed_[root] == kUnnamed) {
            renamed_[root] = open_.size();
            open_.push_back(blobs_[root]);
        }
        run.blob = renamed_[root];
    }
    for (std::size_t blob = 0; blob < blobs_.size(); ++blob) {
        if (parents_[blob] == blob && renamed_[blob] == kUnnamed) visit(blobs_[blob]);
    }
    blobs_.swap(open_);
    parents_.resize(blobs_.size());
    std::iota(parents_.begin(), parents_.end(), std::size_t{0});
    above_.swap(runs_);
}

std::size_t BlobScan::RootOf(std::size_t blob) {
    while (parents_[blob] != blob)
        blob = parents_[blob] = parents_[parents_[blob]];
    return blob;
}

void BlobScan::Unite(std::size_t a, std::size_t b) {
    a = RootOf(a);
    b = RootOf(b);
    if (a == b) return;
    // The larger blob stays the root, which keeps the paths short.
    if (blobs_[a].count < blobs_[b].count) std::swap(a, b);
    parents_[b] = a;
    blobs_[a].count += blobs_[b].count;
    blobs_[a].sum += blobs_[b].sum;
    blobs_[a].firstPel = std::min(blobs_[a].firstPel, blobs_[b].firstPel);
}

}  // namespace tq
