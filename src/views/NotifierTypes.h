// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QList>
#include <QString>
#include <QVariantMap>

namespace kivo {

// The records of a tray's protocol, as they travel.

struct NotifierPicture { // (iiay): rows of ARGB, the most significant byte first, not multiplied
    int width = 0;
    int height = 0;
    QByteArray bytes;
};

struct NotifierToolTip { // (sa(iiay)ss)
    QString iconName;
    QList<NotifierPicture> pictures;
    QString title;
    QString text;
};

struct NotifierMenuEntry { // (ia{sv})
    int id = 0;
    QVariantMap properties;
};

inline QDBusArgument& operator<<(QDBusArgument& argument, const NotifierPicture& picture) {
    argument.beginStructure();
    argument << picture.width << picture.height << picture.bytes;
    argument.endStructure();
    return argument;
}
inline const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierPicture& picture) {
    argument.beginStructure();
    argument >> picture.width >> picture.height >> picture.bytes;
    argument.endStructure();
    return argument;
}

inline QDBusArgument& operator<<(QDBusArgument& argument, const NotifierToolTip& tip) {
    argument.beginStructure();
    argument << tip.iconName << tip.pictures << tip.title << tip.text;
    argument.endStructure();
    return argument;
}
inline const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierToolTip& tip) {
    argument.beginStructure();
    argument >> tip.iconName >> tip.pictures >> tip.title >> tip.text;
    argument.endStructure();
    return argument;
}

inline QDBusArgument& operator<<(QDBusArgument& argument, const NotifierMenuEntry& entry) {
    argument.beginStructure();
    argument << entry.id << entry.properties;
    argument.endStructure();
    return argument;
}
inline const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierMenuEntry& entry) {
    argument.beginStructure();
    argument >> entry.id >> entry.properties;
    argument.endStructure();
    return argument;
}

} // namespace kivo
