// SPDX-License-Identifier: MIT
#include "views/FormControls.h"

#include "overlay/Animations.h"
#include "views/Convert.h"
#include "views/Surface.h"
#include "views/Typeface.h"

#include <QAccessibleActionInterface>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace kivo {

namespace {

constexpr double pressedScale = 0.96;
constexpr double disabledOpacity = 0.4;
constexpr Color red{255, 59, 48};

constexpr int buttonHeight = 28;
constexpr double buttonRadius = 8;
constexpr double symbolSide = 16;
constexpr double symbolGap = 5;

constexpr QSizeF switchSize{36, 20};

QColor withAlpha(QColor color, double alpha) {
    color.setAlphaF(static_cast<float>(color.alphaF() * alpha));
    return color;
}

// Shrinks what is painted from now on around the middle of the box.
void scaleAround(QPainter& painter, const QRectF& box, double scale) {
    painter.translate(box.center());
    painter.scale(scale, scale);
    painter.translate(-box.center());
}

double shrunk(const Moving& pressed) {
    return 1 - (1 - pressedScale) * pressed.value();
}

// Enter presses a button as Space does.
bool isEnter(const QKeyEvent& event) {
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

} // namespace

QColor deepened(const QColor& accent) {
    float hue = 0, saturation = 0, value = 0;
    accent.getHsvF(&hue, &saturation, &value);
    saturation = std::min(saturation * 1.25F, 1.0F);
    QColor color = accent;
    for (; value > 0 && readable(Qt::white, color) != QColor(Qt::white); value -= 0.02F)
        color = QColor::fromHsvF(hue, saturation, value);
    return color;
}

bool showsFocus(const QWidget& control) {
    return control.hasFocus() && control.window()->testAttribute(Qt::WA_KeyboardFocusChange);
}

void keepTabStop(const std::vector<QAbstractButton*>& options, const QAbstractButton* chosen) {
    for (QAbstractButton* option : options)
        option->setFocusPolicy(option == chosen ? Qt::StrongFocus : Qt::ClickFocus);
}

// FormButton

FormButton::FormButton(Kit& kit, Kind kind, const std::string& text, std::string symbol)
    : QPushButton(toQString(text)), kit_(kit), kind_(kind), symbol_(std::move(symbol)), pressed_(kit, *this) {
    setFont(typeface(13, QFont::Medium));
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    connect(this, &QPushButton::pressed, this, [this] { pressed_.go(1, animations::press); });
    connect(this, &QPushButton::released, this, [this] { pressed_.go(0, animations::press); });
}

void FormButton::keyPressEvent(QKeyEvent* event) {
    if (isEnter(*event))
        click();
    else
        QPushButton::keyPressEvent(event);
}

QSize FormButton::sizeHint() const {
    const QFontMetrics metrics(font());
    double width = metrics.horizontalAdvance(text()) + (symbol_.empty() ? 0 : symbolSide + symbolGap);
    width += hasBody() ? 28 : 12;
    if (kind_ == Kind::primary)
        width = std::max(width, 84.0);
    return {static_cast<int>(std::ceil(width)) + 2 * focusRoom,
            std::max(buttonHeight, metrics.height() + 8) + 2 * focusRoom};
}

QSize FormButton::minimumSizeHint() const {
    return sizeHint().boundedTo({110, 1000});
}

QColor FormButton::ink() const {
    const Surface surface = surfaceFor(palette());
    switch (kind_) {
    case Kind::primary:
        return Qt::white;
    case Kind::plain:
        return surface.ink;
    case Kind::link:
        return readable(surface.accent, surface.card);
    case Kind::destructive:
        break;
    }
    return readable(toQColor(red), surface.card);
}

void FormButton::paintBody(QPainter& painter, const QRectF& body) const {
    const Surface surface = surfaceFor(palette());
    QColor fill = kind_ == Kind::primary ? deepened(surface.accent)
                                         : withAlpha(surface.ink, surface.isDark ? 0.12 : 0.07);
    const QPainterPath shape = roundedPath(body, buttonRadius);
    if (hasBody())
        painter.fillPath(shape, fill);
    if (isEnabled() && underMouse())
        painter.fillPath(shape, withAlpha(surface.ink, 0.04));
}

void FormButton::paintSymbol(QPainter& painter, const QRectF& box, const QColor& color) {
    if (symbol_ != "plus") {
        kit_.symbols.paint(painter, symbol_, box, color);
        return;
    }
    constexpr double arm = 5.25;
    painter.setPen(QPen(color, 1.5, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(box.center() - QPointF(arm, 0), box.center() + QPointF(arm, 0));
    painter.drawLine(box.center() - QPointF(0, arm), box.center() + QPointF(0, arm));
}

void FormButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Surface surface = surfaceFor(palette());
    const QRectF body = QRectF(rect()).adjusted(focusRoom, focusRoom, -focusRoom, -focusRoom);
    if (showsFocus(*this))
        paintFocusRing(painter, rect(), buttonRadius + focusRoom, surface);
    if (!isEnabled())
        painter.setOpacity(disabledOpacity);
    scaleAround(painter, body, shrunk(pressed_));
    paintBody(painter, body);

    const double lead = symbol_.empty() ? 0 : symbolSide + symbolGap;
    const double text = std::min(textWidth(this->text(), font()), body.width() - lead - (hasBody() ? 16 : 0));
    const double left = body.center().x() - (lead + text) / 2;
    if (lead > 0)
        paintSymbol(painter, {left, body.center().y() - symbolSide / 2, symbolSide, symbolSide}, ink());
    paintText(painter, {left + lead, body.top(), text + 1, body.height()}, Qt::AlignLeft | Qt::AlignVCenter,
              this->text(), font(), ink());
}

// Switch

Switch::Switch(Kit& kit, const std::string& spoken) : knob_(kit, *this) {
    setAccessibleName(toQString(spoken));
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize Switch::sizeHint() const {
    return switchSize.toSize() + QSize(2 * focusRoom, 2 * focusRoom);
}

void Switch::show(bool isOn) {
    const QSignalBlocker silence(this);
    setChecked(isOn);
}

// Whoever toggled it: also a screen reader.
void Switch::checkStateSet() {
    QCheckBox::checkStateSet();
    knob_.go(isChecked() ? 1 : 0, animations::press);
}

void Switch::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Surface surface = surfaceFor(palette());
    const QRectF body(QPointF(focusRoom, (height() - switchSize.height()) / 2), switchSize);
    if (showsFocus(*this))
        paintFocusRing(painter, body.adjusted(-focusRoom, -focusRoom, focusRoom, focusRoom),
                       switchSize.height() / 2 + focusRoom, surface);
    if (!isEnabled())
        painter.setOpacity(disabledOpacity);
    const double share = knob_.value();
    const double radius = body.height() / 2;
    painter.setPen(Qt::NoPen);
    painter.setBrush(withAlpha(surface.ink, surface.isDark ? 0.24 : 0.2));
    painter.drawRoundedRect(body, radius, radius);
    painter.setBrush(withAlpha(surface.accent, std::clamp(share, 0.0, 1.0)));
    painter.drawRoundedRect(body, radius, radius);
    if (underMouse()) {
        painter.setBrush(withAlpha(surface.ink, 0.04));
        painter.drawRoundedRect(body, radius, radius);
    }
    const double side = body.height() - 4;
    const QRectF knob(body.x() + 2 + share * (body.width() - side - 4), body.y() + 2, side, side);
    painter.setBrush(withAlpha(Qt::black, 0.14));
    painter.drawEllipse(knob.adjusted(-0.25, 0.25, 0.25, 0.75));
    painter.setBrush(Qt::white);
    painter.drawEllipse(knob);
}

// Disclosure

namespace {

constexpr int disclosureSide = 12; // from its edge to what it shows
constexpr int disclosureTop = 10;
constexpr int chevronRoom = 30;

} // namespace

Disclosure::Disclosure(Kit& kit) : kit_(kit), turn_(kit, *this), pressed_(kit, *this) {
    setCheckable(true);
    setAttribute(Qt::WA_Hover);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    connect(this, &QPushButton::pressed, this, [this] { pressed_.go(1, animations::press); });
    connect(this, &QPushButton::released, this, [this] { pressed_.go(0, animations::press); });
}

void Disclosure::setTexts(const std::string& title, const std::string& detail) {
    if (title_ == toQString(title) && detail_ == toQString(detail))
        return;
    title_ = toQString(title);
    detail_ = toQString(detail);
    setAccessibleName(title_);
    setAccessibleDescription(detail_);
    updateGeometry();
    update();
}

QString Disclosure::actionName() const {
    return QAccessibleActionInterface::pressAction();
}

void Disclosure::keyPressEvent(QKeyEvent* event) {
    if (isEnter(*event))
        click();
    else
        QPushButton::keyPressEvent(event);
}

void Disclosure::setMark(Color color) {
    mark_ = color;
    update();
}

void Disclosure::setSymbol(std::string symbol) {
    symbol_ = std::move(symbol);
    update();
}

void Disclosure::showUnfolded(bool isUnfolded) {
    if (isChecked() != isUnfolded) {
        const QSignalBlocker silence(this);
        setChecked(isUnfolded);
    }
    turn_.go(isUnfolded ? 1 : 0, animations::settle);
}

int Disclosure::textLeft() const {
    return disclosureSide + (mark_ ? 12 : symbol_.empty() ? 0 : 28);
}

QRect Disclosure::titleBox(int width) const {
    const QRect room(textLeft(), disclosureTop, std::max(width - textLeft() - chevronRoom, 40), 10000);
    return QFontMetrics(typeface(13, QFont::Medium)).boundingRect(room, Qt::TextWordWrap, title_);
}

QRect Disclosure::detailBox(int width) const {
    if (detail_.isEmpty())
        return {};
    const QRect title = titleBox(width);
    const QRect room(textLeft(), title.bottom() + 2, std::max(width - textLeft() - chevronRoom, 40), 10000);
    return QFontMetrics(typeface(12, QFont::Normal)).boundingRect(room, Qt::TextWordWrap, detail_);
}

int Disclosure::heightForWidth(int width) const {
    const int bottom = detail_.isEmpty() ? titleBox(width).bottom() : detailBox(width).bottom();
    return bottom + 1 + disclosureTop;
}

QSize Disclosure::sizeHint() const {
    return {280, heightForWidth(280)};
}

QSize Disclosure::minimumSizeHint() const {
    return {140, heightForWidth(10000)};
}

void Disclosure::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Surface surface = surfaceFor(palette());
    const QRectF body = QRectF(rect()).adjusted(3, 3, -1, -3);
    if (underMouse() || isDown())
        painter.fillPath(roundedPath(body, 9), withAlpha(surface.ink, isDown() ? 0.06 : 0.04));
    if (showsFocus(*this))
        paintFocusRing(painter, body, 9, surface);
    scaleAround(painter, body, 1 - (1 - shrunk(pressed_)) * 0.3);
    if (mark_) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(toQColor(*mark_));
        painter.drawRoundedRect(QRectF(disclosureSide, height() / 2.0 - 12, 4, 24), 2, 2);
    }
    if (!symbol_.empty())
        kit_.symbols.paint(painter, symbol_, QRectF(disclosureSide, height() / 2.0 - 9, 18, 18),
                           surface.secondary);
    painter.setFont(typeface(13, QFont::Medium));
    painter.setPen(surface.ink);
    painter.drawText(titleBox(width()).adjusted(0, 0, 1, 0), Qt::TextWordWrap, title_);
    painter.setFont(typeface(12, QFont::Normal));
    painter.setPen(surface.tertiary);
    if (!detail_.isEmpty())
        painter.drawText(detailBox(width()).adjusted(0, 0, 1, 0), Qt::TextWordWrap, detail_);

    painter.translate(width() - 16, height() / 2.0);
    painter.rotate(90 * turn_.value());
    painter.setPen(QPen(surface.tertiary, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(QPolygonF{{-2.2, -4.4}, {2.2, 0}, {-2.2, 4.4}});
}

} // namespace kivo
