// SPDX-License-Identifier: MIT
#pragma once

#include "support/Geometry.h"

namespace kivo {

// The panel that islands show on: borderless, clear, without a shadow, never active, on every desktop and in
// front of everything, full-screen windows included; the mouse goes through it. One per process.
class OverlayPanel {
public:
    virtual ~OverlayPanel() = default;

    // The whole frame of a screen, in the global space; without redisplay.
    virtual void setFrame(Rect frame) = 0;
    // In front of everything, whichever application is active.
    virtual void orderFront() = 0;
    virtual void orderOut() = 0;
};

} // namespace kivo
