// SPDX-License-Identifier: MIT
#pragma once

#include "support/MainLoop.h"
#include "views/Surface.h"
#include "views/SymbolPainter.h"

#include <functional>

namespace kivo {

// What the parts of a window are drawn with, and how they get to move. Owned by the window.
struct ViewContext {
    MainLoop& loop;
    SymbolPainter& symbols;
    Surface surface;
    bool reducesMotion = false;
    // Something begins to move: frames are wanted until nothing does.
    std::function<void()> wake;
};

} // namespace kivo
