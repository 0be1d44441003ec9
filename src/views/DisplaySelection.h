// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace kivo {

// Whether a program owns this selection of the X display, as compositors ("_NET_WM_CM_S0") and trays
// ("_NET_SYSTEM_TRAY_S0") do while they run. False on other displays.
bool isSelectionOwned(std::string_view name);

// Whether windows are blended on this display; if not, a translucent one shows black where it is clear.
bool isCompositing();

} // namespace kivo
