// SPDX-License-Identifier: MIT
#include "views/PaintedWindow.h"

#include <QScreen>

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

} // namespace kivo
