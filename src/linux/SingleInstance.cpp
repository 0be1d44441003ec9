// SPDX-License-Identifier: MIT
#include "linux/SingleInstance.h"

#include "linux/Bus.h"
#include "platform/Application.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVirtualObject>

namespace kivo {

namespace {

constexpr int askMilliseconds = 2000;
const QString interfaceName = QStringLiteral("org.freedesktop.Application");

} // namespace

class SingleInstance::Service final : public QDBusVirtualObject {
public:
    explicit Service(SingleInstance& owner) : owner_(owner) {}

    QString introspect(const QString&) const override {
        return QStringLiteral(
            "<interface name=\"org.freedesktop.Application\">"
            "<method name=\"Activate\"><arg type=\"a{sv}\" direction=\"in\"/></method>"
            "<method name=\"ActivateAction\"><arg type=\"s\" direction=\"in\"/>"
            "<arg type=\"av\" direction=\"in\"/><arg type=\"a{sv}\" direction=\"in\"/></method>"
            "</interface>");
    }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        const bool isAction = message.member() == QLatin1String("ActivateAction");
        if (message.interface() != interfaceName ||
            (!isAction && message.member() != QLatin1String("Activate")))
            return false;
        connection.send(message.createReply());
        if (owner_.onAction)
            owner_.onAction(isAction ? message.arguments().value(0).toString() : QString());
        return true;
    }

private:
    SingleInstance& owner_;
};

SingleInstance::SingleInstance(const QDBusConnection& bus) : bus_(bus) {
    if (!bus_.isConnected()) {
        isFirst_ = true;
        return;
    }
    // The object is there before the name: whoever sees the name can ask.
    service_ = std::make_unique<Service>(*this);
    bus_.registerVirtualObject(busText(applicationObjectPath), service_.get());
    isFirst_ = bus_.registerService(busText(applicationIdentifier));
}

SingleInstance::~SingleInstance() {
    if (!service_)
        return;
    bus_.unregisterObject(busText(applicationObjectPath));
    if (isFirst_)
        bus_.unregisterService(busText(applicationIdentifier));
}

bool SingleInstance::ask(const QString& action) const {
    auto call = QDBusMessage::createMethodCall(
        busText(applicationIdentifier), busText(applicationObjectPath), interfaceName,
        action.isEmpty() ? QStringLiteral("Activate") : QStringLiteral("ActivateAction"));
    if (!action.isEmpty())
        call << action << QVariantList();
    call << QVariantMap();
    return bus_.call(call, QDBus::Block, askMilliseconds).type() == QDBusMessage::ReplyMessage;
}

} // namespace kivo
