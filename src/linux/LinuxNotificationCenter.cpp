// SPDX-License-Identifier: MIT
#include "linux/LinuxNotificationCenter.h"

#include "linux/Bus.h"
#include "platform/Application.h"

#include <QVariantMap>

#include <algorithm>
#include <utility>

namespace kivo {
namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");

QDBusMessage call(const QString& method) {
    return QDBusMessage::createMethodCall(service, path, service, method);
}

bool isError(const QDBusMessage& reply) {
    return reply.type() == QDBusMessage::ErrorMessage;
}

} // namespace

LinuxNotificationCenter::LinuxNotificationCenter(const QDBusConnection& session)
    : bus_(session), watcher_(service, session, QDBusServiceWatcher::WatchForOwnerChange) {
    connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] { forgetServer(); });
}

LinuxNotificationCenter::~LinuxNotificationCenter() = default;

void LinuxNotificationCenter::findService(
    const std::function<void(std::optional<bool> isThere, const QString& error)>& done) {
    const auto askActivatable = [this, done](const QDBusMessage&) {
        callBus(bus_, busCall(QStringLiteral("ListActivatableNames"), {}), this,
                [done](const QDBusMessage& reply) {
                    if (isError(reply))
                        done(std::nullopt, reply.errorMessage());
                    else
                        done(reply.arguments().value(0).toStringList().contains(service), {});
                });
    };
    callBus(bus_, busCall(QStringLiteral("NameHasOwner"), {service}), this,
            [done, askActivatable](const QDBusMessage& reply) {
                if (isError(reply))
                    done(std::nullopt, reply.errorMessage());
                else if (reply.arguments().value(0).toBool())
                    done(true, {});
                else
                    askActivatable(reply);
            });
}

void LinuxNotificationCenter::requestAuthorization(std::vector<std::string>,
                                                   std::function<void(Authorization)> done) {
    findService([done = std::move(done)](std::optional<bool> isThere, const QString& error) {
        if (isThere)
            done({*isThere, std::nullopt});
        else
            done({false, error.toStdString()});
    });
}

void LinuxNotificationCenter::authorizationStatus(std::function<void(NotificationStatus)> done) {
    findService([done = std::move(done)](std::optional<bool> isThere, const QString&) {
        done(isThere.value_or(false) ? NotificationStatus::authorized : NotificationStatus::denied);
    });
}

void LinuxNotificationCenter::add(NotificationRequest request,
                                  std::function<void(std::optional<std::string>)> done) {
    const auto overtaken = std::find_if(waiting_.begin(), waiting_.end(), [&](const Job& job) {
        return job.request.identifier == request.identifier;
    });
    if (overtaken != waiting_.end()) {
        QMetaObject::invokeMethod(
            this, [done = std::move(overtaken->done)] { done(std::nullopt); }, Qt::QueuedConnection);
        waiting_.erase(overtaken);
    }
    waiting_.push_back({std::move(request), std::move(done)});
    if (capabilities_)
        sendWaiting();
    else
        askCapabilities();
}

// The first request to a server has to know whether it reads the text as markup.
void LinuxNotificationCenter::askCapabilities() {
    if (std::exchange(isAskingCapabilities_, true))
        return;
    callBus(bus_, call(QStringLiteral("GetCapabilities")), this, [this](const QDBusMessage& reply) {
        isAskingCapabilities_ = false;
        if (!isError(reply)) {
            capabilities_ = reply.arguments().value(0).toStringList();
            sendWaiting();
            return;
        }
        for (auto& job : std::exchange(waiting_, {}))
            job.done(reply.errorMessage().toStdString());
    });
}

void LinuxNotificationCenter::sendWaiting() {
    std::deque<Job> kept;
    for (auto& job : std::exchange(waiting_, {})) {
        if (underway_.contains(job.request.identifier))
            kept.push_back(std::move(job));
        else
            send(std::move(job));
    }
    waiting_.insert(waiting_.begin(), std::make_move_iterator(kept.begin()),
                    std::make_move_iterator(kept.end()));
}

void LinuxNotificationCenter::send(Job job) {
    auto notify = call(QStringLiteral("Notify"));
    notify.setArguments(arguments(job.request));
    underway_.insert(job.request.identifier);
    callBus(bus_, notify, this,
            [this, generation = generation_, identifier = job.request.identifier,
             done = std::move(job.done)](const QDBusMessage& reply) {
                if (generation == generation_) {
                    underway_.erase(identifier);
                    if (!isError(reply))
                        shown_[identifier] = reply.arguments().value(0).toUInt();
                    followClosing();
                    if (capabilities_)
                        sendWaiting();
                }
                done(isError(reply) ? std::optional(reply.errorMessage().toStdString()) : std::nullopt);
            });
}

QVariantList LinuxNotificationCenter::arguments(const NotificationRequest& request) const {
    const auto has = [this](const char* capability) {
        return capabilities_ && capabilities_->contains(QLatin1String(capability));
    };
    const QString application = busText(applicationIdentifier);
    const auto shown = shown_.find(request.identifier);
    const uint replaced = shown == shown_.end() ? 0 : shown->second;
    const QString body = busText(request.body);

    QVariantMap hints{{QStringLiteral("desktop-entry"), application},
                      {QStringLiteral("urgency"), QVariant::fromValue<uchar>(1)},
                      {QStringLiteral("category"), QStringLiteral("device")},
                      {QStringLiteral("suppress-sound"), true}};
    for (const char* slot : {"x-canonical-private-synchronous", "x-dunst-stack-tag"})
        if (has(slot))
            hints.insert(QLatin1String(slot), busText(request.identifier));
    return {QStringLiteral("Kivo"),
            replaced,
            application,
            busText(request.title),
            has("body-markup") ? body.toHtmlEscaped() : body,
            QStringList(),
            hints,
            -1};
}

void LinuxNotificationCenter::notificationClosed(uint id, uint) {
    std::erase_if(shown_, [id](const auto& entry) { return entry.second == id; });
    followClosing();
}

void LinuxNotificationCenter::forgetServer() {
    ++generation_;
    shown_.clear();
    underway_.clear();
    capabilities_.reset();
    followClosing();
    if (!waiting_.empty())
        askCapabilities();
}

// Some servers tell everybody of every closing: only followed while something of ours is on screen.
void LinuxNotificationCenter::followClosing() {
    if (isFollowingClosing_ == !shown_.empty())
        return;
    isFollowingClosing_ = !isFollowingClosing_;
    followSignal(bus_, {service, path, service, QStringLiteral("NotificationClosed")}, this,
                 SLOT(notificationClosed(uint, uint)), isFollowingClosing_);
}

} // namespace kivo
