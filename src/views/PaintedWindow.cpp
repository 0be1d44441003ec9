// SPDX-License-Identifier: MIT
#include "views/PaintedWindow.h"

#include <QGuiApplication>
#include <QScreen>

#include <xcb/xcb.h>

#include <cstdlib>
#include <string>

namespace kivo {

PaintedWindow::PaintedWindow(QScreen* screen, QRect geometry, Paint paint)
    : QWindow(screen), paint_(std::move(paint)), store_(this) {
    setSurfaceType(RasterSurface);
    QSurfaceFormat format;
    format.setAlphaBufferSize(8);
    setFormat(format);
    setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowTransparentForInput |
             Qt::WindowDoesNotAcceptFocus | Qt::X11BypassWindowManagerHint | Qt::NoDropShadowWindowHint);
    setTitle(QStringLiteral("Kivo"));
    setGeometry(geometry);
}

void PaintedWindow::exposeEvent(QExposeEvent* /*event*/) {
    if (isExposed())
        repaint({{}, size()});
}

void PaintedWindow::repaint(QRect part) {
    part &= QRect({}, size());
    if (!isExposed() || part.isEmpty())
        return;
    if (store_.size() != size()) {
        store_.resize(size());
        part = QRect({}, size());
    }
    store_.beginPaint(part);
    QPainter painter(store_.paintDevice());
    painter.setClipRect(part);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(part, Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    paint_(painter, part);
    painter.end();
    store_.endPaint();
    store_.flush(part);
}

bool isCompositing() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11)
        return true;
    // A compositor owns this selection of its screen for as long as it runs.
    xcb_connection_t* connection = x11->connection();
    const std::string name = "_NET_WM_CM_S0";
    auto* atom = xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
        nullptr);
    if (!atom)
        return false;
    auto* owner =
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom->atom), nullptr);
    const bool isOwned = owner && owner->owner != XCB_WINDOW_NONE;
    std::free(owner);
    std::free(atom);
    return isOwned;
}

} // namespace kivo
