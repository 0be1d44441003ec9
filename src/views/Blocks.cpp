// SPDX-License-Identifier: MIT
#include "views/Blocks.h"

#include "views/Convert.h"
#include "views/Surface.h"
#include "views/Typeface.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPainterPath>
#include <QResizeEvent>
#include <QVBoxLayout>

#include <algorithm>

namespace kivo {

namespace {

constexpr double cardRadius = 12;
constexpr int rowSide = 16;
constexpr int cardRowHeight = 40;
constexpr int formRowHeight = 34;

QFont fontOf(TextBlock::Style style) {
    using Style = TextBlock::Style;
    switch (style) {
    case Style::hero:
        return typeface(24, QFont::Bold);
    case Style::lead:
        return typeface(14, QFont::Normal);
    case Style::heading:
        return typeface(14, QFont::DemiBold);
    case Style::row:
    case Style::field:
        return typeface(13, QFont::Medium);
    case Style::value:
        return typeface(12, QFont::DemiBold);
    case Style::caption:
        break;
    }
    return typeface(12, QFont::Normal);
}

QPalette::ColorRole roleOf(TextBlock::Style style) {
    using Style = TextBlock::Style;
    switch (style) {
    case Style::hero:
    case Style::heading:
    case Style::row:
        return QPalette::WindowText;
    case Style::caption:
        return QPalette::Mid;
    default:
        return QPalette::PlaceholderText;
    }
}

QString richText(const std::string& text) {
    QString html = toQString(text).toHtmlEscaped();
    bool isBold = false;
    for (qsizetype at = html.indexOf(QStringLiteral("**")); at >= 0;
         at = html.indexOf(QStringLiteral("**"), at)) {
        html.replace(at, 2, isBold ? QStringLiteral("</b>") : QStringLiteral("<b>"));
        isBold = !isBold;
    }
    return html;
}

} // namespace

// TextBlock

TextBlock::TextBlock(Style style, const std::string& text) {
    setFont(fontOf(style));
    setForegroundRole(roleOf(style));
    setWordWrap(true);
    setTextFormat(Qt::PlainText);
    if (style == Style::hero || style == Style::lead)
        setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    // As high as its lines in the width that it gets, not in the one that it would like best.
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    show(text);
}

void TextBlock::show(const std::string& text) {
    if (text == shown_)
        return;
    shown_ = text;
    const bool isRich = text.find("**") != std::string::npos;
    setTextFormat(isRich ? Qt::RichText : Qt::PlainText);
    setText(isRich ? richText(text) : toQString(text));
}

int TextBlock::naturalWidth() const {
    return fontMetrics().horizontalAdvance(toQString(shown_)) + 2;
}

// The least width in which the text takes no more lines than in this one.
int TextBlock::balancedWidth(int width) const {
    const auto bounds = [this](int room) {
        return fontMetrics().boundingRect(QRect(0, 0, room, 10000), Qt::TextWordWrap, text());
    };
    const int height = bounds(width).height();
    int tooNarrow = width / 2;
    for (int enough = width;;) {
        if (enough - tooNarrow <= 1)
            return enough;
        const int middle = (enough + tooNarrow) / 2;
        const QRect box = bounds(middle);
        (box.height() > height || box.width() > middle ? tooNarrow : enough) = middle;
    }
}

void TextBlock::paintEvent(QPaintEvent* event) {
    if (!(alignment() & Qt::AlignHCenter) || textFormat() != Qt::PlainText) {
        QLabel::paintEvent(event);
        return;
    }
    // Centred lines of about one length, rather than a single word in the last.
    const QRect box = contentsRect();
    const int width = balancedWidth(box.width());
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(QRect(box.x() + (box.width() - width) / 2, box.y(), width, box.height()),
                     static_cast<int>(alignment()) | Qt::TextWordWrap, text());
}

// SymbolBlock

SymbolBlock::SymbolBlock(Kit& kit, std::string symbol, Ink ink, int side)
    : kit_(kit), symbol_(std::move(symbol)), ink_(ink), side_(side) {
    setFixedSize(side, side);
}

void SymbolBlock::show(std::string symbol, Ink ink) {
    symbol_ = std::move(symbol);
    ink_ = ink;
    update();
}

void SymbolBlock::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    kit_.symbols.paint(painter, symbol_, rect(), toQColor(ink_, surfaceFor(palette())));
}

// Card

Card::Card(int inset) : inset_(inset) {
    rows_ = new QVBoxLayout(this);
    rows_->setContentsMargins(0, 2, 0, 2);
    rows_->setSpacing(0);
}

void Card::addRow(QWidget* row) {
    rows_->addWidget(row);
}

void Card::insertRow(int index, QWidget* row) {
    rows_->insertWidget(index, row);
}

void Card::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Surface surface = surfaceFor(palette());
    paintCard(painter, rect(), cardRadius, surface);
    for (int i = 1; i < rows_->count(); ++i)
        painter.fillRect(QRectF(inset_, rows_->itemAt(i)->geometry().top() - 0.5, width() - inset_, 1),
                         surface.hairline);
}

// Rows

Row::Row(QWidget* texts, QWidget* control) : gap_(12), wideTop_(10 - focusRoom), narrowTop_(wideTop_) {
    auto* line = new QBoxLayout(QBoxLayout::LeftToRight, this);
    line->setContentsMargins(rowSide - focusRoom, wideTop_, rowSide - focusRoom, wideTop_);
    // What is seen of a control below the texts begins where they begin.
    texts->setContentsMargins(focusRoom, 0, 0, 0);
    setMinimumHeight(cardRowHeight);
    line->addWidget(texts, 1);
    line->addWidget(control, 0, Qt::AlignVCenter);
    // Whatever stands beside a switch has room.
    const int width = control->sizeHint().width();
    narrow_ = width < 60 ? 0 : width + 240;
}

Row::Row(QWidget* title, QWidget* field, int titleWidth)
    : narrow_(titleWidth + 270), gap_(12 - focusRoom), narrowTop_(6) {
    auto* line = new QBoxLayout(QBoxLayout::LeftToRight, this);
    line->setContentsMargins(0, 0, 0, 0);
    title->setContentsMargins(focusRoom, 0, 0, 0);
    title->setFixedWidth(titleWidth + focusRoom);
    setMinimumHeight(formRowHeight);
    line->addWidget(title, 0, Qt::AlignVCenter);
    const bool isWide = field->sizePolicy().horizontalPolicy() & QSizePolicy::GrowFlag;
    line->addWidget(field, 1, isWide ? Qt::Alignment() : Qt::AlignLeft | Qt::AlignVCenter);
}

void Row::resizeEvent(QResizeEvent* event) {
    const bool isNarrow = event->size().width() < narrow_;
    auto* line = static_cast<QBoxLayout*>(layout());
    line->setDirection(isNarrow ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    line->setSpacing(isNarrow ? 2 : gap_);
    QMargins margins = line->contentsMargins();
    margins.setTop(isNarrow ? narrowTop_ : wideTop_);
    line->setContentsMargins(margins);
}

QWidget* textColumn(const std::vector<QWidget*>& texts) {
    auto* column = new QWidget;
    auto* lines = new QVBoxLayout(column);
    lines->setContentsMargins(0, focusRoom, 0, focusRoom);
    lines->setSpacing(2);
    for (QWidget* text : texts)
        lines->addWidget(text);
    return column;
}

QWidget* switchRow(Switch* control, const std::string& title, const std::string& detail) {
    std::vector<QWidget*> texts{new TextBlock(TextBlock::Style::row, title)};
    if (!detail.empty()) {
        texts.push_back(new TextBlock(TextBlock::Style::caption, detail));
        control->setAccessibleDescription(toQString(detail));
    }
    return new Row(textColumn(texts), control);
}

QWidget* section(const std::string& title, const std::string& detail, SymbolBlock* symbol, Card* card) {
    auto* whole = new QWidget;
    auto* lines = new QVBoxLayout(whole);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(8);
    auto* head = new QGridLayout;
    head->setContentsMargins(4, 0, 4, 0);
    head->setHorizontalSpacing(6);
    head->setVerticalSpacing(1);
    if (symbol)
        head->addWidget(symbol, 0, 0, Qt::AlignTop);
    auto* heading = new TextBlock(TextBlock::Style::heading, title);
    head->addWidget(heading, 0, 1);
    if (!detail.empty())
        head->addWidget(new TextBlock(TextBlock::Style::caption, detail), 1, 1);
    head->setColumnStretch(1, 1);
    lines->addLayout(head);
    lines->addWidget(card);
    return whole;
}

} // namespace kivo
