// SPDX-License-Identifier: MIT
#pragma once

#include "ui/Ink.h"
#include "views/Kit.h"
#include "views/Spoken.h"

#include <QCheckBox>
#include <QPushButton>

#include <string>
#include <vector>

namespace kivo {

// Room around every control for the ring that shows where the keyboard is.
inline constexpr int focusRoom = 3;

// The accent, deep enough for white on it, and as bright as it can be then.
QColor deepened(const QColor& accent);

// Whether to show that the control has the keyboard: not after a click.
bool showsFocus(const QWidget& control);

// The keyboard comes to the chosen one of several options, from where arrow keys go on.
void keepTabStop(const std::vector<QAbstractButton*>& options, const QAbstractButton* chosen);

// A button in one of the forms that the windows use. It shrinks a little while it is pressed.
class FormButton final : public QPushButton {
public:
    enum class Kind {
        primary,    // what the user came for
        plain,      // everything else that does something
        link,       // a text in the accent colour
        destructive // a text in red
    };
    // `symbol`: before the text, none when empty; "plus" is drawn here.
    FormButton(Kit& kit, Kind kind, const std::string& text, std::string symbol = {});

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override; // shortened text

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QColor ink() const;
    bool hasBody() const { return kind_ == Kind::primary || kind_ == Kind::plain; }
    void paintBody(QPainter& painter, const QRectF& body) const;
    void paintSymbol(QPainter& painter, const QRectF& box, const QColor& color);

    Kit& kit_;
    Kind kind_;
    std::string symbol_;
    Moving pressed_;
};

// An on-off switch; its text is read out, not shown.
class Switch final : public QCheckBox {
public:
    Switch(Kit& kit, const std::string& spoken);

    // Without telling anybody that it was toggled.
    void show(bool isOn);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool hitButton(const QPoint& point) const override { return rect().contains(point); }
    void paintEvent(QPaintEvent* event) override;
    void checkStateSet() override;

private:
    Moving knob_;
};

// The head of something that unfolds: a mark or a symbol, a title, a line under it, a chevron. Checked while
// it is unfolded.
class Disclosure final : public QPushButton, public Spoken {
public:
    explicit Disclosure(Kit& kit);

    void setTexts(const std::string& title, const std::string& detail);
    void setMark(Color color);          // a bar at its left
    void setSymbol(std::string symbol); // in the secondary colour
    void showUnfolded(bool isUnfolded); // without telling anybody
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    QAccessible::Role role() const override { return QAccessible::Button; }
    QString actionName() const override;
    void act() override { click(); }
    std::optional<bool> unfoldedState() const override { return isChecked(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QRect titleBox(int width) const;
    QRect detailBox(int width) const;
    int textLeft() const;

    Kit& kit_;
    QString title_;
    QString detail_;
    std::optional<Color> mark_;
    std::string symbol_;
    Moving turn_; // of the chevron: 0 folded, 1 unfolded
    Moving pressed_;
};

} // namespace kivo
