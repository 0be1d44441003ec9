// SPDX-License-Identifier: MIT
#include "linux/PowerProfiles.h"

#include "linux/Bus.h"

#include <algorithm>

namespace kivo {
namespace {

using namespace std::chrono_literals;

const QString activeProfile = QStringLiteral("ActiveProfile");

constexpr Duration restartPatience = 3s;

} // namespace

// The daemon under one of its names; the interface is called as the service.
struct PowerProfiles::Daemon {
    QString name;
    QString path;
    QString owner; // that is followed; empty without one
    QString profile;
    Subscription forgetting;
    std::unique_ptr<NameOwner> nameOwner;
};

PowerProfiles::PowerProfiles(MainLoop& loop, QDBusConnection bus) : loop_(loop), bus_(std::move(bus)) {
    for (const char* name : {"org.freedesktop.UPower.PowerProfiles", "net.hadess.PowerProfiles"}) {
        auto daemon = std::make_unique<Daemon>();
        daemon->name = QString::fromLatin1(name);
        daemon->path = QStringLiteral("/") + QString(daemon->name).replace(u'.', u'/');
        daemon->nameOwner = std::make_unique<NameOwner>(
            bus_, daemon->name,
            [this, target = daemon.get()](const QString& owner) { ownerChanged(*target, owner); });
        daemons_.push_back(std::move(daemon));
    }
}

PowerProfiles::~PowerProfiles() {
    for (const auto& daemon : daemons_)
        follow(*daemon, false);
}

void PowerProfiles::ownerChanged(Daemon& daemon, const QString& owner) {
    follow(daemon, false);
    daemon.owner = owner;
    if (owner.isEmpty()) {
        daemon.forgetting = loop_.after(restartPatience, [this, &daemon] {
            daemon.profile.clear();
            update();
        });
        return;
    }
    daemon.forgetting.cancel();
    follow(daemon, true);
    ask(daemon);
}

void PowerProfiles::follow(Daemon& daemon, bool isFollowed) {
    followSignal(bus_, propertiesOf(daemon.owner, daemon.path, daemon.name), this,
                 SLOT(propertiesChanged(QString, QVariantMap)), isFollowed);
}

void PowerProfiles::ask(Daemon& daemon) {
    auto call =
        QDBusMessage::createMethodCall(daemon.owner, daemon.path, propertiesInterface, QStringLiteral("Get"));
    call << daemon.name << activeProfile;
    callBus(bus_, call, this, [this, &daemon, owner = daemon.owner](const QDBusMessage& reply) {
        if (owner != daemon.owner || reply.type() != QDBusMessage::ReplyMessage)
            return;
        daemon.profile = unwrapped(reply.arguments().value(0)).toString();
        update();
    });
}

void PowerProfiles::propertiesChanged(const QString& interface, const QVariantMap& changed) {
    const auto profile = changed.constFind(activeProfile);
    if (profile == changed.constEnd())
        return;
    for (const auto& daemon : daemons_) {
        if (daemon->name == interface)
            daemon->profile = profile->toString();
    }
    update();
}

void PowerProfiles::update() {
    isSaving_.set(std::any_of(daemons_.begin(), daemons_.end(), [](const auto& daemon) {
        return daemon->profile == QLatin1String("power-saver");
    }));
}

} // namespace kivo
