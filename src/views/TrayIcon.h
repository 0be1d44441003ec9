// SPDX-License-Identifier: MIT
#pragma once

#include "battery/BatterySnapshot.h"
#include "support/MainLoop.h"
#include "support/Observable.h"
#include "ui/MenuBarLabel.h"
#include "views/SymbolPainter.h"

#include <QMenu>
#include <QObject>
#include <QRect>
#include <QSystemTrayIcon>

#include <functional>
#include <memory>
#include <optional>

namespace kivo {

class SettingsStore;

// Kivo in the desktop's tray: the menu bar's label as an icon, the battery in words as its tool tip, a menu.
// A tray may come long after Kivo (a login starts everything at once): the icon is made when there is one.
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

    std::optional<QRect> iconPlace() const;

protected:
    // The desktop's colours changed: the panel may be light or dark now.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void lookForTray(int round);
    void make();
    void makeMenu();
    void refreshSoon();
    void refresh();

    MainLoop& loop_;
    Observable<std::optional<BatterySnapshot>>& snapshot_;
    SettingsStore& settings_;
    SymbolPainter symbols_;
    std::unique_ptr<QMenu> menu_;
    std::unique_ptr<QSystemTrayIcon> icon_;
    std::optional<MenuBarLabel> shown_;
    QColor shownInk_;
    QString shownTip_;
    Subscription snapshotChange_;
    Subscription settingsChange_;
    Subscription nextLook_;
    bool isRefreshDue_ = false;
    Subscription nextRefresh_;
};

// The colour of what stands in the desktop's panel, as far as it can be known from here.
QColor panelInk();

} // namespace kivo
