// SPDX-License-Identifier: MIT
#include "views/NoteView.h"

#include "overlay/Animations.h"
#include "views/Convert.h"
#include "views/Typeface.h"

#include <QFontMetrics>
#include <QPainterPath>
#include <QResizeEvent>

#include <algorithm>

namespace kivo {

namespace {

constexpr int leastHeight = 40;
constexpr int textLeft = 32;

QFont textFont() {
    return typeface(12, QFont::Medium);
}

} // namespace

NoteView::NoteView(ViewContext& context, QWidget* parent, std::function<void()> onPress)
    : QWidget(parent), context_(context), button_(context, this) {
    connect(&button_, &QAbstractButton::clicked, this, std::move(onPress));
}

void NoteView::setNote(const HeroCard::Note& note) {
    note_ = note;
    setAccessibleName(toQString(note.text));
    button_.setText(toQString(note.button));
    button_.setAccessibleName(toQString(note.button));
    button_.resize(button_.sizeHint());
    update();
}

void NoteView::appear(bool isAnimated) {
    if (isAnimated)
        opacity_.animate(1, animations::fade, context_.loop.now());
    else
        opacity_.set(1);
    advance(context_.loop.now());
    show();
}

void NoteView::leave() {
    opacity_.animate(0, animations::fade, context_.loop.now());
    // Whoever wants to press it wants what it says, which is no more.
    button_.setEnabled(false);
}

bool NoteView::advance(Duration now) {
    if (opacity_.value(now) != opacity_.value(drawnAt_)) {
        button_.setOpacity(opacity_.value(now));
        update();
    }
    drawnAt_ = now;
    return now < opacity_.settlesAt();
}

QRect NoteView::textBox(int width) const {
    return {textLeft, 0, std::max(width - textLeft - button_.width() - 16, 40), 0};
}

int NoteView::heightFor(int width) const {
    const QRect room = textBox(width).adjusted(0, 0, 0, 1000);
    const int text =
        QFontMetrics(textFont()).boundingRect(room, Qt::TextWordWrap, toQString(note_.text)).height();
    return std::max(leastHeight, (text + 16 + 3) / 4 * 4);
}

void NoteView::resizeEvent(QResizeEvent*) {
    button_.move(width() - button_.width() - 8, (height() - button_.height()) / 2);
}

void NoteView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(opacity_.value(drawnAt_));
    const QColor tint = toQColor(color(note_.tone));
    const QColor field = onCard(tint, 0.16, context_.surface);
    painter.fillPath(roundedPath(rect(), 9), field);
    const QColor glyph = context_.surface.isDark ? tint : readable(tint, field);
    context_.symbols.paint(painter, note_.symbol, QRectF(9, height() / 2.0 - 8, 16, 16), glyph);
    painter.setFont(textFont());
    painter.setPen(context_.surface.ink);
    QRect box = textBox(width());
    box.setHeight(height());
    painter.drawText(box, Qt::AlignVCenter | Qt::TextWordWrap, toQString(note_.text));
}

} // namespace kivo
