#include "platform/message_queue.h"

namespace tq {

// Without a system-wide queue of window messages there is nothing that a search could keep waiting.
void PumpMessages() noexcept {}

}  // namespace tq
