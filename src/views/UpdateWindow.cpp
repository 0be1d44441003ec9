// SPDX-License-Identifier: MIT
#include "views/UpdateWindow.h"

#include "views/AppIcon.h"
#include "views/Convert.h"
#include "views/FormControls.h"
#include "views/Typeface.h"

#include <QCloseEvent>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace kivo {

namespace {

constexpr int usualWidth = 440;
constexpr int margin = 24;
constexpr int symbolSize = 36;
constexpr int textLeft = margin + symbolSize + 16;
constexpr int gap = 16;
constexpr int cardPadding = 16;
constexpr int cardRadius = 12;
constexpr int lineGap = 4;
constexpr int bulletWidth = 14;
constexpr int buttonHeight = 28;
constexpr int leastPrimary = 84;
constexpr int leastNotes = 60;
constexpr int mostNotes = 260;
constexpr int keyStep = 40;

QFont titleFont() {
    return typeface(14, QFont::DemiBold);
}
QFont textFont() {
    return typeface(13, QFont::Medium);
}
QFont headingFont() {
    return typeface(12, QFont::DemiBold);
}
QFont noteFont() {
    return typeface(12, QFont::Normal);
}

int wrappedHeight(const std::string& text, const QFont& font, int width) {
    return QFontMetrics(font)
        .boundingRect(QRect(0, 0, std::max(width, 40), 100'000), Qt::TextWordWrap, toQString(text))
        .height();
}

void paintWrapped(QPainter& painter, const QRect& box, const std::string& text, const QFont& font,
                  const QColor& color) {
    painter.setFont(font);
    painter.setPen(color);
    painter.drawText(box, Qt::TextWordWrap, toQString(text));
}

// A word on a field; of the accent for the one that most people want.
class WordButton final : public Button {
public:
    WordButton(ViewContext& context, QWidget* parent, bool isPrimary)
        : Button(context, parent), isPrimary_(isPrimary) {}
    QSize sizeHint() const override {
        const int width = static_cast<int>(std::ceil(textWidth(text(), textFont()))) + 28;
        return {isPrimary_ ? std::max(width, leastPrimary) : width, buttonHeight};
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const Surface& surface = context_.surface;
        QColor shade = surface.ink;
        shade.setAlphaF(isPrimary_ ? 0.0F : surface.isDark ? 0.12F : 0.07F);
        const QPainterPath field = roundedPath(rect(), 8);
        painter.fillPath(field, isPrimary_ ? deepened(surface.accent) : shade);
        shade.setAlphaF(isDown() ? 0.1F : 0.04F);
        if (isDown() || isUnderPointer())
            painter.fillPath(field, shade);
        paintText(painter, rect(), Qt::AlignCenter, text(), textFont(), isPrimary_ ? Qt::white : surface.ink);
        if (!showsFocus())
            return;
        // On the accent a ring of the accent would not be seen.
        if (isPrimary_)
            paintRing(painter, QRectF(rect()).adjusted(2, 2, -2, -2), 6, Qt::white);
        else
            paintFocusRing(painter, rect(), 8, surface);
    }

private:
    static void paintRing(QPainter& painter, const QRectF& box, double radius, const QColor& color) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(color, 2));
        painter.drawPath(roundedPath(box.adjusted(1, 1, -1, -1), radius));
    }

    bool isPrimary_;
};

} // namespace

class UpdateWindow::Notes final : public QWidget, public Spoken {
public:
    Notes(ViewContext& context, const std::vector<UpdateNotice::Section>& sections)
        : context_(context), sections_(sections) {
        QStringList words;
        for (const auto& section : sections_) {
            words << toQString(section.heading);
            for (const auto& line : section.lines)
                words << toQString(line);
        }
        setAccessibleName(words.join(QLatin1Char('\n')));
    }
    QAccessible::Role role() const override { return QAccessible::StaticText; }

    int heightFor(int width) const { return walk(width, nullptr); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        walk(width(), &painter);
    }

private:
    // Draws where there is a painter; the height of it all.
    int walk(int width, QPainter* painter) const {
        int top = cardPadding;
        const auto line = [&](int left, const std::string& text, const QFont& font, const QColor& color) {
            const QRect box(left, top, width - left - cardPadding,
                            wrappedHeight(text, font, width - left - cardPadding));
            if (painter)
                paintWrapped(*painter, box, text, font, color);
            top += box.height() + lineGap;
        };
        for (const auto& section : sections_) {
            if (&section != &sections_.front())
                top += gap - lineGap;
            line(cardPadding, section.heading, headingFont(), context_.surface.ink);
            for (const auto& note : section.lines) {
                if (painter)
                    paintWrapped(*painter, QRect(cardPadding, top, bulletWidth, 100), "•", noteFont(),
                                 context_.surface.tertiary);
                line(cardPadding + bulletWidth, note, noteFont(), context_.surface.secondary);
            }
        }
        return top - lineGap + cardPadding;
    }

    ViewContext& context_;
    const std::vector<UpdateNotice::Section>& sections_;
};

UpdateWindow::UpdateWindow(MainLoop& loop, const UpdateNotice& notice)
    : context_{loop, symbols_, surfaceFor(QGuiApplication::palette()), true, [] {}},
      notice_(notice),
      notes_(new Notes(context_, notice_.sections)),
      scroll_(context_, this, notes_) {
    setWindowFlags(Qt::Dialog);
    setWindowTitle(toQString(notice_.windowTitle));
    setWindowIcon(appIcon());
    setAccessibleName(toQString(notice_.title));
    setAccessibleDescription(toQString(notice_.text));
    scroll_.setVisible(!notice_.sections.empty());
    if (notice_.page)
        addButton(*notice_.page, true, onPage);
    addButton(notice_.close, !notice_.page, onClose);
    if (notice_.skip)
        addButton(*notice_.skip, false, onSkip);
    // Ready for Enter, without a ring before the keyboard is used.
    buttons_.front()->setFocus(Qt::PopupFocusReason);
}

UpdateWindow::~UpdateWindow() = default;

Button& UpdateWindow::addButton(const std::string& title, bool isPrimary, std::function<void()>& callback) {
    buttons_.push_back(std::make_unique<WordButton>(context_, this, isPrimary));
    Button& button = *buttons_.back();
    button.setText(toQString(title));
    button.setAccessibleName(toQString(title));
    connect(&button, &QAbstractButton::clicked, this, [&callback] {
        if (callback)
            callback();
    });
    return button;
}

UpdateWindow::Places UpdateWindow::places(int width, int greatestHeight) const {
    Places places;
    const int textWidth = width - textLeft - margin;
    places.title = {textLeft, margin, textWidth, wrappedHeight(notice_.title, titleFont(), textWidth)};
    places.text = {textLeft, places.title.bottom() + 1 + lineGap, textWidth,
                   wrappedHeight(notice_.text, textFont(), textWidth)};
    int top = std::max(places.text.bottom() + 1, margin + symbolSize) + gap;
    int rowHeight = buttonHeight;
    int rowWidth = 0;
    for (const auto& button : buttons_)
        rowWidth += button->sizeHint().width() + 8;
    // Long words stand one below the other.
    if (rowWidth - 8 > width - 2 * margin)
        rowHeight = static_cast<int>(buttons_.size()) * (buttonHeight + 8) - 8;
    if (!notice_.sections.empty()) {
        const int room = greatestHeight - top - gap - rowHeight - margin;
        const int wanted = notes_->heightFor(width - 2 * margin);
        places.notes = {margin, top, width - 2 * margin,
                        std::min(wanted, std::clamp(room, leastNotes, mostNotes))};
        top = places.notes.bottom() + 1 + gap;
    }
    places.buttons = {margin, top, width - 2 * margin, rowHeight};
    return places;
}

QSize UpdateWindow::sizeWithin(QSize room) const {
    const int width = std::min(usualWidth, room.width());
    return {width, places(width, room.height()).buttons.bottom() + 1 + margin};
}

void UpdateWindow::placeButtons(const QRect& row) {
    const bool isColumn = row.height() > buttonHeight;
    int right = row.right() + 1;
    int top = row.top();
    for (const auto& button : buttons_) {
        const int wanted = button->sizeHint().width();
        if (isColumn) {
            button->setGeometry(row.left(), top, row.width(), buttonHeight);
            top += buttonHeight + 8;
        } else if (button == buttons_.back() && buttons_.size() > 2) {
            button->setGeometry(row.left(), top, wanted, buttonHeight);
        } else {
            button->setGeometry(right - wanted, top, wanted, buttonHeight);
            right -= wanted + 8;
        }
    }
}

void UpdateWindow::resizeEvent(QResizeEvent*) {
    const Places now = places(width(), height());
    placeButtons(now.buttons);
    scroll_.setGeometry(now.notes);
    notes_->resize(now.notes.width(), notes_->heightFor(now.notes.width()));
    scroll_.layOut(notes_->height());
}

void UpdateWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Surface& surface = context_.surface;
    painter.fillRect(rect(), surface.window);
    const Places now = places(width(), height());
    context_.symbols.paint(painter, notice_.symbol, QRectF(margin, margin, symbolSize, symbolSize),
                           toQColor(notice_.tint, surface));
    paintWrapped(painter, now.title, notice_.title, titleFont(), surface.ink);
    paintWrapped(painter, now.text, notice_.text, textFont(), surface.secondary);
    if (!notice_.sections.empty())
        paintCard(painter, now.notes, cardRadius, surface);
}

void UpdateWindow::keyPressEvent(QKeyEvent* event) {
    const int page = std::max(scroll_.height() - keyStep, keyStep);
    switch (event->key()) {
    case Qt::Key_Escape:
        close();
        break;
    case Qt::Key_Down:
        scroll_.scrollTo(scroll_.offset() + keyStep);
        break;
    case Qt::Key_Up:
        scroll_.scrollTo(scroll_.offset() - keyStep);
        break;
    case Qt::Key_PageDown:
        scroll_.scrollTo(scroll_.offset() + page);
        break;
    case Qt::Key_PageUp:
        scroll_.scrollTo(scroll_.offset() - page);
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

void UpdateWindow::closeEvent(QCloseEvent* event) {
    event->ignore(); // whoever owns it takes it away
    if (onClose)
        onClose();
}

void UpdateWindow::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ApplicationPaletteChange) {
        context_.surface = surfaceFor(QGuiApplication::palette());
        update();
    }
    QWidget::changeEvent(event);
}

} // namespace kivo
