// SPDX-License-Identifier: MIT
#include "views/TileView.h"

#include "ui/MenuSpeech.h"
#include "views/Convert.h"
#include "views/Typeface.h"

#include <QFontMetrics>
#include <QPainterPath>

#include <algorithm>

namespace kivo {

namespace {

constexpr double padding = 9;
constexpr double rightPadding = 5;
constexpr int attentionLeft = 40;
constexpr int valueSize = 14;
constexpr int captionSize = 11;

QFont attentionFont() {
    return typeface(12, QFont::Medium);
}

// A value is worth more than its size: it shrinks a little before it is shortened.
QFont fitted(const QString& text, double room) {
    int size = valueSize;
    while (size > captionSize && textWidth(text, typeface(size, QFont::DemiBold)) > room)
        --size;
    return typeface(size, QFont::DemiBold);
}

bool isTooLong(const QString& text, const QFont& font, double room) {
    return textWidth(text, font) > room + 0.5;
}

} // namespace

TileView::TileView(ViewContext& context, QWidget* parent) : QWidget(parent), context_(context) {}

void TileView::setTile(const HealthTile& tile) {
    if (tile == tile_)
        return;
    tile_ = tile;
    setAccessibleName(toQString(spoken(tile)));
    updateTip();
    update();
}

void TileView::resizeEvent(QResizeEvent*) {
    updateTip();
}

// Two at most: what is left over stands in the second.
QStringList TileView::captionLines(int width) const {
    const QString caption = toQString(tile_.caption);
    const double room = width - padding - rightPadding;
    const QFont font = typeface(captionSize, QFont::Normal);
    qsizetype end = caption.size();
    while (end > 0 && isTooLong(caption.left(end), font, room))
        end = caption.lastIndexOf(QLatin1Char(' '), end - 1);
    if (end <= 0 || end == caption.size())
        return {caption};
    return {caption.left(end), caption.mid(end + 1)};
}

int TileView::heightFor(int width) const {
    return captionLines(width).size() > 1 ? 88 : 76;
}

bool TileView::fits(int width) const {
    const double room = width - padding - rightPadding;
    const QString value = toQString(tile_.value);
    const QStringList caption = captionLines(width);
    return !isTooLong(value, fitted(value, room), room) &&
           std::none_of(caption.begin(), caption.end(),
                        [room](const QString& line) {
                            return isTooLong(line, typeface(captionSize, QFont::Normal), room);
                        }) &&
           !isTooLong(toQString(tile_.label), typeface(captionSize, QFont::Medium), room - 19);
}

// Whoever points at a text that is shortened gets the whole of it.
void TileView::updateTip() {
    setToolTip(fits(width()) ? QString() : accessibleName());
}

void TileView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Surface& surface = context_.surface;
    paintCard(painter, rect(), 12, surface);
    const double room = width() - padding - rightPadding;
    context_.symbols.paint(painter, tile_.symbol, QRectF(padding - 1, 9, 17, 17),
                           toQColor(tile_.tint, surface));
    paintText(painter, QRectF(padding + 19, 9, room - 19, 17), Qt::AlignLeft | Qt::AlignVCenter,
              toQString(tile_.label), typeface(captionSize, QFont::Medium), surface.secondary);
    const QString value = toQString(tile_.value);
    paintText(painter, QRectF(padding, 32, room, 20), Qt::AlignLeft | Qt::AlignVCenter, value,
              fitted(value, room), surface.ink);
    double top = 51;
    const QStringList lines = captionLines(width());
    for (const QString& line : lines) {
        paintText(painter, QRectF(padding, top, room, 16), Qt::AlignLeft | Qt::AlignVCenter, line,
                  typeface(captionSize, QFont::Normal), surface.tertiary);
        top += 14;
    }
}

AttentionView::AttentionView(ViewContext& context, QWidget* parent) : QWidget(parent), context_(context) {}

void AttentionView::setText(const std::string& text) {
    if (accessibleName() == toQString(text))
        return;
    text_ = toQString(text);
    setAccessibleName(text_);
    update();
}

int AttentionView::heightFor(int width) const {
    const QRect room(0, 0, width - attentionLeft - 12, 1000);
    const int text = QFontMetrics(attentionFont()).boundingRect(room, Qt::TextWordWrap, text_).height();
    return std::max(40, (text + 20 + 3) / 4 * 4);
}

void AttentionView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor tint = toQColor(amber);
    const QColor field = onCard(tint, context_.surface.isDark ? 0.18 : 0.16, context_.surface);
    painter.fillPath(roundedPath(rect(), 12), field);
    context_.symbols.paint(painter, "wrench.and.screwdriver.fill", QRectF(12, height() / 2.0 - 9, 18, 18),
                           context_.surface.isDark ? tint : readable(tint, field));
    painter.setFont(attentionFont());
    painter.setPen(context_.surface.ink);
    painter.drawText(rect().adjusted(attentionLeft, 0, -12, 0), Qt::AlignVCenter | Qt::TextWordWrap, text_);
}

} // namespace kivo
