// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LoginService.h"
#include "platform/UpdateService.h"
#include "simulated/SimulatedCore.h"
#include "support/Observable.h"

namespace kivo {

class SimulatedLogin final : public LoginService {
public:
    explicit SimulatedLogin(SimulatedCore& core) : core_(core) {}
    bool isEnabled() override { return core_.state.login.isEnabled; }
    std::optional<std::string> registerItem() override { return change("login.register", true); }
    std::optional<std::string> unregisterItem() override { return change("login.unregister", false); }

private:
    std::optional<std::string> change(std::string_view event, bool isEnabled);

    SimulatedCore& core_;
};

class SimulatedUpdates final : public UpdateService {
public:
    explicit SimulatedUpdates(SimulatedCore& core) : core_(core) {}
    void start() override { core_.events.record("updates.start"); }
    bool canCheckForUpdates() override { return core_.state.updates.canCheck; }
    Subscription observeCanCheckForUpdates(std::function<void()> listener) override;
    void checkForUpdates() override { core_.events.record("updates.check"); }
    bool automaticallyChecksForUpdates() override { return core_.state.updates.isAutomatic; }
    void setAutomaticallyChecksForUpdates(bool isAutomatic) override {
        core_.state.updates.isAutomatic = isAutomatic;
    }

    void fire() { listeners_.notify(); }

private:
    SimulatedCore& core_;
    Listeners listeners_;
};

} // namespace kivo
