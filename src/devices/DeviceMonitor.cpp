// SPDX-License-Identifier: MIT
#include "devices/DeviceMonitor.h"

#include <algorithm>
#include <utility>

namespace kivo {
namespace {

constexpr Duration pollInterval = std::chrono::seconds(30);

} // namespace

DeviceMonitor::DeviceMonitor(MainLoop& loop, AccessorySources& accessories, DeviceRegistry& registry,
                             MobileDeviceLibrary& mobileDevices, UserDefaults& defaults, LogSink& log)
    : loop_(loop), reader_(accessories, registry, log), ios_(loop, mobileDevices, defaults, log) {}

void DeviceMonitor::start() {
    if (isStarted_)
        return;
    isStarted_ = true;
    ios_.onChange = [this] { refresh(); };
    ios_.start();
    loop_.post(lifetime_.guard([this] { poll(); }));
}

void DeviceMonitor::poll() {
    refresh();
    poll_ = loop_.after(
        pollInterval, [this] { poll(); }, MainLoop::Precision::coarse);
}

void DeviceMonitor::refresh() {
    auto merged = reader_.readAccessories();
    const auto& mobile = ios_.devices().get();
    merged.insert(merged.end(), mobile.begin(), mobile.end());
    std::stable_sort(merged.begin(), merged.end(),
                     [](const PowerDevice& a, const PowerDevice& b) { return a.level < b.level; });

    const bool isFirst = hasLoaded_.set(true);
    if (!isFirst && merged == devices_.get())
        return;
    const auto previous = isFirst ? std::nullopt : std::optional(devices_.get());
    devices_.set(merged);
    if (onChange)
        onChange(previous, merged);
}

} // namespace kivo
