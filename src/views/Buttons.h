// SPDX-License-Identifier: MIT
#pragma once

#include "views/Spoken.h"
#include "views/ViewContext.h"

#include <QAbstractButton>

#include <string>

namespace kivo {

// A button that knows when the keyboard brought the focus to it; Enter presses it as Space does.
class Button : public QAbstractButton, public Spoken {
public:
    QAccessible::Role role() const override { return QAccessible::Button; }
    QString actionName() const override;
    void act() override { click(); }
    std::optional<bool> checkedState() const override;

protected:
    Button(ViewContext& context, QWidget* parent);

    bool showsFocus() const { return hasFocus() && hasKeyboardFocus_; }
    bool isUnderPointer() const { return underMouse() && isEnabled(); }
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

    ViewContext& context_;

private:
    bool hasKeyboardFocus_ = false;
};

// A symbol alone, 32 × 28; a toggle that is on has the accent and a field of it.
class IconButton final : public Button {
public:
    IconButton(ViewContext& context, QWidget* parent);
    void setSymbol(const std::string& symbol);
    QAccessible::Role role() const override {
        return isCheckable() ? QAccessible::CheckBox : QAccessible::Button;
    }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::string symbol_;
};

// A word in the accent, 26 high, as wide as it is.
class TextButton final : public Button {
public:
    TextButton(ViewContext& context, QWidget* parent);
    QSize sizeHint() const override;
    // What shows of it, from 0 to 1.
    void setOpacity(double opacity);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double opacity_ = 1;
};

} // namespace kivo
