// SPDX-License-Identifier: MIT
#include "views/DeviceRowView.h"

#include "overlay/Animations.h"
#include "support/Text.h"
#include "ui/MenuSpeech.h"
#include "views/Convert.h"
#include "views/Typeface.h"

#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPainterPath>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace kivo {

namespace {

constexpr double textLeft = 48;
constexpr double right = 16;
constexpr double percentWidth = 41;
constexpr double boltWidth = 12;
constexpr double barWidth = 46;
constexpr int lineHeight = 16;
constexpr double partGap = 7;

QFont detailFont() {
    return typeface(11, QFont::Normal);
}

QFont partFont() {
    return typeface(11, QFont::Medium);
}

// Where the level's bar begins, from the right edge.
constexpr double readingWidth = right + percentWidth + boltWidth + 4 + barWidth;

double textRoom(int width) {
    return width - textLeft - readingWidth - 12;
}

QString levelText(std::int64_t level) {
    return toQString(localized("%lld%", {level}));
}

double partWidth(const DeviceRow::Part& part) {
    return textWidth(toQString(part.label), detailFont()) + 3 + textWidth(levelText(part.level), partFont());
}

// How many parts stand on each line: as many as fit.
std::vector<std::size_t> partsPerLine(const std::vector<DeviceRow::Part>& parts, double room) {
    std::vector<std::size_t> counts;
    double used = 0;
    for (const auto& part : parts) {
        const double width = partWidth(part);
        if (counts.empty() || used + partGap + width > room) {
            counts.push_back(1);
            used = width;
        } else {
            ++counts.back();
            used += partGap + width;
        }
    }
    return counts;
}

// As many pieces on a line as fit.
QStringList wrapped(const QStringList& pieces, double room) {
    QStringList lines;
    for (const QString& piece : pieces) {
        const QString together = lines.isEmpty() ? piece : lines.back() + QStringLiteral(" · ") + piece;
        if (!lines.isEmpty() && textWidth(together, detailFont()) <= room)
            lines.back() = together;
        else
            lines << piece;
    }
    return lines;
}

} // namespace

DeviceRowView::DeviceRowView(ViewContext& context, QWidget* parent)
    : QWidget(parent), context_(context), opacity_(1) {
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
}

bool DeviceRowView::setRow(const DeviceRow& row, bool isFirst) {
    if (isFirst || context_.reducesMotion)
        level_.set(static_cast<double>(row.level));
    else
        level_.animate(static_cast<double>(row.level), animations::settle, context_.loop.now());
    if (!isFirst && row == row_)
        return false;
    row_ = row;
    fittedWidth_ = 0;
    setAccessibleName(toQString(spoken(row)));
    update();
    return true;
}

int DeviceRowView::heightFor(int width) {
    if (width == fittedWidth_)
        return height_;
    fittedWidth_ = width;
    QStringList pieces;
    if (row_.connection)
        pieces << toQString(*row_.connection);
    for (const auto& detail : row_.details)
        pieces << toQString(detail);
    lines_ = wrapped(pieces, textRoom(width));
    partLines_ = partsPerLine(row_.parts, textRoom(width));
    height_ = 48 + std::max(lineCount() - 1, 0) * lineHeight;
    return height_;
}

int DeviceRowView::lineCount() const {
    return static_cast<int>(partLines_.size()) + static_cast<int>(lines_.size());
}

void DeviceRowView::setDivided(bool isDivided) {
    if (isDivided == isDivided_)
        return;
    isDivided_ = isDivided;
    update();
}

void DeviceRowView::moveTo(int top, bool isAnimated) {
    if (isAnimated && !context_.reducesMotion) {
        if (top < y())
            raise();
        top_.animate(top, animations::settle, context_.loop.now());
    } else {
        top_.set(top);
    }
    setGeometry(0, static_cast<int>(std::lround(top_.value(context_.loop.now()))), width(), height_);
}

void DeviceRowView::appear(bool isAnimated) {
    opacity_.set(isAnimated ? 0 : 1);
    opacity_.animate(1, animations::fade, context_.loop.now());
    show();
}

bool DeviceRowView::advance(Duration now) {
    if (opacity_.value(now) != opacity_.value(drawnAt_))
        update();
    else if (level_.value(now) != level_.value(drawnAt_))
        update(QRectF(width() - readingWidth - 2, 0, readingWidth + 2, height_).toAlignedRect());
    const int top = static_cast<int>(std::lround(top_.value(now)));
    if (top != y())
        move(0, top);
    if (drawnAt_ < top_.settlesAt() && now >= top_.settlesAt())
        update();
    drawnAt_ = now;
    return now < level_.settlesAt() || now < opacity_.settlesAt() || now < top_.settlesAt();
}

void DeviceRowView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(opacity_.value(drawnAt_));
    const Surface& surface = context_.surface;
    // Rows that pass one another cover each other.
    if (drawnAt_ < top_.settlesAt())
        painter.fillRect(rect().adjusted(12, 0, -12, 0), surface.card);
    else if (isDivided_)
        painter.fillRect(QRectF(textLeft, 0, width() - textLeft - 12, 1), surface.hairline);
    const QRectF field = QRectF(rect()).adjusted(4, 3, -4, -2);
    if (underMouse() && row_.forget) {
        QColor shade = surface.ink;
        shade.setAlphaF(0.04F);
        painter.fillPath(roundedPath(field, 8), shade);
    }
    QColor glyph = surface.ink;
    glyph.setAlphaF(row_.isRemembered ? 0.5F : 0.9F);
    context_.symbols.paint(painter, row_.symbol, QRectF(14, height_ / 2.0 - 11, 22, 22), glyph);
    paintTexts(painter);
    paintReading(painter);
    if (hasFocus() && hasKeyboardFocus_)
        paintFocusRing(painter, field, 8, surface);
}

void DeviceRowView::paintTexts(QPainter& painter) {
    const Surface& surface = context_.surface;
    const double room = textRoom(width());
    double top = lineCount() == 0 ? height_ / 2.0 - 9 : 7;
    paintText(painter, QRectF(textLeft, top, room, 18), Qt::AlignLeft | Qt::AlignVCenter, toQString(row_.name),
              typeface(13, QFont::Medium), row_.isRemembered ? surface.tertiary : surface.ink);
    top += 18;
    if (!row_.parts.empty()) {
        paintParts(painter, QRectF(textLeft, top, room, lineHeight));
        top += static_cast<double>(partLines_.size()) * lineHeight;
    }
    for (const QString& line : lines_) {
        paintText(painter, QRectF(textLeft, top, room, lineHeight), Qt::AlignLeft | Qt::AlignVCenter, line,
                  detailFont(), surface.tertiary);
        top += lineHeight;
    }
}

void DeviceRowView::paintParts(QPainter& painter, const QRectF& box) {
    double top = box.y();
    std::size_t next = 0;
    for (std::size_t count : partLines_) {
        double left = box.x();
        for (; count > 0; --count, ++next) {
            const DeviceRow::Part& part = row_.parts[next];
            const QString label = toQString(part.label);
            const QRectF place(left, top, box.right() - left, lineHeight);
            paintText(painter, place, Qt::AlignLeft | Qt::AlignVCenter, label, detailFont(),
                      context_.surface.tertiary);
            paintText(painter, place.adjusted(textWidth(label, detailFont()) + 3, 0, 0, 0),
                      Qt::AlignLeft | Qt::AlignVCenter, levelText(part.level), partFont(),
                      context_.surface.secondary);
            left += partWidth(part) + partGap;
        }
        top += lineHeight;
    }
}

void DeviceRowView::paintReading(QPainter& painter) {
    const Surface& surface = context_.surface;
    const double middle = height_ / 2.0;
    const double level = level_.value(drawnAt_);
    const QColor tone = row_.isRemembered ? surface.tertiary : toQColor(color(row_.tone));
    double x = width() - readingWidth;
    QColor fill = tone;
    if (row_.isRemembered)
        fill.setAlphaF(0.6F);
    paintBar(painter, QRectF(x, middle - 2.5, barWidth, 5), level / 100, fill, surface);
    x += barWidth + 4;
    if (row_.isCharging)
        context_.symbols.paint(painter, "bolt.fill", QRectF(x - 1, middle - 7, 14, 14), tone);
    const QRectF box(x + boltWidth - 4, middle - 10, percentWidth + 4, 20);
    paintNumber(painter, box, Qt::AlignRight, levelText(std::llround(level)), typeface(13, QFont::DemiBold),
                row_.isRemembered ? surface.tertiary : surface.ink);
}

QString DeviceRowView::actionName() const {
    return row_.forget ? toQString(*row_.forget) : QString();
}

void DeviceRowView::act() {
    // The handler may destroy this row.
    const std::string id = row_.id;
    if (row_.forget && onForget)
        onForget(id);
}

void DeviceRowView::keyPressEvent(QKeyEvent* event) {
    if (row_.forget && (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace))
        act();
    else if (row_.forget &&
             (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space))
        offerForgetting(mapToGlobal(QPoint(static_cast<int>(textLeft), height_ - 8)));
    else
        event->ignore();
}

void DeviceRowView::contextMenuEvent(QContextMenuEvent* event) {
    if (!row_.forget)
        return;
    const bool byKeyboard = event->reason() == QContextMenuEvent::Keyboard;
    offerForgetting(byKeyboard ? mapToGlobal(QPoint(static_cast<int>(textLeft), height_ - 8))
                               : event->globalPos());
}

void DeviceRowView::offerForgetting(QPoint position) {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction* action = menu->addAction(toQString(*row_.forget), this, [this] { act(); });
    menu->setActiveAction(action);
    menu->popup(position);
}

void DeviceRowView::focusInEvent(QFocusEvent* event) {
    hasKeyboardFocus_ = event->reason() != Qt::MouseFocusReason &&
                        (event->reason() != Qt::PopupFocusReason || hasKeyboardFocus_);
    update();
}

void DeviceRowView::focusOutEvent(QFocusEvent*) {
    update();
}

bool DeviceRowView::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const bool isShortened =
            textWidth(toQString(row_.name), typeface(13, QFont::Medium)) > textRoom(width()) + 0.5;
        if (isShortened && help->pos().x() < width() - readingWidth)
            QToolTip::showText(help->globalPos(), toQString(row_.name), this);
        else
            event->ignore();
        return true;
    }
    return QWidget::event(event);
}

} // namespace kivo
