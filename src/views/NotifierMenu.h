// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <vector>

class QDBusArgument;

namespace kivo {

// A flat menu that a tray draws in its own way (com.canonical.dbusmenu). Its entries never change once they are
// set.
class NotifierMenu final : public QDBusVirtualObject {
public:
    struct Entry {
        QString text; // empty: a line between two groups
        std::function<void()> act;
    };
    NotifierMenu();

    static QString path();

    void setEntries(std::vector<Entry> entries) { entries_ = std::move(entries); }

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    QVariantMap entryProperties(int id) const;
    QVariant layout(int id, int depth) const;
    QVariant groupProperties(const QList<int>& ids) const;
    bool handleProperties(const QDBusMessage& message, const QDBusConnection& connection);
    void handleEvent(int id, const QString& name);
    void handleEvents(const QDBusArgument& events);

    std::vector<Entry> entries_; // numbered from 1; 0 is the menu itself
};

} // namespace kivo
