// SPDX-License-Identifier: MIT
#include "views/NotifierMenu.h"

#include "views/NotifierTypes.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>

#include <algorithm>

namespace kivo {

namespace {

const QString interfaceName = QStringLiteral("com.canonical.dbusmenu");
constexpr unsigned revision = 1;

QVariant menuProperty(const QString& name) {
    if (name == QLatin1String("Version"))
        return 3U;
    if (name == QLatin1String("TextDirection"))
        return QStringLiteral("ltr");
    if (name == QLatin1String("Status"))
        return QStringLiteral("normal");
    if (name == QLatin1String("IconThemePath"))
        return QStringList();
    return {};
}

} // namespace

NotifierMenu::NotifierMenu() {
    qDBusRegisterMetaType<NotifierMenuEntry>();
    qDBusRegisterMetaType<QList<NotifierMenuEntry>>();
}

QString NotifierMenu::path() {
    return QStringLiteral("/MenuBar");
}

QString NotifierMenu::introspect(const QString&) const {
    return QStringLiteral(
        "<interface name=\"com.canonical.dbusmenu\">"
        "<property name=\"Version\" type=\"u\" access=\"read\"/>"
        "<property name=\"TextDirection\" type=\"s\" access=\"read\"/>"
        "<property name=\"Status\" type=\"s\" access=\"read\"/>"
        "<property name=\"IconThemePath\" type=\"as\" access=\"read\"/>"
        "<method name=\"GetLayout\"><arg type=\"i\" direction=\"in\"/><arg type=\"i\" direction=\"in\"/>"
        "<arg type=\"as\" direction=\"in\"/><arg type=\"u\" direction=\"out\"/>"
        "<arg type=\"(ia{sv}av)\" direction=\"out\"/></method>"
        "<method name=\"GetGroupProperties\"><arg type=\"ai\" direction=\"in\"/><arg type=\"as\" "
        "direction=\"in\"/>"
        "<arg type=\"a(ia{sv})\" direction=\"out\"/></method>"
        "<method name=\"GetProperty\"><arg type=\"i\" direction=\"in\"/><arg type=\"s\" direction=\"in\"/>"
        "<arg type=\"v\" direction=\"out\"/></method>"
        "<method name=\"Event\"><arg type=\"i\" direction=\"in\"/><arg type=\"s\" direction=\"in\"/>"
        "<arg type=\"v\" direction=\"in\"/><arg type=\"u\" direction=\"in\"/></method>"
        "<method name=\"EventGroup\"><arg type=\"a(isvu)\" direction=\"in\"/>"
        "<arg type=\"ai\" direction=\"out\"/></method>"
        "<method name=\"AboutToShow\"><arg type=\"i\" direction=\"in\"/><arg type=\"b\" "
        "direction=\"out\"/></method>"
        "<method name=\"AboutToShowGroup\"><arg type=\"ai\" direction=\"in\"/><arg type=\"ai\" "
        "direction=\"out\"/>"
        "<arg type=\"ai\" direction=\"out\"/></method>"
        "<signal name=\"LayoutUpdated\"><arg type=\"u\"/><arg type=\"i\"/></signal>"
        "</interface>");
}

QVariantMap NotifierMenu::entryProperties(int id) const {
    if (id == 0)
        return {{QStringLiteral("children-display"), QStringLiteral("submenu")}};
    if (id < 0 || static_cast<std::size_t>(id) > entries_.size())
        return {};
    const QString& text = entries_[static_cast<std::size_t>(id - 1)].text;
    if (text.isEmpty())
        return {{QStringLiteral("type"), QStringLiteral("separator")}};
    // An underscore would mark a key.
    return {{QStringLiteral("label"), QString(text).replace(QLatin1Char('_'), QLatin1String("__"))},
            {QStringLiteral("enabled"), true},
            {QStringLiteral("visible"), true}};
}

QVariant NotifierMenu::layout(int id, int depth) const {
    QDBusArgument node;
    node.beginStructure();
    node << id << entryProperties(id);
    node.beginArray(QMetaType::fromType<QDBusVariant>());
    if (id == 0 && depth != 0) {
        for (int child = 1; child <= static_cast<int>(entries_.size()); ++child)
            node << QDBusVariant(layout(child, 0));
    }
    node.endArray();
    node.endStructure();
    return QVariant::fromValue(node);
}

QVariant NotifierMenu::groupProperties(const QList<int>& ids) const {
    QList<NotifierMenuEntry> group;
    for (int id : ids)
        group << NotifierMenuEntry{id, entryProperties(id)};
    // No numbers stand for all entries.
    for (int id = 0; ids.isEmpty() && id <= static_cast<int>(entries_.size()); ++id)
        group << NotifierMenuEntry{id, entryProperties(id)};
    return QVariant::fromValue(group);
}

void NotifierMenu::handleEvent(int id, const QString& name) {
    if (name != QLatin1String("clicked") || id < 1 || static_cast<std::size_t>(id) > entries_.size())
        return;
    if (const auto act = entries_[static_cast<std::size_t>(id - 1)].act)
        act();
}

void NotifierMenu::handleEvents(const QDBusArgument& events) {
    events.beginArray();
    while (!events.atEnd()) {
        int id = 0;
        QString name;
        QDBusVariant data;
        unsigned time = 0;
        events.beginStructure();
        events >> id >> name >> data >> time;
        events.endStructure();
        handleEvent(id, name);
    }
    events.endArray();
}

bool NotifierMenu::handleProperties(const QDBusMessage& message, const QDBusConnection& connection) {
    if (message.member() == QLatin1String("Get")) {
        const QString name = message.arguments().value(1).toString();
        return connection.send(message.createReply(QVariant::fromValue(QDBusVariant(menuProperty(name)))));
    }
    if (message.member() != QLatin1String("GetAll"))
        return false;
    QVariantMap all;
    for (const char* name : {"Version", "TextDirection", "Status", "IconThemePath"})
        all[QLatin1String(name)] = menuProperty(QLatin1String(name));
    return connection.send(message.createReply(all));
}

bool NotifierMenu::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    const QString member = message.member();
    const QVariantList arguments = message.arguments();
    const auto answer = [&](const QVariantList& values) {
        return connection.send(message.createReply(values));
    };
    if (message.interface() == QLatin1String("org.freedesktop.DBus.Properties"))
        return handleProperties(message, connection);
    if (message.interface() != interfaceName)
        return false;
    if (member == QLatin1String("GetLayout"))
        return answer({revision, layout(arguments.value(0).toInt(), arguments.value(1).toInt())});
    if (member == QLatin1String("GetGroupProperties"))
        return answer({groupProperties(qdbus_cast<QList<int>>(arguments.value(0)))});
    if (member == QLatin1String("GetProperty")) {
        const QVariant value = entryProperties(arguments.value(0).toInt()).value(arguments.value(1).toString());
        return answer({QVariant::fromValue(QDBusVariant(value.isValid() ? value : QVariant(QString())))});
    }
    if (member == QLatin1String("AboutToShow"))
        return answer({false});
    if (member == QLatin1String("AboutToShowGroup"))
        return answer({QVariant::fromValue(QList<int>()), QVariant::fromValue(QList<int>())});
    if (member == QLatin1String("Event")) {
        answer({});
        handleEvent(arguments.value(0).toInt(), arguments.value(1).toString());
        return true;
    }
    // Of another form it could be read without end.
    if (member != QLatin1String("EventGroup") || message.signature() != QLatin1String("a(isvu)"))
        return false;
    answer({QVariant::fromValue(QList<int>())});
    handleEvents(arguments.value(0).value<QDBusArgument>());
    return true;
}

} // namespace kivo
