// SPDX-License-Identifier: MIT
#include "output/Notifier.h"
#include "output/SoundPlayer.h"

#include "platform/NotificationCenter.h"
#include "platform/Sounds.h"
#include "platform/Workspace.h"
#include "support/VirtualLoop.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

using namespace kivo;

namespace {

struct Desktop : NotificationCenter, Workspace, LogSink {
    void becomeDelegate() override { log_.push_back("delegate"); }
    void requestAuthorization(std::vector<std::string> options,
                              std::function<void(Authorization)> done) override {
        EXPECT_EQ(options, (std::vector<std::string>{"alert", "sound"}));
        loop.post([this, done] { done(authorization); });
    }
    void authorizationStatus(std::function<void(NotificationStatus)> done) override {
        loop.post([this, done] { done(status); });
    }
    void add(NotificationRequest request, std::function<void(std::optional<std::string>)> done) override {
        log_.push_back(request.identifier + "|" + request.title + "|" + request.body);
        loop.post([this, done] { done(addError); });
    }
    void open(std::string_view url) override { log_.push_back(std::string(url)); }
    std::optional<std::string> computerName() override { return std::nullopt; }
    std::optional<std::string> environment(std::string_view) override { return std::nullopt; }
    bool reduceMotion() override { return false; }
    void log(LogLevel level, std::string_view category, std::string_view message) override {
        log_.push_back(std::string(name(level)) + " " + std::string(category) + ": " + std::string(message));
    }

    VirtualLoop loop;
    Authorization authorization;
    NotificationStatus status = NotificationStatus::notDetermined;
    std::optional<std::string> addError;
    std::vector<std::string> log_;
};

using Lines = std::vector<std::string>;

} // namespace

TEST(Notifier, permissionFollowsTheAnswersAndAnErrorLeavesIt) {
    Desktop desktop;
    Notifier notifier(desktop.loop, desktop, desktop, desktop);
    const auto request = [&](NotificationCenter::Authorization answer) {
        desktop.authorization = std::move(answer);
        notifier.requestAuthorization();
        desktop.loop.runPosted();
        return notifier.isAuthorized().get();
    };
    EXPECT_TRUE(request({.isGranted = true}));
    EXPECT_TRUE(request({.error = "no service"}));
    EXPECT_FALSE(request({.isGranted = false}));
    EXPECT_EQ(desktop.log_,
              (Lines{"delegate", "delegate",
                     "error notifications: Notification authorization failed: no service", "delegate"}));
    using enum NotificationStatus;
    for (const auto status : {authorized, denied, provisional, ephemeral, notDetermined}) {
        desktop.status = status;
        notifier.refreshAuthorization();
        desktop.loop.runPosted();
        EXPECT_EQ(notifier.isAuthorized().get(), status == authorized || status == provisional);
    }
}

TEST(Notifier, postsWithoutWaitingWhateverThePermission) {
    Desktop desktop;
    Notifier notifier(desktop.loop, desktop, desktop, desktop);
    notifier.post("Charging", "64%", "mac");
    EXPECT_TRUE(desktop.log_.empty());
    desktop.loop.runPosted();
    desktop.addError = "quota";
    notifier.post("Buds", "20% left", "AA-BB");
    desktop.loop.runPosted();
    EXPECT_EQ(desktop.log_, (Lines{"kivo.mac|Charging|64%", "kivo.AA-BB|Buds|20% left",
                                   "error notifications: Posting notification failed: quota"}));
}

TEST(Notifier, nothingHappensAfterItsEnd) {
    Desktop desktop;
    {
        Notifier notifier(desktop.loop, desktop, desktop, desktop);
        desktop.authorization.error = "late";
        notifier.requestAuthorization();
        notifier.post("a", "b", "mac");
        notifier.openSettings();
    }
    desktop.loop.runPosted();
    ASSERT_EQ(desktop.log_.size(), 2u);
    EXPECT_TRUE(desktop.log_[1].starts_with(
        "x-apple.systempreferences:com.apple.Notifications-Settings.extension?id="));
}

TEST(SoundPlayer, restartsTheNamedSoundAndSkipsWhatIsUnknown) {
    struct Table : Sounds {
        struct Sound : NamedSound {
            void stop() override { log += "stop "; }
            void play() override { log += "play "; }
            std::string log;
        };
        NamedSound* named(std::string_view name) override {
            const auto it = sounds.find(std::string(name));
            return it == sounds.end() ? nullptr : &it->second;
        }
        std::map<std::string, Sound> sounds{{"Tink", {}}, {"Sosumi", {}}};
    } table;
    SoundPlayer player(table);
    for (const auto& sound : alertSounds)
        player.play(sound.value);
    player.play(AlertSound::tink);
    EXPECT_EQ(table.sounds["Tink"].log, "stop play stop play ");
    EXPECT_EQ(table.sounds["Sosumi"].log, "stop play ");
}
