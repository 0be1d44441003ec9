// SPDX-License-Identifier: MIT
#pragma once

#include "support/Color.h"
#include "views/Kit.h"
#include "views/Spoken.h"

#include <QComboBox>
#include <QSlider>
#include <QWidget>

#include <functional>
#include <optional>
#include <string>
#include <vector>

class QAbstractButton;

namespace kivo {

// A choice of which all options are in view. Arrow keys move it.
class ChoiceRow : public QWidget, public Spoken {
public:
    QAccessible::Role role() const override { return QAccessible::Grouping; }
    int chosen() const;
    // Without telling anybody.
    void show(int index);

    // The user chose this one.
    std::function<void(int)> onChoose;

protected:
    // `spoken`: what is chosen here.
    explicit ChoiceRow(const std::string& spoken);
    void add(QAbstractButton* option);

private:
    std::vector<QAbstractButton*> options_;
};

// Options beside one another in one track; the chosen one is raised.
class Segments final : public ChoiceRow {
public:
    struct Option {
        std::string text;
        std::string symbol; // before the text; none when empty
    };
    Segments(Kit& kit, const std::string& spoken, const std::vector<Option>& options);

protected:
    void paintEvent(QPaintEvent* event) override;
};

// Colours to choose from.
class ColorDots final : public ChoiceRow {
public:
    struct Option {
        std::string name;
        std::optional<Color> color; // absent: all of them, by the level
    };
    ColorDots(const std::string& spoken, const std::vector<Option>& options);
};

// A slider over whole numbers.
class NumberSlider final : public QSlider {
public:
    explicit NumberSlider(const std::string& spoken);

    // Without telling anybody.
    void show(int minimum, int maximum, int value);
    QSize sizeHint() const override { return {200, 26}; }
    QSize minimumSizeHint() const override { return {80, 26}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    void follow(double x);
};

// A choice in a menu that drops down.
class DropDown final : public QComboBox {
public:
    DropDown(const std::string& spoken, const std::vector<std::string>& options);

    // Without telling anybody.
    void show(int index);
    void showPopup() override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void colorPopup();
};

} // namespace kivo
