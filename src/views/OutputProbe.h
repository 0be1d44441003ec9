// SPDX-License-Identifier: MIT
#pragma once

#include "views/WaylandDisplay.h"

namespace kivo {

// The output that the compositor itself would choose, which is the one with the mouse or the focus. No request
// asks for it: a clear pixel that names no output is put up, the compositor says where it put it, and it is
// taken away. Nothing when no answer comes within a tenth of a second.
const WaylandDisplay::Output* findOutputInUse(WaylandDisplay& display);

} // namespace kivo
