// SPDX-License-Identifier: MIT
#pragma once

#include "support/Motion.h"
#include "ui/MenuContent.h"
#include "views/NoteView.h"
#include "views/ViewContext.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace kivo {

// The computer's battery as a card, or that there is none. The level moves by its spring, notes fade in and
// out, and a light runs along the bar while it charges; under Reduce Motion nothing moves but what fades.
class HeroCardView final : public QWidget, public Spoken {
public:
    HeroCardView(ViewContext& context, QWidget* parent);

    // Exactly one of the two is there.
    void setCard(const std::optional<HeroCard>& card, const std::optional<MenuContent::Empty>& empty);
    int heightFor(int width) const;
    // Brings what moves to this instant; returns whether something still moves.
    bool advance(Duration now);
    // What has left is gone now: the height may be another one.
    bool dropGone(Duration now);

    QAccessible::Role role() const override { return QAccessible::StaticText; }

    // A note's button was pressed.
    std::function<void()> onNote;
    // The buttons in it, top to bottom.
    std::vector<QWidget*> focusable() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    QRectF barBox() const;
    std::optional<QRectF> markerBox() const;
    double shownLevel() const;
    QColor tone() const;
    void showNotes(const std::vector<HeroCard::Note>& notes, bool isFirst);
    void layOutNotes();
    void paintEmpty(QPainter& painter);
    void paintHead(QPainter& painter);
    void paintLevel(QPainter& painter);
    void paintStats(QPainter& painter, double left);
    void paintLevelBar(QPainter& painter);

    ViewContext& context_;
    std::optional<HeroCard> card_;
    std::optional<MenuContent::Empty> empty_;
    std::vector<std::unique_ptr<NoteView>> notes_;
    AnimatedValue level_;
    AnimatedValue toneShare_{1};
    QColor oldTone_;
    AnimatedValue shine_;
    Duration drawnAt_{0};
};

} // namespace kivo
