// SPDX-License-Identifier: MIT
#pragma once

#include "platform/UpdateService.h"

namespace kivo {

// An installation that is updated from outside.
class AbsentUpdateService final : public UpdateService {
public:
    void start() override {}
    bool canCheckForUpdates() override { return false; }
    Subscription observeCanCheckForUpdates(std::function<void()>) override { return {}; }
    void checkForUpdates() override {}
    bool automaticallyChecksForUpdates() override { return false; }
    void setAutomaticallyChecksForUpdates(bool) override {}
};

} // namespace kivo
