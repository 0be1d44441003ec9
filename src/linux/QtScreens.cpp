// SPDX-License-Identifier: MIT
#include "linux/QtScreens.h"

#include "linux/base/Notch.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

namespace kivo {
namespace {

constexpr double usualThickness = 24;

QRect primaryGeometry() {
    const QScreen* primary = QGuiApplication::primaryScreen();
    return primary ? primary->geometry() : QRect();
}

// The edge below the last row; QRect's own bottom() is that row.
int lowerEdge(const QRect& rect) {
    return rect.y() + rect.height();
}

// When the last screen has gone, Qt keeps one of no size.
bool isThere(const QScreen* screen) {
    return screen && !screen->geometry().isEmpty();
}

} // namespace

Rect toGlobalSpace(const QRect& rect, const QRect& primary) {
    return {static_cast<double>(rect.x() - primary.x()),
            static_cast<double>(lowerEdge(primary) - lowerEdge(rect)), static_cast<double>(rect.width()),
            static_cast<double>(rect.height())};
}

Point toGlobalSpace(QPoint point, const QRect& primary) {
    return {static_cast<double>(point.x() - primary.x()), static_cast<double>(lowerEdge(primary) - point.y())};
}

QtScreens::QtScreens() : model_(computerModel()) {}

Screen QtScreens::describe(const QScreen& screen) const {
    Screen result{toGlobalSpace(screen.geometry(), primaryGeometry()), 0, {}, {}};
    const double scale = screen.devicePixelRatio();
    const auto found =
        notch(model_, screen.name().toStdString(), result.frame.width * scale, result.frame.height * scale);
    if (found) {
        result.safeTop = found->height / scale;
        result.auxiliaryTopLeft = (result.frame.width - found->width / scale) / 2;
        result.auxiliaryTopRight = result.auxiliaryTopLeft;
    }
    return result;
}

std::vector<Screen> QtScreens::screens() {
    std::vector<Screen> result;
    for (const QScreen* screen : QGuiApplication::screens()) {
        if (isThere(screen))
            result.push_back(describe(*screen));
    }
    return result;
}

std::optional<Screen> QtScreens::mainScreen() {
    const QScreen* primary = QGuiApplication::primaryScreen();
    return isThere(primary) ? std::optional(describe(*primary)) : std::nullopt;
}

Point QtScreens::mouseLocation() {
    const QScreen* screen = screenOfMouse ? screenOfMouse() : nullptr;
    // With one screen the display need not be asked.
    if (const auto all = QGuiApplication::screens(); !screen && all.size() == 1)
        screen = all.front();
    return toGlobalSpace(screen ? screen->geometry().center() : QCursor::pos(), primaryGeometry());
}

double QtScreens::statusBarThickness() {
    const QScreen* primary = QGuiApplication::primaryScreen();
    const int taken = primary ? primary->availableGeometry().y() - primary->geometry().y() : 0;
    return taken > 0 ? taken : usualThickness;
}

} // namespace kivo
