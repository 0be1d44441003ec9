// SPDX-License-Identifier: MIT
#pragma once

#include "support/MainLoop.h"
#include "support/Observable.h"
#include "ui/ChangeWatch.h"
#include "ui/MenuContent.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kivo {

class AppCoordinator;
class Windows;
class Workspace;

// The menu as whoever draws it knows it: whether it is open, what it shows, and what its controls do.
// Invariant: while it is closed nothing is observed and nothing waits; while it is open its content follows
// every change, once for all that happens in one turn of the loop.
class MenuModel {
public:
    MenuModel(MainLoop& loop, AppCoordinator& coordinator, Workspace& workspace, Windows& windows);

    // Events in
    void open();
    void close();
    // A click on the icon: opens, or closes what is open. A click that has just closed the menu by taking the
    // focus away opens nothing.
    void toggle();
    // Another window has the focus now.
    void loseFocus();
    void perform(FooterControl::Action action);
    // A note's button: the system's battery settings.
    void openBatterySettings();
    void forget(std::string_view deviceID);

    // State out
    Observable<bool>& isOpen() { return isOpen_; }
    // As of now or, while the menu is closed, as of its end.
    Observable<MenuContent>& content() { return content_; }
    bool reducesMotion() const;

    // Callbacks out
    std::function<void()> onQuit;

private:
    void follow();
    void update();

    MainLoop& loop_;
    AppCoordinator& coordinator_;
    Workspace& workspace_;
    Windows& windows_;
    Observable<bool> isOpen_;
    Observable<MenuContent> content_;
    std::optional<Duration> lostFocusAt_;
    std::optional<ChangeWatch> watch_; // while it is open
    Subscription ageing_;
};

} // namespace kivo
