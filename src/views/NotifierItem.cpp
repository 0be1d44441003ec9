// SPDX-License-Identifier: MIT
#include "views/NotifierItem.h"

#include "views/NotifierTypes.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>

#include <QtEndian>

#include <array>
#include <utility>

namespace kivo {

namespace {

const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString itemInterface = QStringLiteral("org.kde.StatusNotifierItem");
const QString itemPath = QStringLiteral("/StatusNotifierItem");

constexpr std::array propertyNames{"Category",
                                   "Id",
                                   "Title",
                                   "Status",
                                   "WindowId",
                                   "IconName",
                                   "IconPixmap",
                                   "OverlayIconName",
                                   "OverlayIconPixmap",
                                   "AttentionIconName",
                                   "AttentionIconPixmap",
                                   "AttentionMovieName",
                                   "IconThemePath",
                                   "ToolTip",
                                   "ItemIsMenu",
                                   "Menu"};

NotifierPicture record(const QImage& picture) {
    const QImage plain = picture.convertToFormat(QImage::Format_ARGB32);
    const int rowBytes = plain.width() * 4;
    QByteArray bytes(plain.height() * rowBytes, Qt::Uninitialized);
    for (int y = 0; y < plain.height(); ++y)
        qToBigEndian<quint32>(plain.constScanLine(y), plain.width(), bytes.data() + y * rowBytes);
    return {plain.width(), plain.height(), bytes};
}

QVariant pictureList(const std::vector<QImage>& pictures) {
    QList<NotifierPicture> list;
    for (const QImage& picture : pictures)
        list << record(picture);
    return QVariant::fromValue(list);
}

// Trays that know no place say 0, 0 or less.
std::optional<QPoint> place(const QVariantList& arguments) {
    const QPoint point(arguments.value(0).toInt(), arguments.value(1).toInt());
    return point.x() <= 0 && point.y() <= 0 ? std::nullopt : std::optional(point);
}

} // namespace

NotifierItem::NotifierItem(const QDBusConnection& bus)
    : bus_(bus),
      name_(QStringLiteral("org.kde.StatusNotifierItem-%1-1").arg(QCoreApplication::applicationPid())),
      watcher_(watcherName, bus, QDBusServiceWatcher::WatchForOwnerChange) {
    qDBusRegisterMetaType<NotifierPicture>();
    qDBusRegisterMetaType<QList<NotifierPicture>>();
    qDBusRegisterMetaType<NotifierToolTip>();
    if (!bus_.isConnected())
        return;
    bus_.registerVirtualObject(itemPath, this);
    bus_.registerVirtualObject(NotifierMenu::path(), &menu_);
    bus_.registerService(name_);
    connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) { setHasWatcher(!owner.isEmpty()); });
    setHasWatcher(bus_.interface()->isServiceRegistered(watcherName));
}

NotifierItem::~NotifierItem() {
    bus_.unregisterService(name_);
    bus_.unregisterObject(itemPath);
    bus_.unregisterObject(NotifierMenu::path());
}

void NotifierItem::setHasWatcher(bool hasWatcher) {
    hasWatcher_ = hasWatcher;
    if (hasWatcher)
        introduce();
    if (onWatcherChange)
        onWatcherChange();
}

void NotifierItem::introduce() {
    auto call = QDBusMessage::createMethodCall(watcherName, QStringLiteral("/StatusNotifierWatcher"),
                                               watcherName, QStringLiteral("RegisterStatusNotifierItem"));
    call << name_;
    call.setAutoStartService(false);
    bus_.send(call);
}

void NotifierItem::setIcon(std::vector<QImage> pictures) {
    if (pictures == pictures_)
        return;
    pictures_ = std::move(pictures);
    tell("NewIcon");
}

void NotifierItem::setTexts(const QString& title, const QString& toolTip) {
    if (title != title_) {
        title_ = title;
        tell("NewTitle");
    }
    if (toolTip != toolTip_) {
        toolTip_ = toolTip;
        tell("NewToolTip");
    }
}

void NotifierItem::tell(const char* signal) {
    if (hasWatcher_)
        bus_.send(QDBusMessage::createSignal(itemPath, itemInterface, QLatin1String(signal)));
}

QString NotifierItem::introspect(const QString&) const {
    return QStringLiteral(
        "<interface name=\"org.kde.StatusNotifierItem\">"
        "<property name=\"Category\" type=\"s\" access=\"read\"/>"
        "<property name=\"Id\" type=\"s\" access=\"read\"/>"
        "<property name=\"Title\" type=\"s\" access=\"read\"/>"
        "<property name=\"Status\" type=\"s\" access=\"read\"/>"
        "<property name=\"WindowId\" type=\"i\" access=\"read\"/>"
        "<property name=\"IconName\" type=\"s\" access=\"read\"/>"
        "<property name=\"IconPixmap\" type=\"a(iiay)\" access=\"read\"/>"
        "<property name=\"OverlayIconName\" type=\"s\" access=\"read\"/>"
        "<property name=\"OverlayIconPixmap\" type=\"a(iiay)\" access=\"read\"/>"
        "<property name=\"AttentionIconName\" type=\"s\" access=\"read\"/>"
        "<property name=\"AttentionIconPixmap\" type=\"a(iiay)\" access=\"read\"/>"
        "<property name=\"AttentionMovieName\" type=\"s\" access=\"read\"/>"
        "<property name=\"IconThemePath\" type=\"s\" access=\"read\"/>"
        "<property name=\"ToolTip\" type=\"(sa(iiay)ss)\" access=\"read\"/>"
        "<property name=\"ItemIsMenu\" type=\"b\" access=\"read\"/>"
        "<property name=\"Menu\" type=\"o\" access=\"read\"/>"
        "<method name=\"Activate\"><arg type=\"i\" direction=\"in\"/><arg type=\"i\" "
        "direction=\"in\"/></method>"
        "<method name=\"SecondaryActivate\"><arg type=\"i\" direction=\"in\"/>"
        "<arg type=\"i\" direction=\"in\"/></method>"
        "<method name=\"ContextMenu\"><arg type=\"i\" direction=\"in\"/><arg type=\"i\" "
        "direction=\"in\"/></method>"
        "<method name=\"Scroll\"><arg type=\"i\" direction=\"in\"/><arg type=\"s\" direction=\"in\"/></method>"
        "<signal name=\"NewTitle\"/><signal name=\"NewIcon\"/><signal name=\"NewToolTip\"/>"
        "<signal name=\"NewStatus\"><arg type=\"s\"/></signal>"
        "</interface>");
}

QVariant NotifierItem::property(const QString& name) const {
    if (name == QLatin1String("Category"))
        return QStringLiteral("Hardware");
    if (name == QLatin1String("Id"))
        return QStringLiteral("kivo");
    if (name == QLatin1String("Title"))
        return title_;
    if (name == QLatin1String("Status"))
        return QStringLiteral("Active");
    if (name == QLatin1String("WindowId"))
        return 0;
    if (name == QLatin1String("IconPixmap"))
        return pictureList(pictures_);
    if (name.endsWith(QLatin1String("Pixmap")))
        return pictureList({});
    if (name == QLatin1String("ToolTip"))
        return QVariant::fromValue(NotifierToolTip{{}, {}, toolTip_, {}});
    if (name == QLatin1String("ItemIsMenu"))
        return false;
    if (name == QLatin1String("Menu"))
        return QVariant::fromValue(QDBusObjectPath(NotifierMenu::path()));
    for (const char* known : propertyNames) {
        if (name == QLatin1String(known))
            return QString();
    }
    return {};
}

QVariantMap NotifierItem::properties() const {
    QVariantMap all;
    for (const char* name : propertyNames)
        all[QLatin1String(name)] = property(QLatin1String(name));
    return all;
}

bool NotifierItem::answer(const QDBusMessage& message, const QVariant& value) {
    return bus_.send(value.isValid() ? message.createReply(value)
                                     : message.createErrorReply(QDBusError::UnknownProperty, message.member()));
}

bool NotifierItem::handleMessage(const QDBusMessage& message, const QDBusConnection&) {
    const QString member = message.member();
    if (message.interface() == QLatin1String("org.freedesktop.DBus.Properties")) {
        if (member == QLatin1String("GetAll"))
            return answer(message, properties());
        if (member != QLatin1String("Get"))
            return false;
        const QVariant value = property(message.arguments().value(1).toString());
        return answer(message, value.isValid() ? QVariant::fromValue(QDBusVariant(value)) : QVariant());
    }
    if (message.interface() != itemInterface)
        return false;
    const bool isClick = member == QLatin1String("Activate") || member == QLatin1String("SecondaryActivate");
    const bool isMenu = member == QLatin1String("ContextMenu");
    if (!isClick && !isMenu && member != QLatin1String("Scroll") &&
        member != QLatin1String("ProvideXdgActivationToken"))
        return false;
    bus_.send(message.createReply());
    if (isClick && onActivate)
        onActivate(place(message.arguments()));
    if (isMenu && onContextMenu)
        onContextMenu(place(message.arguments()));
    return true;
}

} // namespace kivo
