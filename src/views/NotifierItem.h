// SPDX-License-Identifier: MIT
#pragma once

#include "views/NotifierMenu.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QDBusVirtualObject>
#include <QImage>
#include <QObject>
#include <QPoint>
#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace kivo {

// Kivo's icon as an item of the desktop's StatusNotifierItem trays. It is on the session bus from its making on
// and gives itself to whichever watcher comes, again after each restart of a panel. Unlike Qt's own item it
// tells where a click was.
class NotifierItem final : public QDBusVirtualObject {
public:
    explicit NotifierItem(const QDBusConnection& bus);
    ~NotifierItem() override;

    // What the tray shows; only what differs is told. `title` names the item to those who cannot see it.
    void setIcon(std::vector<QImage> pictures);
    void setTexts(const QString& title, const QString& toolTip);
    // The context menu, for trays that show it themselves.
    void setMenu(std::vector<NotifierMenu::Entry> entries) { menu_.setEntries(std::move(entries)); }
    // Whether a watcher runs. It may be one without any host.
    bool hasWatcher() const { return hasWatcher_; }

    // Callbacks out. Places are in pixels of the display; absent where the tray knows none.
    std::function<void(std::optional<QPoint>)> onActivate;
    std::function<void(std::optional<QPoint>)> onContextMenu; // of a tray that shows no menus itself
    std::function<void()> onWatcherChange;

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    void setHasWatcher(bool hasWatcher);
    void introduce();
    QVariant property(const QString& name) const;
    QVariantMap properties() const;
    bool answer(const QDBusMessage& message, const QVariant& value);
    void tell(const char* signal);

    QDBusConnection bus_;
    QString name_;
    std::vector<QImage> pictures_;
    QString title_, toolTip_;
    NotifierMenu menu_;
    bool hasWatcher_ = false;
    QDBusServiceWatcher watcher_;
};

} // namespace kivo
