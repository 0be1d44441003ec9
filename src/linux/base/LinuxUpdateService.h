// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/UpdateFeed.h"
#include "platform/UpdateFinding.h"
#include "platform/UpdateService.h"
#include "support/Lifetime.h"
#include "support/Log.h"
#include "support/MainLoop.h"
#include "support/Observable.h"

#include <optional>
#include <string>

namespace kivo {

class ProcessRunner;
class UserDefaults;

// Looks for new versions where the makers of this installation's packages announce them: once a day, and when
// its user asks. Fetching the feed and checking its signature is the work of a short-lived program, so that
// nothing of it stays in this process. Nothing is ever downloaded and run: what is found is told.
// Without an address and a key it does nothing at all, and no check is possible.
class LinuxUpdateService final : public UpdateService {
public:
    struct Source {
        std::string address; // of the feed: https, file, or http on this computer
        std::string key;     // its Ed25519 public key, base64
        std::string version; // the one that runs
        std::string program; // the path of the program that reads the feed
    };
    // What the others give must outlive it.
    LinuxUpdateService(MainLoop& loop, ProcessRunner& runner, UserDefaults& defaults, LogSink& log,
                       Source source);

    bool isAvailable() override { return version_.has_value(); }
    void start() override;
    bool canCheckForUpdates() override;
    Subscription observeCanCheckForUpdates(std::function<void()> listener) override;
    // A check that its user asked for tells whatever it finds.
    void checkForUpdates() override;
    // Kept across launches; true until somebody turns it off.
    bool automaticallyChecksForUpdates() override;
    void setAutomaticallyChecksForUpdates(bool isAutomatic) override;

    // The daily check does not tell of this version any more.
    void skip(const std::string& version);

    // Gets what a check found: of the daily one only a new version.
    std::function<void(const UpdateFinding& finding)> onFinding;

private:
    void check(bool isManual);
    void finish(const std::optional<std::string>& output);
    UpdateFinding judge(const std::optional<std::string>& output);
    void planNext(double secondsFromNow);
    void schedule();

    MainLoop& loop_;
    ProcessRunner& runner_;
    UserDefaults& defaults_;
    Logger logger_;
    Source source_;
    std::optional<Version> version_; // absent: off
    Listeners listeners_;
    bool isStarted_ = false;
    bool isChecking_ = false;
    bool isManual_ = false;
    Subscription timer_;
    Lifetime lifetime_;
};

} // namespace kivo
