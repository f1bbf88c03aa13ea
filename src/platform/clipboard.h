#pragma once

namespace tq {

/// Replaces what the clipboard holds by a packed DIB in global memory, which is the clipboard's from then on.
/// `owner` is the window that puts it there, or null.
void PutDibOnClipboard(void* owner, void* dib) noexcept;

}  // namespace tq
