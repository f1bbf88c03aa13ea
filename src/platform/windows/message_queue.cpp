#include "platform/message_queue.h"

#include "platform/windows/system.h"

namespace tq {

void PumpMessages() noexcept {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

}  // namespace tq
