// SPDX-License-Identifier: MIT
#pragma once

#include "ui/UpdateNotice.h"
#include "views/Buttons.h"
#include "views/ScrollView.h"
#include "views/Spoken.h"
#include "views/SymbolPainter.h"
#include "views/ViewContext.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

namespace kivo {

// The window about updates: draws an UpdateNotice. What is new scrolls where it is long.
class UpdateWindow final : public QWidget, public Spoken {
public:
    // The loop outlives it.
    UpdateWindow(MainLoop& loop, const UpdateNotice& notice);
    ~UpdateWindow() override;

    // As wide and high as it wants to be on a screen that has this much room.
    QSize sizeWithin(QSize room) const;

    QAccessible::Role role() const override { return QAccessible::Dialog; }

    // Callbacks out. The window does not close by itself.
    std::function<void()> onPage;
    std::function<void()> onSkip;
    std::function<void()> onClose; // a button, Escape, or the desktop's own way

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    class Notes;

    // Where its parts stand at this width.
    struct Places {
        QRect title, text, notes, buttons;
    };
    Places places(int width, int greatestHeight) const;
    Button& addButton(const std::string& title, bool isPrimary, std::function<void()>& callback);
    void placeButtons(const QRect& row);

    SymbolPainter symbols_;
    ViewContext context_;
    UpdateNotice notice_;
    Notes* notes_; // owned by the scroll view
    ScrollView scroll_;
    std::vector<std::unique_ptr<Button>> buttons_; // from the right
};

} // namespace kivo
