// SPDX-License-Identifier: MIT
#include "simulated/SimulatedServices.h"

#include <utility>

namespace kivo {

std::optional<std::string> SimulatedLogin::change(std::string_view event, bool isEnabled) {
    auto error = std::exchange(core_.state.login.error, std::nullopt);
    core_.events.record(event, {{"ok", !error.has_value()}});
    if (!error)
        core_.state.login.isEnabled = isEnabled;
    return error;
}

Subscription SimulatedUpdates::observeCanCheckForUpdates(std::function<void()> listener) {
    return listeners_.add(std::move(listener));
}

} // namespace kivo
