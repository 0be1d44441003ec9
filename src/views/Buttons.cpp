// SPDX-License-Identifier: MIT
#include "views/Buttons.h"

#include "views/Convert.h"
#include "views/Typeface.h"

#include <QAccessibleActionInterface>
#include <QKeyEvent>
#include <QPainterPath>

#include <cmath>

namespace kivo {

namespace {

constexpr double pressedScale = 0.94;

// A pressed button is a little smaller, about its middle.
void scaleWhenDown(QPainter& painter, const QAbstractButton& button) {
    if (!button.isDown())
        return;
    const QPointF middle = QRectF(button.rect()).center();
    painter.translate(middle);
    painter.scale(pressedScale, pressedScale);
    painter.translate(-middle);
}

} // namespace

Button::Button(ViewContext& context, QWidget* parent) : QAbstractButton(parent), context_(context) {
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::TabFocus);
}

QString Button::actionName() const {
    return isCheckable() ? QAccessibleActionInterface::toggleAction()
                         : QAccessibleActionInterface::pressAction();
}

std::optional<bool> Button::checkedState() const {
    return isCheckable() ? std::optional(isChecked()) : std::nullopt;
}

void Button::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        // A key that was held when the window came was meant for another one.
        if (!event->isAutoRepeat())
            click();
        break;
    case Qt::Key_Space:
    case Qt::Key_Select:
        QAbstractButton::keyPressEvent(event);
        break;
    default: // arrows are the window's
        event->ignore();
    }
}

void Button::focusInEvent(QFocusEvent* event) {
    // A window that comes to the front gives the focus back as it was.
    if (event->reason() != Qt::ActiveWindowFocusReason)
        hasKeyboardFocus_ = event->reason() != Qt::MouseFocusReason && event->reason() != Qt::PopupFocusReason;
    QAbstractButton::focusInEvent(event);
}

IconButton::IconButton(ViewContext& context, QWidget* parent) : Button(context, parent) {
    setFixedSize(32, 28);
}

void IconButton::setSymbol(const std::string& symbol) {
    if (symbol_ == symbol)
        return;
    symbol_ = symbol;
    update();
}

void IconButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    scaleWhenDown(painter, *this);
    const Surface& surface = context_.surface;
    const bool isOn = isCheckable() && isChecked();
    const QPainterPath field = roundedPath(rect(), 9);
    if (isOn) {
        QColor tint = surface.accent;
        tint.setAlphaF(surface.isDark ? 0.22F : 0.18F);
        painter.fillPath(field, tint);
    }
    if (isUnderPointer() || (isCheckable() && !isOn)) {
        QColor shade = surface.ink;
        shade.setAlphaF(isUnderPointer() ? 0.08F : 0.05F);
        painter.fillPath(field, shade);
    }
    const QPointF middle = QRectF(rect()).center();
    context_.symbols.paint(painter, symbol_, QRectF(middle.x() - 10, middle.y() - 10, 20, 20),
                           isOn ? surface.accent : surface.secondary);
    if (showsFocus())
        paintFocusRing(painter, rect(), 9, surface);
}

TextButton::TextButton(ViewContext& context, QWidget* parent) : Button(context, parent) {}

QSize TextButton::sizeHint() const {
    return {static_cast<int>(std::ceil(textWidth(text(), typeface(12, QFont::DemiBold)))) + 16, 26};
}

void TextButton::setOpacity(double opacity) {
    opacity_ = opacity;
    update();
}

void TextButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(opacity_);
    scaleWhenDown(painter, *this);
    const Surface& surface = context_.surface;
    QColor field = surface.ink;
    field.setAlphaF(isUnderPointer() ? 0.10F : 0.06F);
    painter.fillPath(roundedPath(rect(), 8), field);
    const QColor ground = onCard(surface.ink, 0.12, surface);
    paintText(painter, rect(), Qt::AlignCenter, text(), typeface(12, QFont::DemiBold),
              readable(surface.accent, ground));
    if (showsFocus())
        paintFocusRing(painter, rect(), 8, surface);
}

} // namespace kivo
