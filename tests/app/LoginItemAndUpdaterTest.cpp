// SPDX-License-Identifier: MIT
#include "app/LoginItem.h"
#include "app/Updater.h"

#include "platform/LoginService.h"
#include "platform/UpdateService.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace kivo;

namespace {

struct Login : LoginService, LogSink {
    bool isEnabled() override { return enabled; }
    std::optional<std::string> registerItem() override { return change(true); }
    std::optional<std::string> unregisterItem() override { return change(false); }
    std::optional<std::string> change(bool newValue) {
        if (!error)
            enabled = newValue;
        return error;
    }
    void log(LogLevel, std::string_view, std::string_view message) override { lines.emplace_back(message); }

    bool enabled = false;
    std::optional<std::string> error;
    std::vector<std::string> lines;
};

struct Framework : UpdateService {
    void start() override { calls += "start "; }
    bool canCheckForUpdates() override { return canCheck; }
    Subscription observeCanCheckForUpdates(std::function<void()> listener) override {
        return observers.add(std::move(listener));
    }
    void checkForUpdates() override { calls += "check "; }
    bool automaticallyChecksForUpdates() override { return automatic; }
    void setAutomaticallyChecksForUpdates(bool isAutomatic) override { automatic = isAutomatic; }

    bool canCheck = true;
    bool automatic = true;
    std::string calls;
    Listeners observers;
};

} // namespace

TEST(LoginItem, showsWhatThePlatformDidAndWhyNot) {
    Login login;
    LoginItem item(login, login);
    login.error = "no permission";
    item.setEnabled(true);
    EXPECT_FALSE(item.isEnabled().get());
    EXPECT_EQ(item.errorMessage().get(), "Couldn’t change this. Move Kivo to Applications and try again.");
    EXPECT_EQ(login.lines, std::vector<std::string>{"Login item change failed: no permission"});
    login.enabled = true;
    item.refresh();
    EXPECT_TRUE(item.isEnabled().get());
    EXPECT_TRUE(item.errorMessage().get()) << "the message stays until a change succeeds";
    login.error.reset();
    item.setEnabled(false);
    EXPECT_FALSE(item.isEnabled().get());
    EXPECT_FALSE(item.errorMessage().get());
}

TEST(LoginItem, aChangeThatEndsLaterIsShownWhenItDoes) {
    Login login;
    auto item = std::make_unique<LoginItem>(login, login);
    item->setEnabled(true);
    login.enabled = false;
    login.onLateOutcome("denied");
    EXPECT_FALSE(item->isEnabled().get());
    EXPECT_TRUE(item->errorMessage().get());
    login.enabled = true;
    login.onLateOutcome(std::nullopt);
    EXPECT_TRUE(item->isEnabled().get());
    EXPECT_FALSE(item->errorMessage().get());
    item.reset();
    login.onLateOutcome("nobody hears it");
    EXPECT_EQ(login.lines, std::vector<std::string>{"Login item change failed: denied"});
}

TEST(Updater, startsTheFrameworkAndFollowsWhetherItCanCheck) {
    Framework framework;
    auto updater = std::make_unique<Updater>(framework);
    EXPECT_EQ(framework.calls, "start ");
    EXPECT_TRUE(updater->canCheckForUpdates().get()) << "the first report comes at once";
    int changes = 0;
    const auto subscription = updater->canCheckForUpdates().onChange([&] { ++changes; });
    framework.observers.notify();
    EXPECT_EQ(changes, 0);
    framework.canCheck = false;
    framework.observers.notify();
    EXPECT_EQ(changes, 1);
    updater.reset();
    framework.observers.notify();
}
