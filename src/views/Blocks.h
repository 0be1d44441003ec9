// SPDX-License-Identifier: MIT
#pragma once

#include "ui/Ink.h"
#include "views/FormControls.h"
#include "views/Kit.h"

#include <QLabel>

#include <string>

class QVBoxLayout;

namespace kivo {

// What pages are built of. All of it takes its colours from the palette of its window and follows it.

// A text that wraps. Spans between double asterisks are bold.
class TextBlock final : public QLabel {
public:
    enum class Style {
        hero,    // 24/700, centred
        lead,    // 14/400, centred, secondary
        heading, // 14/600
        row,     // 13/500
        field,   // 13/500, secondary
        value,   // 12/600, secondary, tabular digits
        caption  // 12/400, tertiary
    };
    TextBlock(Style style, const std::string& text = {});

    void show(const std::string& text);
    // On one line.
    int naturalWidth() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int balancedWidth(int width) const;

    std::string shown_;
};

// A symbol in a square.
class SymbolBlock final : public QWidget {
public:
    SymbolBlock(Kit& kit, std::string symbol, Ink ink, int side);

    void show(std::string symbol, Ink ink);
    QSize sizeHint() const override { return {side_, side_}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Kit& kit_;
    std::string symbol_;
    Ink ink_;
    int side_;
};

// Rows on a card, with hairlines between them.
class Card final : public QWidget {
public:
    // `inset`: from the card's left edge to where the hairlines begin.
    explicit Card(int inset = 16);

    void addRow(QWidget* row);
    void insertRow(int index, QWidget* row);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QVBoxLayout* rows_;
    int inset_;
};

// A line of a page: texts at its left, a control at its right, or the control below the texts where the line is
// too narrow for both.
class Row final : public QWidget {
public:
    // In a card.
    Row(QWidget* texts, QWidget* control);
    // In a form: a title of this width, then the field, which takes the room that it can use.
    Row(QWidget* title, QWidget* field, int titleWidth);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    int narrow_ = 0; // the width from which on both are beside one another
    int gap_;        // between them there
    int wideTop_ = 0;
    int narrowTop_; // above them: what belongs together is nearer than what does not
};

// Texts above one another.
QWidget* textColumn(const std::vector<QWidget*>& texts);
QWidget* switchRow(Switch* control, const std::string& title, const std::string& detail = {});

// A heading with a symbol and a line under it, over a card.
QWidget* section(const std::string& title, const std::string& detail, SymbolBlock* symbol, Card* card);

} // namespace kivo
