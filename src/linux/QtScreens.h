// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Screens.h"

#include <QPoint>
#include <QRect>

#include <string>

class QScreen;

namespace kivo {

// Qt's screens in the global space of the platform: the origin is the lower left corner of the primary screen,
// y points up. A Wayland desktop tells nobody where the mouse is: there it is where Qt last saw it.
class QtScreens final : public Screens {
public:
    QtScreens();

    std::vector<Screen> screens() override;
    std::optional<Screen> mainScreen() override;
    Point mouseLocation() override;
    // What the desktop's panels take of the primary screen's top; 24 without one.
    double statusBarThickness() override;

private:
    Screen describe(const QScreen& screen) const;

    std::string model_;
};

// Between Qt's space (y down, any origin) and the platform's.
Rect toGlobalSpace(const QRect& rect, const QRect& primary);
Point toGlobalSpace(QPoint point, const QRect& primary);

} // namespace kivo
