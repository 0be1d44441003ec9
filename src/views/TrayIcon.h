// SPDX-License-Identifier: MIT
#pragma once

#include "battery/BatterySnapshot.h"
#include "support/MainLoop.h"
#include "support/Observable.h"
#include "ui/MenuBarLabel.h"
#include "views/NotifierItem.h"
#include "views/SymbolPainter.h"

#include <QMenu>
#include <QObject>
#include <QRect>
#include <QSystemTrayIcon>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace kivo {

class SettingsStore;

// The colour of what stands in the desktop's panel.
struct PanelInk {
    QColor color;
    bool isGuess = false; // the panel may as well be as light as this
    bool operator==(const PanelInk&) const = default;
};
PanelInk panelInk();

// Kivo in the desktop's tray: the menu bar's label as an icon, the battery in words as its tool tip, a menu.
// A tray may come long after Kivo (a login starts everything at once), and go and come again with its panel.
// Where status notifier items are shown the icon is one; where only the older kind of tray is, it is a window
// in there.
class TrayIcon final : public QObject {
public:
    TrayIcon(MainLoop& loop, Observable<std::optional<BatterySnapshot>>& snapshot, SettingsStore& settings);
    ~TrayIcon() override;

    // Callbacks out
    // A click. `icon`: where the icon stands, as far as that is known; absent otherwise.
    std::function<void(std::optional<QRect> icon)> onClick;
    std::function<void(std::optional<QRect> icon)> onOpen; // the same from the context menu
    std::function<void()> onSettings;
    std::function<void()> onQuit;

    // Where the icon stands, or where it was clicked last; absent when neither is known.
    std::optional<QRect> iconPlace() const;

protected:
    // The desktop's colours changed: the panel may be light or dark now.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Look {
        MenuBarLabel label;
        PanelInk ink;
        bool operator==(const Look&) const = default;
    };

    void lookForTray(int round);
    void makeIcon();
    QMenu& menu();
    void showMenu(std::optional<QPoint> place);
    std::vector<NotifierMenu::Entry> entries();
    void setPictures();
    void refreshSoon();
    void refresh();

    MainLoop& loop_;
    Observable<std::optional<BatterySnapshot>>& snapshot_;
    SettingsStore& settings_;
    SymbolPainter symbols_;
    NotifierItem item_;
    std::unique_ptr<QMenu> menu_;           // where trays show none
    std::unique_ptr<QSystemTrayIcon> icon_; // in a tray of the older kind
    std::optional<QRect> lastPlace_;
    std::optional<Look> shown_;
    Subscription snapshotChange_;
    Subscription settingsChange_;
    Subscription nextLook_;
    bool isRefreshDue_ = false;
    Subscription nextRefresh_;
};

} // namespace kivo
