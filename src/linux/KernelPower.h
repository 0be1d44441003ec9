// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/Supplies.h"
#include "support/Lifetime.h"
#include "support/MainLoop.h"
#include "support/Observable.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kivo {

// The kernel's own power supplies, for what UPower does not tell and for machines without it. Always read off
// the main thread.
class KernelPower final {
public:
    explicit KernelPower(MainLoop& loop, std::string folder = "/sys/class/power_supply");
    ~KernelPower();

    // Nothing before the first reading.
    const std::optional<Supplies>& supplies() const { return supplies_.get(); }
    // The properties of accessories' HID battery services as the last reading found them; not kept current
    // unless followed.
    const std::vector<Dictionary>& inputDevices() const { return inputDevices_; }
    // Reads once; a call while a reading runs makes it read once more afterwards.
    void read();
    // While following it reads at each event of a power supply and, as not every driver sends events, once a
    // minute.
    void follow(bool isFollowed);

    // After each reading that found something else.
    Subscription onChange(std::function<void()> listener) { return supplies_.onChange(std::move(listener)); }

private:
    struct Monitor;

    void poll();
    void changed();
    void finished(Supplies supplies, std::vector<Dictionary> inputDevices);

    MainLoop& loop_;
    std::string folder_;
    Observable<std::optional<Supplies>> supplies_;
    std::vector<Dictionary> inputDevices_;
    bool isReading_ = false;
    bool isEmpty_ = false; // the last reading found no power supply at all
    bool mustReadAgain_ = false;
    std::unique_ptr<Monitor> monitor_;
    Subscription poll_;
    Subscription settling_;
    Lifetime lifetime_;
};

} // namespace kivo
