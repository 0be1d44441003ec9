// SPDX-License-Identifier: MIT
#pragma once

#include "ui/SettingsTexts.h"
#include "views/Kit.h"

#include <QTabBar>

#include <vector>

namespace kivo {

// The tabs of a window at its top, a symbol over a title each.
class TabStrip final : public QTabBar {
public:
    TabStrip(Kit& kit, const std::vector<SettingsTabTitle>& tabs);

protected:
    QSize tabSizeHint(int index) const override;
    QSize minimumTabSizeHint(int index) const override;
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    Kit& kit_;
    std::vector<std::string> symbols_;
};

} // namespace kivo
