// SPDX-License-Identifier: MIT
#include "linux/LinuxAccessorySources.h"

namespace kivo {
namespace {

using namespace std::chrono_literals;

// Longer than the time between two polls of the list, so that a restart of UPower disconnects nothing.
constexpr Duration patience = 45s;

} // namespace

std::optional<std::vector<PowerSourceDescription>> LinuxAccessorySources::copyAccessorySources() {
    if (upower_.availability() == UPower::Availability::present) {
        const auto descriptions = accessories_.read(upower_.devices());
        last_.emplace(descriptions.begin(), descriptions.end());
        lastAt_ = loop_.now();
    } else if (loop_.now() - lastAt_ > patience) {
        last_.reset();
    }
    return last_;
}

} // namespace kivo
