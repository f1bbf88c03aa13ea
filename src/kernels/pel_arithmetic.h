#pragma once

#include <cstddef>
#include <cstdint>

#include "core/numerics.h"

/// Operations on runs of pels that stay within 16 bits. `out` may be any of the inputs.
namespace tq::kernels {

/// out[i] = min(65535, pels[i] + amount).
void AddSaturated(const Pel* pels, Pel amount, Pel* out, std::size_t count);

/// out[i] = max(0, pels[i] - amount).
void SubtractSaturated(const Pel* pels, Pel amount, Pel* out, std::size_t count);

/// out[i] = max(0, a[i] - b[i]).
void SubtractSaturated(const Pel* a, const Pel* b, Pel* out, std::size_t count);

/// out[i] = pels[i] + amount modulo 65536.
void AddWrapped(const Pel* pels, Pel amount, Pel* out, std::size_t count);

/// out[i] = minuend - pels[i] modulo 65536.
void SubtractFrom(Pel minuend, const Pel* pels, Pel* out, std::size_t count);

/// Pels of 1..threshold become `value`, all others are kept.
void ReplaceUpTo(const Pel* pels, Pel threshold, Pel value, Pel* out, std::size_t count);

/// Pels up to `threshold` become 0, all others are kept.
void KeepAbove(const Pel* pels, Pel threshold, Pel* out, std::size_t count);

enum class Keep { kWhereMaskIsSet, kWhereMaskIsZero };

/// 0 where the mask masks; elsewhere the pel, a 0 raised to 1, so that it differs from what was masked.
void KeepMarked(const Pel* pels, const Pel* mask, Keep keep, Pel* out, std::size_t count);

/// 0 where the mask is not 0; elsewhere the pel.
void ClearWhereSet(const Pel* pels, const Pel* mask, Pel* out, std::size_t count);

/// out[i] = table[pels[i]]; the table has 65536 entries.
void LookUp(const Pel* pels, const Pel* table, Pel* out, std::size_t count);

/// The same into bytes; the table has an entry for every pel that occurs.
void LookUp(const Pel* pels, const std::uint8_t* table, std::uint8_t* out, std::size_t count);

}  // namespace tq::kernels
