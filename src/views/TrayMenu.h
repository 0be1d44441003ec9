// SPDX-License-Identifier: MIT
#pragma once

#include "ui/MenuModel.h"
#include "views/MenuWindow.h"
#include "views/SymbolPainter.h"

#include <QRect>

#include <functional>
#include <memory>
#include <optional>

namespace kivo {

// Gives the menu's model a window while it is open, under the icon that was clicked. Nothing of the window
// stays when it closes.
class TrayMenu {
public:
    TrayMenu(MainLoop& loop, MenuModel& model);
    ~TrayMenu();

    // `icon`: where the icon stands, or the click; absent when nobody knows.
    void toggle(std::optional<QRect> icon);
    void open(std::optional<QRect> icon);

    // Callbacks out
    // The window is gone, with all that it held.
    std::function<void()> onGone;

private:
    void follow();
    void makeWindow();
    void dropWindow();
    void place();

    MainLoop& loop_;
    MenuModel& model_;
    SymbolPainter symbols_;
    std::optional<QRect> icon_;
    std::unique_ptr<MenuWindow> window_;
    Subscription opening_;
    Subscription contentChange_;
};

} // namespace kivo
