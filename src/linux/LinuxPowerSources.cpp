// SPDX-License-Identifier: MIT
#include "linux/LinuxPowerSources.h"

#include "linux/base/PowerDescription.h"

#include <algorithm>
#include <utility>

namespace kivo {
namespace {

using namespace std::chrono_literals;

// How long UPower may take to start or to come back before the kernel is asked instead.
constexpr Duration upowerPatience = 3s;
// How long the first picture waits for what only the kernel knows.
constexpr Duration gapPatience = 1s;
// What a change brings about, such as an alert, goes before what the kernel adds to it.
constexpr Duration gapDelay = 100ms;
// How long a reading must last that is more likely a fault: UPower takes its batteries down before itself.
constexpr Duration doubtDelay = 1s;
// A battery does not fall from here to nothing.
constexpr std::int64_t leastLevelBeforeEmpty = 15;

auto presentCount(const Supplies& supplies) {
    return std::count_if(supplies.batteries.begin(), supplies.batteries.end(),
                         [](const BatterySupply& battery) { return battery.isPresent; });
}

std::optional<std::int64_t> level(const std::optional<Dictionary>& description) {
    return description ? find(*description, "Current Capacity")->integer() : std::nullopt;
}

bool statesDiffer(const Supplies& left, const Supplies& right) {
    return left.adapters != right.adapters ||
           !std::equal(left.batteries.begin(), left.batteries.end(), right.batteries.begin(),
                       right.batteries.end(), [](const BatterySupply& one, const BatterySupply& other) {
                           return one.name == other.name && one.state == other.state &&
                                  one.isPresent == other.isPresent;
                       });
}

} // namespace

LinuxPowerSources::LinuxPowerSources(MainLoop& loop, UPower& upower, KernelPower& kernel)
    : loop_(loop), upower_(upower), kernel_(kernel) {
    upowerChanges_ = upower_.onChange([this] { update(); });
    kernelChanges_ = kernel_.onChange([this] { update(); });
    kernel_.read();
    update();
}

std::optional<std::vector<PowerSourceDescription>> LinuxPowerSources::copyPowerSources() {
    if (!isKnown_)
        return std::nullopt;
    std::vector<PowerSourceDescription> sources;
    if (picture_.description)
        sources.push_back(picture_.description);
    return sources;
}

std::optional<Subscription> LinuxPowerSources::notifyPowerSourceChanges(std::function<void()> listener) {
    return listeners_.add(std::move(listener));
}

void LinuxPowerSources::update() {
    if (upower_.availability() == UPower::Availability::present)
        updateFromUPower();
    else
        updateFromKernel();
}

void LinuxPowerSources::updateFromUPower() {
    patience_.reset();
    if (std::exchange(followsKernel_, false))
        kernel_.follow(false);
    auto supplies = suppliesFromUPower(upower_.devices());
    if (kernel_.supplies()) {
        fillGaps(supplies, *kernel_.supplies());
    } else if (!isGapOverdue_) {
        if (!gapWait_) {
            gapWait_ = loop_.after(gapPatience, [this] {
                isGapOverdue_ = true;
                update();
            });
        }
        return;
    }
    gapWait_.reset();
    consider(supplies);
    readGapsAfterChange(supplies);
}

void LinuxPowerSources::updateFromKernel() {
    if (!followsKernel_) {
        const bool isCertain = upower_.availability() == UPower::Availability::absent && !isKnown_;
        if (!isCertain) {
            if (!patience_)
                patience_ = loop_.after(upowerPatience, [this] { followKernel(); });
            return;
        }
        followKernel();
    }
    if (kernel_.supplies())
        consider(*kernel_.supplies());
}

void LinuxPowerSources::followKernel() {
    followsKernel_ = true;
    kernel_.follow(true);
    if (kernel_.supplies())
        consider(*kernel_.supplies());
}

// The limit, the current and the like change when the state does; asking the hardware each time would cost
// more than it tells.
void LinuxPowerSources::readGapsAfterChange(const Supplies& supplies) {
    if (!statesDiffer(supplies, gapsReadFor_))
        return;
    gapsReadFor_ = supplies;
    gapReading_ = loop_.after(gapDelay, [this] { kernel_.read(); });
}

void LinuxPowerSources::consider(const Supplies& supplies) {
    const bool isOnAdapter = runsOnAdapter(supplies).value_or(wasOnAdapter_.value_or(false));
    Picture picture{internalBatteryDescription(supplies, isOnAdapter),
                    smartBatteryProperties(supplies, isOnAdapter)};
    // A battery that does not tell its level just now is no news.
    if (!picture.description && presentCount(supplies) > 0)
        return;
    if (isDoubtful(supplies, picture) && !isDoubtOver_) {
        if (!doubt_) {
            doubt_ = loop_.after(doubtDelay, [this] {
                // What cannot be told just now is doubted anew.
                doubt_.reset();
                isDoubtOver_ = true;
                update();
                isDoubtOver_ = false;
            });
        }
        return;
    }
    doubt_.reset();
    wasOnAdapter_ = isOnAdapter;
    shown_ = supplies;
    publish(std::move(picture));
}

bool LinuxPowerSources::isDoubtful(const Supplies& supplies, const Picture& picture) const {
    if (!isKnown_)
        return false;
    return presentCount(supplies) < presentCount(shown_) ||
           (level(picture.description) == 0 && level(picture_.description).value_or(0) > leastLevelBeforeEmpty);
}

void LinuxPowerSources::publish(Picture picture) {
    if (std::exchange(isKnown_, true) && picture == picture_)
        return;
    picture_ = std::move(picture);
    listeners_.notify();
}

} // namespace kivo
