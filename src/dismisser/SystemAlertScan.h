// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace kivo {

class AccessibleProcesses;

// One look through the windows of the system's notification process: closes what offers a close action and
// speaks of a low battery. `dismissed` is called after each that was closed, in the order of the windows. Reads
// other processes, which may take its time; needs no particular thread.
void dismissSystemAlerts(AccessibleProcesses& processes, const std::function<void()>& dismissed);

} // namespace kivo
