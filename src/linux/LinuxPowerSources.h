// SPDX-License-Identifier: MIT
#pragma once

#include "linux/KernelPower.h"
#include "linux/UPower.h"
#include "platform/PowerSources.h"
#include "support/MainLoop.h"
#include "support/Observable.h"

#include <optional>

namespace kivo {

// The computer's battery, from UPower while that is there, else from the kernel, in the system's words. What it
// gives is always a whole picture: while its source starts, stops or is replaced, the last one stands.
class LinuxPowerSources final : public PowerSources {
public:
    LinuxPowerSources(MainLoop& loop, UPower& upower, KernelPower& kernel);

    std::optional<std::vector<PowerSourceDescription>> copyPowerSources() override;
    // After each change of the description or of the battery's properties.
    std::optional<Subscription> notifyPowerSourceChanges(std::function<void()> listener) override;

    // The registry properties of the battery; nothing without one.
    const std::optional<Dictionary>& smartBattery() const { return picture_.smartBattery; }

private:
    struct Picture {
        std::optional<Dictionary> description;
        std::optional<Dictionary> smartBattery;
        bool operator==(const Picture&) const = default;
    };

    void update();
    void updateFromUPower();
    void updateFromKernel();
    void followKernel();
    void readGapsAfterChange(const Supplies& supplies);
    void consider(const Supplies& supplies);
    bool isDoubtful(const Supplies& supplies, const Picture& picture) const;
    void publish(Picture picture);

    MainLoop& loop_;
    UPower& upower_;
    KernelPower& kernel_;
    bool isKnown_ = false;
    Picture picture_;
    Supplies shown_; // what `picture_` was made of
    std::optional<bool> wasOnAdapter_;
    Supplies gapsReadFor_;
    bool followsKernel_ = false;
    bool isGapOverdue_ = false;
    bool isDoubtOver_ = false;
    Listeners listeners_;
    std::optional<Subscription> patience_;
    std::optional<Subscription> gapWait_;
    std::optional<Subscription> doubt_;
    Subscription gapReading_;
    Subscription upowerChanges_;
    Subscription kernelChanges_;
};

} // namespace kivo
