// SPDX-License-Identifier: MIT
#include "views/AppIcon.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPixmap>

namespace kivo {

namespace {

constexpr double grid = 128;

// An island on a sky, with its ring and two lines of text.
void paintIcon(QPainter& painter) {
    QLinearGradient sky(0, 8, 0, 120);
    sky.setColorAt(0, QColor(58, 74, 116));
    sky.setColorAt(1, QColor(142, 164, 207));
    painter.setPen(Qt::NoPen);
    painter.setBrush(sky);
    painter.drawRoundedRect(QRectF(8, 8, 112, 112), 26, 26);
    painter.setBrush(Qt::black);
    painter.drawRoundedRect(QRectF(22, 44, 84, 40), 20, 20);
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(QRectF(62, 55, 32, 6), 3, 3);
    painter.setBrush(QColor(255, 255, 255, 128));
    painter.drawRoundedRect(QRectF(62, 67, 22, 6), 3, 3);
    painter.setBrush(Qt::NoBrush);
    const QRectF ring(31.5, 53.5, 21, 21);
    painter.setPen(QPen(QColor(48, 209, 88, 64), 4));
    painter.drawEllipse(ring);
    painter.setPen(QPen(QColor(48, 209, 88), 4, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(ring, 90 * 16, -270 * 16);
}

} // namespace

QIcon appIcon() {
    QIcon icon;
    for (const int side : {16, 24, 32, 48, 64}) {
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        // The margin is for large pictures.
        const double margin = side < 48 ? 8 : 0;
        painter.scale(side / (grid - 2 * margin), side / (grid - 2 * margin));
        painter.translate(-margin, -margin);
        paintIcon(painter);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace kivo
