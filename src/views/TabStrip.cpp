// SPDX-License-Identifier: MIT
#include "views/TabStrip.h"

#include "views/Convert.h"
#include "views/FormControls.h"
#include "views/Surface.h"
#include "views/Typeface.h"

#include <QPainter>
#include <QPainterPath>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace kivo {

namespace {

constexpr int tabHeight = 60;
constexpr int narrowest = 72;
constexpr double tabRadius = 10;

// What is seen where `color` lies over the ground.
QColor over(const QColor& ground, const QColor& color) {
    const double share = color.alphaF();
    auto mix = [share](int above, int below) {
        return static_cast<int>(std::lround(above * share + below * (1 - share)));
    };
    return {mix(color.red(), ground.red()), mix(color.green(), ground.green()),
            mix(color.blue(), ground.blue())};
}

} // namespace

TabStrip::TabStrip(Kit& kit, const std::vector<SettingsTabTitle>& tabs) : kit_(kit) {
    setFont(typeface(12, QFont::Medium));
    setDrawBase(false);
    setExpanding(false);
    setUsesScrollButtons(false);
    setElideMode(Qt::ElideRight);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    for (const SettingsTabTitle& tab : tabs) {
        symbols_.push_back(tab.symbol);
        addTab(toQString(tab.title));
    }
}

QSize TabStrip::tabSizeHint(int index) const {
    const double text = textWidth(tabText(index), typeface(12, QFont::DemiBold));
    return {std::max(static_cast<int>(std::ceil(text)) + 28, 84), tabHeight};
}

QSize TabStrip::minimumTabSizeHint(int /*index*/) const {
    return {narrowest, tabHeight};
}

void TabStrip::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

void TabStrip::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Surface surface = surfaceFor(palette());
    const QPoint mouse = mapFromGlobal(QCursor::pos());
    for (int i = 0; i < count(); ++i) {
        const QRectF box = QRectF(tabRect(i)).adjusted(3, 3, -3, -3);
        const bool isChosen = i == currentIndex();
        QColor fill = surface.ink;
        fill.setAlphaF(isChosen ? (surface.isDark ? 0.09F : 0.07F) : 0.04F);
        if (isChosen || (underMouse() && box.contains(mouse)))
            painter.fillPath(roundedPath(box, tabRadius), fill);
        if (isChosen && showsFocus(*this))
            paintFocusRing(painter, box.adjusted(-2, -2, 2, 2), tabRadius + 2, surface);
        const QColor ink = isChosen ? readable(surface.accent, over(surface.window, fill)) : surface.secondary;
        kit_.symbols.paint(painter, symbols_[static_cast<std::size_t>(i)],
                           {box.center().x() - 11, box.top() + 6, 22, 22}, ink);
        paintText(painter, box.adjusted(4, 30, -4, -6), Qt::AlignCenter, tabText(i),
                  typeface(12, isChosen ? QFont::DemiBold : QFont::Medium), ink);
    }
}

} // namespace kivo
