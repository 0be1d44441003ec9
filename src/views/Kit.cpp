// SPDX-License-Identifier: MIT
#include "views/Kit.h"

#include "platform/Workspace.h"

#include <QWidget>

namespace kivo {

Moving::Moving(Kit& kit, QWidget& control, double value) : kit_(kit), control_(control), value_(value) {}

void Moving::set(double value) {
    nextFrame_.cancel();
    value_.set(value);
    control_.update();
}

void Moving::go(double target, const Animation& animation) {
    if (value_.target() == target)
        return;
    if (!control_.isVisible() || kit_.workspace.reduceMotion()) {
        set(target);
        return;
    }
    value_.animate(target, animation, kit_.loop.now());
    step();
}

void Moving::step() {
    control_.update();
    if (kit_.loop.now() < value_.settlesAt())
        nextFrame_ = kit_.loop.after(windowFrame, [this] { step(); });
}

} // namespace kivo
