// SPDX-License-Identifier: MIT
#pragma once

#include "support/Motion.h"
#include "ui/MenuContent.h"
#include "views/Buttons.h"
#include "views/ViewContext.h"

#include <QWidget>

#include <functional>

namespace kivo {

// A note under the bar with its button. It fades in, and fades out once it is told to leave.
class NoteView final : public QWidget, public Spoken {
public:
    NoteView(ViewContext& context, QWidget* parent, std::function<void()> onPress);

    void setNote(const HeroCard::Note& note);
    const HeroCard::Note& note() const { return note_; }
    void appear(bool isAnimated);
    void leave();
    bool isLeaving() const { return opacity_.target() <= 0; }
    bool isGone(Duration now) const { return isLeaving() && now >= opacity_.settlesAt(); }
    int heightFor(int width) const;
    bool advance(Duration now);
    QWidget& button() { return button_; }

    QAccessible::Role role() const override { return QAccessible::StaticText; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QRect textBox(int width) const;

    ViewContext& context_;
    HeroCard::Note note_;
    TextButton button_;
    AnimatedValue opacity_;
    Duration drawnAt_{0};
};

} // namespace kivo
