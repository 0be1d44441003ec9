// SPDX-License-Identifier: MIT
#pragma once

#include "support/MainLoop.h"
#include "support/Motion.h"
#include "views/SymbolPainter.h"

class QWidget;

namespace kivo {

class Workspace;

// Between two pictures of what moves inside a window. The island itself follows the screen's own rate.
inline const Duration windowFrame = seconds(1.0 / 60);

// What the controls of a window share. Owned by the window, which its controls do not outlive.
struct Kit {
    MainLoop& loop;
    Workspace& workspace; // says whether moving things should be avoided
    SymbolPainter symbols{};
};

// A number that a control shows on its way to where it belongs. The control is repainted while it moves, and
// nothing runs while it rests.
class Moving {
public:
    Moving(Kit& kit, QWidget& control, double value = 0);

    double value() const { return value_.value(kit_.loop.now()); }
    bool hasArrived() const { return kit_.loop.now() >= value_.settlesAt(); }
    void set(double value);
    // At once while the control is not on screen or moving things are to be avoided.
    void go(double target, const Animation& animation);

private:
    void step();

    Kit& kit_;
    QWidget& control_;
    AnimatedValue value_;
    Subscription nextFrame_;
};

} // namespace kivo
