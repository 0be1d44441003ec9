// SPDX-License-Identifier: MIT
#include "linux/KernelPower.h"

#include "linux/base/Accessories.h"
#include "linux/base/KernelSupplies.h"

#include <QSocketNotifier>

#include <libudev.h>
#include <unistd.h>
#include <utility>

namespace kivo {
namespace {

using namespace std::chrono_literals;

constexpr Duration pollDelay = 60s;
// A battery's controller takes up to some seconds to notice that its adapter changed.
constexpr Duration settlingDelay = 2s;

} // namespace

// The events of power supplies, from the device manager or, where none runs, from the kernel itself.
struct KernelPower::Monitor {
    explicit Monitor(std::function<void()> changed) {
        const char* source = access("/run/udev/control", F_OK) == 0 ? "udev" : "kernel";
        if (context)
            monitor = udev_monitor_new_from_netlink(context, source);
        if (!monitor || udev_monitor_filter_add_match_subsystem_devtype(monitor, "power_supply", nullptr) < 0 ||
            udev_monitor_enable_receiving(monitor) < 0)
            return;
        notifier = std::make_unique<QSocketNotifier>(udev_monitor_get_fd(monitor), QSocketNotifier::Read);
        QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(),
                         [this, changed = std::move(changed)] {
                             if (auto* device = udev_monitor_receive_device(monitor)) {
                                 udev_device_unref(device);
                                 changed();
                             }
                         });
    }
    ~Monitor() {
        notifier.reset();
        udev_monitor_unref(monitor);
        udev_unref(context);
    }
    Monitor(const Monitor&) = delete;
    Monitor& operator=(const Monitor&) = delete;

    udev* context = udev_new();
    udev_monitor* monitor = nullptr;
    std::unique_ptr<QSocketNotifier> notifier;
};

KernelPower::KernelPower(MainLoop& loop, std::string folder) : loop_(loop), folder_(std::move(folder)) {}

KernelPower::~KernelPower() = default;

void KernelPower::read() {
    if (isReading_) {
        mustReadAgain_ = true;
        return;
    }
    isReading_ = true;
    auto take = lifetime_.guard(
        [this](bool isEmpty, const Supplies& supplies, const std::vector<Dictionary>& inputDevices) {
            isEmpty_ = isEmpty;
            finished(supplies, inputDevices);
        });
    loop_.background([folder = folder_, take = std::move(take)]() -> MainLoop::Continuation {
        const auto all = readKernelSupplies(folder);
        return [take, isEmpty = all.empty(), supplies = suppliesFromKernel(all),
                inputDevices = inputDeviceProperties(all)] { take(isEmpty, supplies, inputDevices); };
    });
}

void KernelPower::finished(Supplies supplies, std::vector<Dictionary> inputDevices) {
    inputDevices_ = std::move(inputDevices);
    isReading_ = false;
    if (std::exchange(mustReadAgain_, false))
        read();
    supplies_.set(std::move(supplies));
}

void KernelPower::follow(bool isFollowed) {
    if (isFollowed == static_cast<bool>(monitor_))
        return;
    settling_.cancel();
    poll_.cancel();
    monitor_.reset();
    if (!isFollowed)
        return;
    monitor_ = std::make_unique<Monitor>([this] { changed(); });
    poll();
}

void KernelPower::poll() {
    // What is not there is announced when it comes.
    if (!isEmpty_ || !monitor_->notifier)
        read();
    poll_ = loop_.after(
        pollDelay, [this] { poll(); }, MainLoop::Precision::coarse);
}

void KernelPower::changed() {
    read();
    settling_ = loop_.after(settlingDelay, [this] { read(); });
}

} // namespace kivo
