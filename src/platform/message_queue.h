#pragma once

namespace tq {

/// Lets a host's windows work during a long search that it runs on its user-interface thread: dispatches
/// every message that waits in the calling thread's queue. Window procedures may run re-entrantly in here.
void PumpMessages() noexcept;

}  // namespace tq
