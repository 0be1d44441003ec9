// SPDX-License-Identifier: MIT
#pragma once

#include "overlay/IslandDemo.h"
#include "views/IslandPainter.h"
#include "views/Kit.h"
#include "views/Spoken.h"

#include <QWidget>

namespace kivo {

// The miniature screen on which an island comes and goes. It runs while it can be seen.
class IslandPreview final : public QWidget, public Spoken {
public:
    explicit IslandPreview(Kit& kit);

    QAccessible::Role role() const override { return QAccessible::Graphic; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {200, heightForWidth(200)}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void step();
    void paintIsland(QPainter& painter);

    Kit& kit_;
    IslandPainter painter_;
    IslandDemo demo_;
    Subscription change_;
    Subscription nextFrame_;
};

} // namespace kivo
