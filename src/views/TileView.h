// SPDX-License-Identifier: MIT
#pragma once

#include "ui/MenuContent.h"
#include "views/Spoken.h"
#include "views/ViewContext.h"

#include <QStringList>
#include <QWidget>

namespace kivo {

// One tile of the battery's health. A caption that is too long for a line takes a second one.
class TileView final : public QWidget, public Spoken {
public:
    TileView(ViewContext& context, QWidget* parent);
    void setTile(const HealthTile& tile);
    int heightFor(int width) const;
    // Whether all of it can be read in this width.
    bool fits(int width) const;
    QAccessible::Role role() const override { return QAccessible::StaticText; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QStringList captionLines(int width) const;
    void updateTip();

    ViewContext& context_;
    HealthTile tile_;
};

// What the system says about the battery when somebody should look at it.
class AttentionView final : public QWidget, public Spoken {
public:
    AttentionView(ViewContext& context, QWidget* parent);
    void setText(const std::string& text);
    int heightFor(int width) const;
    QAccessible::Role role() const override { return QAccessible::AlertMessage; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ViewContext& context_;
    QString text_;
};

} // namespace kivo
