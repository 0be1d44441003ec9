// SPDX-License-Identifier: MIT
#pragma once

namespace kivo {

// Whether something on this desktop shows tray icons now: a host of status notifier items on the session bus,
// or a tray of the older kind on the display. Two short questions, answered at once.
bool hasTrayHost();

} // namespace kivo
