// SPDX-License-Identifier: MIT
#include "views/Pickers.h"

#include "views/Convert.h"
#include "views/FormControls.h"
#include "views/Surface.h"
#include "views/Typeface.h"

#include <QAbstractItemView>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QRadioButton>
#include <QStyledItemDelegate>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace kivo {

namespace {

constexpr int trackHeight = 26;
constexpr double trackRadius = 8;
constexpr double knobSide = 18;
constexpr int dotSide = 18;

QColor withAlpha(QColor color, double alpha) {
    color.setAlphaF(static_cast<float>(color.alphaF() * alpha));
    return color;
}

QColor trackColor(const Surface& surface) {
    return withAlpha(surface.ink, surface.isDark ? 0.1 : 0.07);
}

class Segment final : public QRadioButton {
public:
    Segment(Kit& kit, const std::string& text, std::string symbol)
        : QRadioButton(toQString(text)), kit_(kit), symbol_(std::move(symbol)) {
        setFont(typeface(13, QFont::Medium));
        setAttribute(Qt::WA_Hover);
        setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    }
    QSize sizeHint() const override {
        const double width = textWidth(text(), typeface(13, QFont::DemiBold)) + lead() + 24;
        return {static_cast<int>(std::ceil(width)) + 2, trackHeight + 2 * focusRoom};
    }
    QSize minimumSizeHint() const override { return {44, trackHeight + 2 * focusRoom}; }

protected:
    bool hitButton(const QPoint& point) const override { return rect().contains(point); }
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const Surface surface = surfaceFor(palette());
        const QRectF body = QRectF(rect()).adjusted(2, focusRoom + 2, -2, -focusRoom - 2);
        if (isChecked()) {
            painter.fillPath(roundedPath(body.translated(0, 0.5), trackRadius - 2), withAlpha(Qt::black, 0.1));
            painter.fillPath(roundedPath(body, trackRadius - 2),
                             surface.isDark ? QColor(92, 94, 101) : QColor(255, 255, 255));
        } else if (underMouse()) {
            painter.fillPath(roundedPath(body, trackRadius - 2), withAlpha(surface.ink, 0.04));
        }
        if (showsFocus(*this))
            paintFocusRing(painter, body.adjusted(-2, -2, 2, 2), trackRadius, surface);
        const QFont font = typeface(13, isChecked() ? QFont::DemiBold : QFont::Medium);
        const QColor ink = isChecked() ? surface.ink : surface.secondary;
        const double room = body.width() - lead() - 6;
        const double text = std::min(textWidth(this->text(), font), room);
        const double left = body.center().x() - (lead() + text) / 2;
        if (lead() > 0)
            kit_.symbols.paint(painter, symbol_, QRectF(left, body.center().y() - 8, 16, 16), ink);
        paintText(painter, {left + lead(), body.top(), text + 1, body.height()},
                  Qt::AlignLeft | Qt::AlignVCenter, this->text(), font, ink);
    }

private:
    double lead() const { return symbol_.empty() ? 0 : 21; }

    Kit& kit_;
    std::string symbol_;
};

class Dot final : public QRadioButton {
public:
    explicit Dot(const ColorDots::Option& option) : color_(option.color) {
        setAccessibleName(toQString(option.name));
        setToolTip(toQString(option.name));
        setAttribute(Qt::WA_Hover);
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }
    QSize sizeHint() const override { return {dotSide + 10, dotSide + 10}; }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool hitButton(const QPoint& point) const override { return rect().contains(point); }
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const Surface surface = surfaceFor(palette());
        const QPointF middle = QRectF(rect()).center();
        painter.setPen(Qt::NoPen);
        painter.setBrush(fill(middle));
        const double radius = dotSide / 2.0 + (underMouse() && !isChecked() ? 1 : 0);
        painter.drawEllipse(middle, radius, radius);
        painter.setBrush(Qt::NoBrush);
        if (isChecked()) {
            painter.setPen(QPen(surface.accent, 2));
            painter.drawEllipse(middle, dotSide / 2.0 + 3, dotSide / 2.0 + 3);
        }
        if (showsFocus(*this)) {
            painter.setPen(QPen(surface.ink, 1.5));
            painter.drawEllipse(middle, dotSide / 2.0 + 4.25, dotSide / 2.0 + 4.25);
        }
    }

private:
    QBrush fill(QPointF middle) const {
        if (color_)
            return toQColor(*color_);
        QConicalGradient all(middle, 90);
        all.setColorAt(0.0, toQColor(color(LevelTone::charging)));
        all.setColorAt(0.3, toQColor(color(LevelTone::lowPower)));
        all.setColorAt(0.6, toQColor(amber));
        all.setColorAt(0.8, toQColor(color(LevelTone::low)));
        all.setColorAt(1.0, toQColor(color(LevelTone::charging)));
        return all;
    }

    std::optional<Color> color_;
};

// The lines of a menu that drops down, as high as a finger and with room at their sides.
class Lines final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const double text = textWidth(index.data().toString(), option.font);
        return {static_cast<int>(std::ceil(text)) + 2 * lineSide, lineHeight};
    }
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const Surface surface = surfaceFor(option.palette);
        const bool isCurrent = option.state & QStyle::State_Selected;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->fillRect(option.rect, surface.card);
        if (isCurrent)
            painter->fillPath(roundedPath(QRectF(option.rect).adjusted(3, 1, -3, -1), 6),
                              option.palette.color(QPalette::Highlight));
        paintText(*painter, QRectF(option.rect).adjusted(lineSide, 0, -4, 0), Qt::AlignLeft | Qt::AlignVCenter,
                  index.data().toString(), option.font, isCurrent ? QColor(Qt::white) : surface.ink);
        painter->restore();
    }

private:
    static constexpr int lineHeight = 26;
    static constexpr int lineSide = 12;
};

} // namespace

// ChoiceRow

ChoiceRow::ChoiceRow(const std::string& spoken) {
    setAccessibleName(toQString(spoken));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
}

void ChoiceRow::add(QAbstractButton* option) {
    const int index = static_cast<int>(options_.size());
    options_.push_back(option);
    layout()->addWidget(option);
    keepTabStop(options_, options_.front());
    QObject::connect(option, &QAbstractButton::toggled, this, [this, index](bool isChosen) {
        update();
        if (isChosen)
            keepTabStop(options_, options_[static_cast<std::size_t>(index)]);
        if (isChosen && onChoose)
            onChoose(index);
    });
}

int ChoiceRow::chosen() const {
    const auto it =
        std::find_if(options_.begin(), options_.end(), [](auto* option) { return option->isChecked(); });
    return it == options_.end() ? -1 : static_cast<int>(it - options_.begin());
}

void ChoiceRow::show(int index) {
    if (index < 0 || index >= static_cast<int>(options_.size()))
        return;
    QAbstractButton* option = options_[static_cast<std::size_t>(index)];
    if (option->isChecked())
        return;
    const auto keep = std::exchange(onChoose, nullptr);
    option->setChecked(true);
    onChoose = keep;
}

// Segments

Segments::Segments(Kit& kit, const std::string& spoken, const std::vector<Option>& options)
    : ChoiceRow(spoken) {
    for (const Option& option : options)
        add(new Segment(kit, option.text, option.symbol));
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
}

void Segments::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(roundedPath(QRectF(contentsRect()).adjusted(0, focusRoom, 0, -focusRoom), trackRadius),
                     trackColor(surfaceFor(palette())));
}

// ColorDots

ColorDots::ColorDots(const std::string& spoken, const std::vector<Option>& options) : ChoiceRow(spoken) {
    for (const Option& option : options)
        add(new Dot(option));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

// NumberSlider

NumberSlider::NumberSlider(const std::string& spoken) : QSlider(Qt::Horizontal) {
    setAccessibleName(toQString(spoken));
    setAttribute(Qt::WA_Hover);
    setSingleStep(1);
    setPageStep(5);
    setFocusPolicy(Qt::StrongFocus);
}

void NumberSlider::show(int minimum, int maximum, int value) {
    const QSignalBlocker silence(this);
    setRange(minimum, maximum);
    setValue(value);
    update();
}

void NumberSlider::follow(double x) {
    const double room = std::max(width() - knobSide - 2.0 * focusRoom, 1.0);
    const double share = std::clamp((x - focusRoom - knobSide / 2) / room, 0.0, 1.0);
    setValue(minimum() + static_cast<int>(std::lround(share * (maximum() - minimum()))));
}

void NumberSlider::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return QSlider::mousePressEvent(event);
    setSliderDown(true);
    follow(event->position().x());
}

void NumberSlider::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons() & Qt::LeftButton)
        follow(event->position().x());
}

void NumberSlider::wheelEvent(QWheelEvent* event) {
    // The page scrolls on under the mouse.
    event->ignore();
}

void NumberSlider::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Surface surface = surfaceFor(palette());
    const double span = std::max(maximum() - minimum(), 1);
    const double share = (value() - minimum()) / span;
    const double room = width() - knobSide - 2 * focusRoom;
    const QPointF knob(focusRoom + knobSide / 2 + share * room, height() / 2.0);
    const QRectF track(focusRoom, height() / 2.0 - 2, width() - 2 * focusRoom, 4);
    painter.setPen(Qt::NoPen);
    painter.setBrush(withAlpha(surface.ink, surface.isDark ? 0.2 : 0.13));
    painter.drawRoundedRect(track, 2, 2);
    painter.setBrush(surface.accent);
    painter.drawRoundedRect(QRectF(track.x(), track.y(), knob.x() - track.x(), track.height()), 2, 2);
    painter.setBrush(withAlpha(Qt::black, surface.isDark ? 0.3 : 0.16));
    painter.drawEllipse(knob + QPointF(0, 0.5), knobSide / 2 + 0.75, knobSide / 2 + 0.75);
    painter.setBrush(Qt::white);
    painter.drawEllipse(knob, knobSide / 2, knobSide / 2);
    if (showsFocus(*this)) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(surface.accent, 2));
        painter.drawEllipse(knob, knobSide / 2 + 2, knobSide / 2 + 2);
    }
}

// DropDown

DropDown::DropDown(const std::string& spoken, const std::vector<std::string>& options) {
    setAccessibleName(toQString(spoken));
    setFont(typeface(13, QFont::Medium));
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setMaxVisibleItems(20);
    setItemDelegate(new Lines(this));
    for (const std::string& option : options)
        addItem(toQString(option));
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
}

void DropDown::show(int index) {
    const QSignalBlocker silence(this);
    setCurrentIndex(index);
}

void DropDown::changeEvent(QEvent* event) {
    QComboBox::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && view()->isVisible())
        colorPopup();
}

void DropDown::colorPopup() {
    // The menu is a window of its own, which takes the desktop's colours by itself.
    const Surface surface = surfaceFor(palette());
    QPalette colors = palette();
    colors.setColor(QPalette::Window, surface.card);
    colors.setColor(QPalette::Highlight, deepened(surface.accent));
    view()->setPalette(colors);
    view()->window()->setPalette(colors);
}

void DropDown::showPopup() {
    colorPopup();
    view()->removeEventFilter(this);
    view()->installEventFilter(this);
    QComboBox::showPopup();
}

// Qt closes the menu for Escape before it asks who wants the key, and the window would close with it.
bool DropDown::eventFilter(QObject* watched, QEvent* event) {
    const bool isKey = event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress;
    if (!isKey || static_cast<QKeyEvent*>(event)->key() != Qt::Key_Escape)
        return QComboBox::eventFilter(watched, event);
    event->accept();
    if (event->type() == QEvent::KeyPress)
        hidePopup();
    return true;
}

QSize DropDown::sizeHint() const {
    double widest = 0;
    for (int i = 0; i < count(); ++i)
        widest = std::max(widest, textWidth(itemText(i), font()));
    return {static_cast<int>(std::ceil(widest)) + 48 + 2 * focusRoom, trackHeight + 2 + 2 * focusRoom};
}

QSize DropDown::minimumSizeHint() const {
    return {90, sizeHint().height()};
}

void DropDown::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

void DropDown::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Surface surface = surfaceFor(palette());
    const QRectF body = QRectF(rect()).adjusted(focusRoom, focusRoom, -focusRoom, -focusRoom);
    if (showsFocus(*this))
        paintFocusRing(painter, rect(), trackRadius + focusRoom, surface);
    painter.fillPath(roundedPath(body, trackRadius), trackColor(surface));
    if (underMouse())
        painter.fillPath(roundedPath(body, trackRadius), withAlpha(surface.ink, 0.04));
    paintText(painter, body.adjusted(12, 0, -28, 0), Qt::AlignLeft | Qt::AlignVCenter, currentText(), font(),
              surface.ink);
    painter.setPen(QPen(surface.secondary, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.translate(body.right() - 15, body.center().y());
    painter.drawPolyline(QPolygonF{{-4.4, -2.2}, {0, 2.2}, {4.4, -2.2}});
}

} // namespace kivo
