// SPDX-License-Identifier: MIT
#include "linux/PortalLoginService.h"

#include "linux/Bus.h"
#include "platform/UserDefaults.h"
#include "support/Text.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QVariantMap>

#include <unistd.h>

namespace kivo {
namespace {

const QString portal = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString requestInterface = QStringLiteral("org.freedesktop.portal.Request");
constexpr std::string_view grantedKey = "loginItem.granted.v1";

// Where the portal puts a request of this connection.
QString requestPath(const QDBusConnection& bus, const QString& token) {
    QString sender = bus.baseService().mid(1);
    sender.replace(QLatin1Char('.'), QLatin1Char('_'));
    return portalPath + QStringLiteral("/request/") + sender + QLatin1Char('/') + token;
}

} // namespace

PortalLoginService::PortalLoginService(const QDBusConnection& session, UserDefaults& defaults)
    : bus_(session), defaults_(defaults) {}

PortalLoginService::~PortalLoginService() = default;

bool PortalLoginService::isNeeded() {
    return access("/.flatpak-info", F_OK) == 0;
}

bool PortalLoginService::isEnabled() {
    return boolValue(defaults_, grantedKey);
}

std::optional<std::string> PortalLoginService::registerItem() {
    request(true);
    return std::nullopt;
}

std::optional<std::string> PortalLoginService::unregisterItem() {
    request(false);
    return std::nullopt;
}

void PortalLoginService::request(bool wantsAutostart) {
    if (!request_.isEmpty()) {
        bus_.send(QDBusMessage::createMethodCall(portal, request_, requestInterface, QStringLiteral("Close")));
        forget();
    }
    wantsAutostart_ = wantsAutostart;
    const QString token = QStringLiteral("kivo%1").arg(++count_);
    // Before asking: the answer may come before the reply does.
    follow(requestPath(bus_, token));
    auto call =
        QDBusMessage::createMethodCall(portal, portalPath, QStringLiteral("org.freedesktop.portal.Background"),
                                       QStringLiteral("RequestBackground"));
    const std::string reason = localized("Kivo watches your batteries from the moment you log in.");
    call << QString()
         << QVariantMap{{QStringLiteral("handle_token"), token},
                        {QStringLiteral("reason"), QString::fromStdString(reason)},
                        {QStringLiteral("autostart"), wantsAutostart},
                        {QStringLiteral("commandline"), QStringList{QStringLiteral("kivo")}},
                        {QStringLiteral("dbus-activatable"), false}};
    callBus(bus_, call, this, [this, number = count_](const QDBusMessage& reply) {
        if (number != count_ || request_.isEmpty())
            return;
        if (reply.type() == QDBusMessage::ErrorMessage) {
            end(reply.errorMessage().toStdString());
            return;
        }
        // Older portals choose the path themselves.
        const auto path = reply.arguments().value(0).value<QDBusObjectPath>().path();
        if (!path.isEmpty() && path != request_) {
            forget();
            follow(path);
        }
    });
}

void PortalLoginService::follow(const QString& path) {
    request_ = path;
    followResponse(true);
}

void PortalLoginService::followResponse(bool isFollowed) {
    followSignal(bus_, {portal, request_, requestInterface, QStringLiteral("Response")}, this,
                 SLOT(responded(QDBusMessage)), isFollowed);
}

void PortalLoginService::forget() {
    followResponse(false);
    request_.clear();
}

void PortalLoginService::responded(const QDBusMessage& response) {
    if (response.path() != request_)
        return;
    const auto code = response.arguments().value(0).toUInt();
    const auto results = qdbus_cast<QVariantMap>(response.arguments().value(1));
    if (code != 0) {
        end(code == 1 ? "The user did not allow it" : "The desktop's background portal gave up");
        return;
    }
    const bool isGranted = unwrapped(results.value(QStringLiteral("autostart"))).toBool();
    defaults_.set(grantedKey, isGranted);
    end(isGranted == wantsAutostart_
            ? std::nullopt
            : std::optional<std::string>("The desktop's background portal did not allow it"));
}

void PortalLoginService::end(const std::optional<std::string>& error) {
    forget();
    if (onLateOutcome)
        onLateOutcome(error);
}

} // namespace kivo
