#include <cinttypes>
#include <cstdio>
#include <string_view>

#include "call_table.h"

#if defined(TQ_EVERY_TARGET)
#include <hwy/targets.h>
#endif

namespace {

constexpr int kCalls = 60;

std::uint64_t CallNumber(const tqtest::CallEntry& entry, int number) {
    // Seeded by the name, so that a new function changes nobody else's line.
    tqtest::Draw draw(tqtest::FingerprintOf(entry.name) + static_cast<std::uint64_t>(number));
    return tqtest::CallOnce(entry, draw);
}

void Print(std::string_view name, std::uint64_t digest) {
    std::printf("%.*s %016" PRIx64 "\n", static_cast<int>(name.size()), name.data(), digest);
}

/// One line a function: its name and the fingerprint of all that its calls gave back. Or one line a call of
/// one function, to see which differs.
void PrintDigests(std::string_view only) {
    for (const tqtest::CallEntry& entry : tqtest::AllCalls()) {
        if (!only.empty() && entry.name != only) continue;
        tqtest::Fingerprint all;
        for (int i = 0; i < kCalls; ++i) {
            const std::uint64_t digest = CallNumber(entry, i);
            if (!only.empty()) Print(entry.name, digest);
            all.Add(digest);
        }
        if (only.empty()) Print(entry.name, all.Value());
    }
}

void ForceTarget([[maybe_unused]] std::string_view wanted) {
#if defined(TQ_EVERY_TARGET)
    const std::int64_t supported = hwy::SupportedTargets();
    for (std::int64_t left = supported; left != 0; left &= left - 1) {
        const std::int64_t target = left & -left;
        if (wanted == "--targets") std::printf("%s\n", hwy::TargetName(target));
        if (wanted != hwy::TargetName(target)) continue;
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
#endif
}

}  // namespace

/// digest                      the digests with the best instruction set
/// digest TARGET [FUNCTION]    with one of those that `digest --targets` lists; of one function, call by call
int main(int count, char** arguments) {
    const std::string_view target = count > 1 ? arguments[1] : "";
    ForceTarget(target);
    if (target != "--targets") PrintDigests(count > 2 ? arguments[2] : "");
}
