// SPDX-License-Identifier: MIT
#include "devices/IOSDeviceMonitor.h"

#include "platform/UserDefaults.h"
#include "support/Json.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace kivo {
namespace {

constexpr const char* rememberedKey = "iosDevices.remembered.v1";
constexpr const char* idPrefix = "ios-";
constexpr double secondsShownFromMemory = 7 * 24 * 3600;
constexpr Duration pollInterval = std::chrono::seconds(60);

void sortByName(std::vector<PowerDevice>& devices) {
    std::stable_sort(devices.begin(), devices.end(),
                     [](const PowerDevice& a, const PowerDevice& b) { return a.name < b.name; });
}

std::unordered_set<std::string> ids(const std::vector<PowerDevice>& devices) {
    std::unordered_set<std::string> result;
    for (const auto& device : devices)
        result.insert(device.id);
    return result;
}

} // namespace

// One round of readings over the handles that were there when it began.
struct IOSDeviceMonitor::Pass {
    std::vector<DeviceHandle> handles; // each retained until the pass ends
    std::size_t next = 0;
    Devices collected;
    std::function<void()> done;
};

IOSDeviceMonitor::IOSDeviceMonitor(MainLoop& loop, MobileDeviceLibrary& library, UserDefaults& defaults,
                                   LogSink& log)
    : loop_(loop), defaults_(defaults), bridge_(library, log), remembered_(loadRemembered()) {
    recomputeDevices();
}

void IOSDeviceMonitor::start() {
    if (isStarted_ || !bridge_.load())
        return;
    isStarted_ = true;
    bridge_.subscribe({
        .connected = lifetime_.guard([this](const DeviceHandle& handle) { handleConnected(handle); }),
        .disconnected = lifetime_.guard([this](const DeviceHandle& handle) { handleDisconnected(handle); }),
    });
    schedulePoll();
}

void IOSDeviceMonitor::schedulePoll() {
    poll_ = loop_.after(
        pollInterval, [this] { readPass([this] { schedulePoll(); }); }, MainLoop::Precision::coarse);
}

void IOSDeviceMonitor::handleConnected(const DeviceHandle& handle) {
    const auto known = handles_.find(handle.identifier);
    if (known != handles_.end()) {
        if (handle.isWiFi && !known->second.isWiFi) {
            bridge_.release(handle);
            return;
        }
        bridge_.release(known->second);
    }
    handles_[handle.identifier] = handle;
    loop_.post(lifetime_.guard([this] { readPass(); }));
}

void IOSDeviceMonitor::handleDisconnected(const DeviceHandle& handle) {
    const auto known = handles_.find(handle.identifier);
    // The end of a network connection says nothing about the cable that has replaced it.
    if (known == handles_.end() || known->second.raw != handle.raw)
        return;
    const auto gone = known->second;
    handles_.erase(known);
    bridge_.release(gone);

    const auto id = idPrefix + gone.identifier;
    auto live = live_.get();
    const auto isGone = [&id](const PowerDevice& device) { return device.id == id; };
    if (const auto found = std::find_if(live.begin(), live.end(), isGone); found != live.end()) {
        auto memory = remembered_.get();
        auto& copy = memory[id] = *found;
        copy.lastSeen = loop_.date();
        copy.isCharging = false;
        copy.connection.reset();
        remembered_.set(std::move(memory));
        saveRemembered();
        live.erase(std::remove_if(live.begin(), live.end(), isGone), live.end());
        live_.set(std::move(live));
    }
    recomputeDevices();
    notifyChange();
}

// `done` runs when this pass has ended, or at once when one is running already.
void IOSDeviceMonitor::readPass(std::function<void()> done) {
    if (isReading_) {
        needsAnotherPass_ = true;
        if (done)
            done();
        return;
    }
    isReading_ = true;
    const auto pass = std::make_shared<Pass>();
    pass->done = std::move(done);
    for (const auto& [identifier, handle] : handles_) {
        bridge_.retain(handle);
        pass->handles.push_back(handle);
    }
    readNext(pass);
}

void IOSDeviceMonitor::readNext(const std::shared_ptr<Pass>& pass) {
    if (pass->next == pass->handles.size()) {
        finish(*pass);
        return;
    }
    const auto& handle = pass->handles[pass->next++];
    const auto takeReading = lifetime_.guard([this, pass](std::optional<PowerDevice> device) {
        if (device)
            pass->collected.push_back(std::move(*device));
        readNext(pass);
    });
    loop_.background([bridge = bridge_, handle, takeReading]() mutable -> MainLoop::Continuation {
        return [device = bridge.read(handle), takeReading] { takeReading(device); };
    });
}

void IOSDeviceMonitor::finish(Pass& pass) {
    auto result = std::move(pass.collected);
    const auto isDetached = [this](const PowerDevice& device) {
        return !handles_.contains(device.id.substr(std::string_view(idPrefix).size()));
    };
    result.erase(std::remove_if(result.begin(), result.end(), isDetached), result.end());
    sortByName(result);
    if (result != live_.get())
        takeIn(std::move(result));
    for (const auto& handle : pass.handles)
        bridge_.release(handle);
    isReading_ = false;
    if (std::exchange(needsAnotherPass_, false))
        loop_.post(lifetime_.guard([this] { readPass(); }));
    if (pass.done)
        pass.done();
}

void IOSDeviceMonitor::takeIn(Devices result) {
    auto memory = remembered_.get();
    for (const auto& device : result)
        memory[device.id] = device;
    live_.set(std::move(result));
    remembered_.set(std::move(memory));
    recomputeDevices();
    saveRemembered();
    notifyChange();
}

void IOSDeviceMonitor::forget(const PowerDevice& device) {
    auto memory = remembered_.get();
    memory.erase(device.id);
    remembered_.set(std::move(memory));
    recomputeDevices();
    saveRemembered();
    notifyChange();
}

void IOSDeviceMonitor::recomputeDevices() {
    const auto liveIds = ids(live_.get());
    const auto now = loop_.date();
    Devices kept;
    for (const auto& [id, device] : remembered_.get()) {
        const auto lastSeen = device.lastSeen.value_or(now);
        if (liveIds.contains(id) || lastSeen <= now - secondsShownFromMemory)
            continue;
        auto& shown = kept.emplace_back(device);
        shown.lastSeen = lastSeen;
        shown.isCharging = false;
        shown.connection.reset();
    }
    sortByName(kept);
    auto all = live_.get();
    all.insert(all.end(), std::make_move_iterator(kept.begin()), std::make_move_iterator(kept.end()));
    devices_.set(std::move(all));
}

void IOSDeviceMonitor::saveRemembered() {
    const auto liveIds = ids(live_.get());
    Devices list;
    for (const auto& [id, device] : remembered_.get()) {
        auto& stored = list.emplace_back(device);
        if (!stored.lastSeen && !liveIds.contains(id))
            stored.lastSeen = loop_.date();
    }
    defaults_.set(rememberedKey, PropertyValue::Data{json::write(encode(list))});
}

IOSDeviceMonitor::Memory IOSDeviceMonitor::loadRemembered() {
    const auto stored = defaults_.value(rememberedKey);
    const auto* data = stored ? stored->data() : nullptr;
    if (!data)
        return {};
    Memory memory;
    try {
        for (auto& device : decodePowerDevices(json::parse(data->bytes))) {
            if (!device.lastSeen)
                device.lastSeen = loop_.date();
            memory.insert_or_assign(device.id, std::move(device));
        }
    } catch (const DecodingError&) {
        return {};
    }
    return memory;
}

void IOSDeviceMonitor::notifyChange() {
    if (onChange)
        onChange();
}

} // namespace kivo
