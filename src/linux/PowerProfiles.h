// SPDX-License-Identifier: MIT
#pragma once

#include "linux/NameOwner.h"
#include "platform/PowerState.h"
#include "support/MainLoop.h"
#include "support/Observable.h"

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>

#include <memory>
#include <vector>

namespace kivo {

// Low Power Mode is the profile "power-saver" of the desktop's power profiles, under either of the names that
// their daemon has had. Off while no daemon runs; none is ever started, as it would change how the computer
// runs. A daemon that is replaced within a few seconds changes nothing.
class PowerProfiles final : public QObject, public PowerState {
    Q_OBJECT

public:
    PowerProfiles(MainLoop& loop, QDBusConnection bus);
    ~PowerProfiles() override;

    bool isLowPowerModeEnabled() override { return isSaving_.get(); }
    Subscription onPowerStateChange(std::function<void()> listener) override {
        return isSaving_.onChange(std::move(listener));
    }

private Q_SLOTS:
    void propertiesChanged(const QString& interface, const QVariantMap& changed);

private:
    struct Daemon;

    void ownerChanged(Daemon& daemon, const QString& owner);
    void follow(Daemon& daemon, bool isFollowed);
    void ask(Daemon& daemon);
    void update();

    MainLoop& loop_;
    QDBusConnection bus_;
    Observable<bool> isSaving_;
    std::vector<std::unique_ptr<Daemon>> daemons_;
};

} // namespace kivo
