// SPDX-License-Identifier: MIT
#include "views/HeroCardView.h"

#include "overlay/Animations.h"
#include "ui/MenuSpeech.h"
#include "views/Convert.h"
#include "views/Typeface.h"

#include <QHelpEvent>
#include <QLinearGradient>
#include <QPainterPath>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace kivo {

namespace {

constexpr double padding = 16;
constexpr int bareHeight = 132;
constexpr int emptyHeight = 104;
constexpr int notesTop = 124;
constexpr int notesSide = 16;
constexpr int noteGap = 8;
constexpr double levelBaseline = 84;
constexpr double shineWidth = 72;

QString percent(double level) {
    return QString::number(std::llround(level));
}

} // namespace

HeroCardView::HeroCardView(ViewContext& context, QWidget* parent) : QWidget(parent), context_(context) {}

void HeroCardView::setCard(const std::optional<HeroCard>& card,
                           const std::optional<MenuContent::Empty>& empty) {
    const Duration now = context_.loop.now();
    const bool isFirst = !card_;
    if (card_ == card && empty_ == empty && !isFirst)
        return;
    if (card) {
        const bool isStill = isFirst || context_.reducesMotion;
        if (!card_ || card_->tone != card->tone) {
            oldTone_ = isStill ? toQColor(color(card->tone)) : tone();
            toneShare_.set(isStill ? 1 : 0);
            toneShare_.animate(1, animations::settle, now);
        }
        if (isStill)
            level_.set(static_cast<double>(card->level));
        else
            level_.animate(static_cast<double>(card->level), animations::levelChange, now);
        const bool shines = card->isCharging && !context_.reducesMotion;
        if (!shines)
            shine_.set(0);
        else if (isFirst || !card_->isCharging || shine_.target() <= 0)
            shine_.animate(1, animations::shine, now);
    }
    card_ = card;
    empty_ = empty;
    drawnAt_ = now;
    showNotes(card ? card->notes : std::vector<HeroCard::Note>{}, isFirst);
    setAccessibleName(toQString(card_ ? spoken(*card_) : empty_ ? empty_->text : std::string()));
    layOutNotes();
    update();
    context_.wake();
}

void HeroCardView::showNotes(const std::vector<HeroCard::Note>& notes, bool isFirst) {
    // A note is the same one as long as its symbol is: its text may change while it stands.
    for (auto& shown : notes_) {
        const bool stays = std::any_of(notes.begin(), notes.end(),
                                       [&](const auto& note) { return note.symbol == shown->note().symbol; });
        if (!stays)
            shown->leave();
    }
    for (const auto& note : notes) {
        const auto shown = std::find_if(notes_.begin(), notes_.end(), [&](const auto& view) {
            return !view->isLeaving() && view->note().symbol == note.symbol;
        });
        if (shown != notes_.end()) {
            if ((*shown)->note() != note)
                (*shown)->setNote(note);
            continue;
        }
        // One takes the place of another at once: two would make the card jump twice.
        std::erase_if(notes_, [](const auto& view) { return view->isLeaving(); });
        auto view = std::make_unique<NoteView>(context_, this, [this] {
            if (onNote)
                onNote();
        });
        view->setNote(note);
        view->appear(!isFirst);
        notes_.push_back(std::move(view));
    }
}

bool HeroCardView::dropGone(Duration now) {
    return std::erase_if(notes_, [now](const auto& view) { return view->isGone(now); }) > 0;
}

std::vector<QWidget*> HeroCardView::focusable() const {
    std::vector<QWidget*> found;
    for (const auto& note : notes_) {
        if (!note->isLeaving())
            found.push_back(&note->button());
    }
    return found;
}

int HeroCardView::heightFor(int width) const {
    if (!card_)
        return emptyHeight;
    if (notes_.empty())
        return bareHeight;
    int height = notesTop;
    for (const auto& note : notes_)
        height += note->heightFor(width - 2 * notesSide) + noteGap;
    return height - noteGap + notesSide;
}

void HeroCardView::layOutNotes() {
    int top = notesTop;
    for (auto& note : notes_) {
        const int height = note->heightFor(width() - 2 * notesSide);
        note->setGeometry(notesSide, top, width() - 2 * notesSide, height);
        top += height + noteGap;
    }
}

void HeroCardView::resizeEvent(QResizeEvent*) {
    layOutNotes();
}

bool HeroCardView::advance(Duration now) {
    if (!card_) {
        drawnAt_ = now;
        return false;
    }
    const bool hasMoved = level_.value(now) != level_.value(drawnAt_);
    const bool hasTinted = toneShare_.value(now) != toneShare_.value(drawnAt_);
    const bool shines = shine_.target() > 0;
    drawnAt_ = now;
    if (hasTinted)
        update(0, 0, width(), notesTop); // the pill too
    else if (hasMoved)
        update(0, 32, width(), notesTop - 32);
    else if (shines)
        update(barBox().toAlignedRect());
    bool moves = now < level_.settlesAt() || now < toneShare_.settlesAt() || shines;
    for (auto& note : notes_)
        moves |= note->advance(now);
    return moves;
}

QRectF HeroCardView::barBox() const {
    return {padding, 102, width() - 2 * padding, 10};
}

std::optional<QRectF> HeroCardView::markerBox() const {
    if (!card_ || !card_->target)
        return std::nullopt;
    const QRectF bar = barBox();
    const double x = bar.x() + bar.width() * static_cast<double>(*card_->target) / 100;
    return QRectF(x - 1, bar.center().y() - 7, 2, 14);
}

double HeroCardView::shownLevel() const {
    return level_.value(drawnAt_);
}

QColor HeroCardView::tone() const {
    if (!card_)
        return {};
    const QColor now = toQColor(color(card_->tone));
    const double share = toneShare_.value(drawnAt_);
    if (share >= 1 || !oldTone_.isValid())
        return now;
    auto mix = [share](int a, int b) { return static_cast<int>(std::lround(a * share + b * (1 - share))); };
    return {mix(now.red(), oldTone_.red()), mix(now.green(), oldTone_.green()),
            mix(now.blue(), oldTone_.blue())};
}

void HeroCardView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintCard(painter, rect(), 14, context_.surface);
    if (!card_) {
        paintEmpty(painter);
        return;
    }
    paintHead(painter);
    paintLevel(painter);
    paintLevelBar(painter);
}

void HeroCardView::paintEmpty(QPainter& painter) {
    if (!empty_)
        return;
    const double middle = width() / 2.0;
    context_.symbols.paint(painter, empty_->symbol, QRectF(middle - 16, 20, 32, 32),
                           context_.surface.secondary);
    paintText(painter, QRectF(padding, 60, width() - 2 * padding, 24), Qt::AlignCenter, toQString(empty_->text),
              typeface(13, QFont::Medium), context_.surface.secondary);
}

void HeroCardView::paintHead(QPainter& painter) {
    const Surface& surface = context_.surface;
    const QString state = toQString(card_->pill.text);
    const QFont stateFont = typeface(12, QFont::DemiBold);
    const double pillWidth = std::min(textWidth(state, stateFont) + 34, width() * 0.55);
    const QRectF pill(width() - padding - pillWidth, 12, pillWidth, 22);
    const QColor field = onCard(tone(), surface.isDark ? 0.22 : 0.18, surface);
    painter.setPen(Qt::NoPen);
    painter.setBrush(field);
    painter.drawRoundedRect(pill, 11, 11);
    const QColor ink = readable(tone(), field);
    context_.symbols.paint(painter, card_->pill.symbol, QRectF(pill.x() + 7, pill.y() + 4, 14, 14), ink);
    paintText(painter, pill.adjusted(24, 0, -10, 0), Qt::AlignVCenter | Qt::AlignLeft, state, stateFont, ink);

    context_.symbols.paint(painter, card_->symbol, QRectF(padding - 1, 14, 18, 18), surface.secondary);
    paintText(painter, QRectF(padding + 22, 12, pill.x() - padding - 30, 22), Qt::AlignVCenter | Qt::AlignLeft,
              toQString(card_->name), typeface(12, QFont::Medium), surface.secondary);
}

void HeroCardView::paintLevel(QPainter& painter) {
    const QString number = percent(shownLevel());
    const QFont numberFont = typeface(42, QFont::Bold);
    painter.setFont(numberFont);
    painter.setPen(context_.surface.ink);
    // Large figures have room on their left: their edge, not their box, stands on the margin.
    const double left = padding - 2;
    painter.drawText(QPointF(left, levelBaseline), number);
    const double end = left + textWidth(number, numberFont);
    const QFont signFont = typeface(20, QFont::DemiBold);
    painter.setFont(signFont);
    painter.setPen(context_.surface.tertiary);
    painter.drawText(QPointF(end, levelBaseline), QStringLiteral("%"));
    paintStats(painter, end + textWidth(QStringLiteral("%"), signFont) + 16);
}

// From the corner inwards, in the record's order.
void HeroCardView::paintStats(QPainter& painter, double left) {
    const QFont labelFont = typeface(12, QFont::Normal);
    const QFont valueFont = typeface(14, QFont::DemiBold);
    constexpr double gap = 20;
    double right = width() - padding;
    for (std::size_t i = 0; i < card_->stats.size(); ++i) {
        const QString label = toQString(card_->stats[i].label);
        const QString value = toQString(card_->stats[i].value);
        const double wanted = std::max(textWidth(label, labelFont), textWidth(value, valueFont));
        // What comes later keeps the room for a short word.
        const double kept = static_cast<double>(card_->stats.size() - 1 - i) * (48 + gap);
        const double room = std::min(wanted, right - left - kept);
        const QRectF column(right - room, 52, room, 40);
        paintText(painter, QRectF(column.x(), 52, room, 18), Qt::AlignRight | Qt::AlignVCenter, label,
                  labelFont, context_.surface.secondary);
        paintText(painter, QRectF(column.x(), 69, room, 20), Qt::AlignRight | Qt::AlignVCenter, value,
                  valueFont, context_.surface.ink);
        right -= room + gap;
    }
}

void HeroCardView::paintLevelBar(QPainter& painter) {
    const QRectF box = barBox();
    paintBar(painter, box, shownLevel() / 100, tone(), context_.surface);
    if (shine_.target() > 0 && shownLevel() > 0) {
        const double full = std::max(box.width() * std::min(shownLevel() / 100, 1.0), box.height());
        const double x = box.x() - shineWidth + (full + shineWidth) * shine_.value(drawnAt_);
        QLinearGradient light(x, 0, x + shineWidth, 0);
        light.setColorAt(0, QColor(255, 255, 255, 0));
        light.setColorAt(0.5, QColor(255, 255, 255, 120));
        light.setColorAt(1, QColor(255, 255, 255, 0));
        QPainterPath filled;
        filled.addRoundedRect(QRectF(box.x(), box.y(), full, box.height()), box.height() / 2, box.height() / 2);
        painter.fillPath(filled, light);
    }
    if (const auto marker = markerBox()) {
        QColor ink = context_.surface.ink;
        ink.setAlphaF(0.55F);
        painter.setPen(Qt::NoPen);
        painter.setBrush(ink);
        painter.drawRoundedRect(*marker, 1, 1);
    }
}

bool HeroCardView::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const auto marker = markerBox();
        if (marker && card_->targetTip && marker->adjusted(-6, -4, 6, 4).contains(help->pos())) {
            QToolTip::showText(help->globalPos(), toQString(*card_->targetTip), this);
        } else {
            QToolTip::hideText();
            event->ignore();
        }
        return true;
    }
    return QWidget::event(event);
}

} // namespace kivo
