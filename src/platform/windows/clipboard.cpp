#include "platform/clipboard.h"

#include "platform/windows/system.h"

namespace tq {

// Whether another program has the clipboard open at the moment is not reported: hosts rely on a status that
// depends on the handle alone.
void PutDibOnClipboard(void* owner, void* dib) noexcept {
    OpenClipboard(static_cast<HWND>(owner));
    EmptyClipboard();
    SetClipboardData(CF_DIB, dib);
    CloseClipboard();
}

}  // namespace tq
