// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Screens.h"

#include <QPoint>
#include <QRect>

#include <functional>
#include <string>

class QScreen;

namespace kivo {

// Qt's screens in the global space of the platform: the origin is the lower left corner of the primary screen,
// y points up. A Wayland desktop tells nobody where the mouse is: there it is where Qt last saw it, unless
// somebody knows better.
class QtScreens final : public Screens {
public:
    QtScreens();

    std::vector<Screen> screens() override;
    std::optional<Screen> mainScreen() override;
    // Without `screenOfMouse`, or when that knows of none: where Qt last saw it.
    Point mouseLocation() override;
    // What the desktop's panels take of the primary screen's top; 24 without one.
    double statusBarThickness() override;

    // The screen that holds the mouse where Qt cannot tell, null when nobody can.
    std::function<const QScreen*()> screenOfMouse;

private:
    Screen describe(const QScreen& screen) const;

    std::string model_;
};

// Between Qt's space (y down, any origin) and the platform's.
Rect toGlobalSpace(const QRect& rect, const QRect& primary);
Point toGlobalSpace(QPoint point, const QRect& primary);

} // namespace kivo
