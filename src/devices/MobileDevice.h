// SPDX-License-Identifier: MIT
#pragma once

#include "devices/PowerDevice.h"
#include "platform/MobileDeviceLibrary.h"
#include "support/Log.h"

#include <functional>
#include <optional>
#include <string>

namespace kivo {

// A connected phone or tablet. Plain data: whoever stores a handle owns a retain on `raw` and says so.
struct DeviceHandle {
    MobileDeviceReference raw = 0;
    std::string identifier;
    bool isWiFi = false; // reached over the network

    bool operator==(const DeviceHandle&) const = default;
};

// The layer over the library that talks to phones and tablets: finds its entry points once, turns its
// notifications into two messages, and reads one device completely. Decides nothing about which to keep.
// A copy shares nothing but the library, so that a reading off the main thread works on a copy of its own.
class MobileDevice {
public:
    // What the library reports, on the main thread. A connected handle comes with one retain, which the
    // receiver owns; a disconnected one comes with none.
    struct Receiver {
        std::function<void(const DeviceHandle&)> connected;
        std::function<void(const DeviceHandle&)> disconnected;
    };

    MobileDevice(MobileDeviceLibrary& library, LogSink& log);

    // Whether the library is there with all its entry points. Looks once and logs what is missing.
    bool load();
    // Reports the devices that are attached, and then every change, for the rest of the process. Does nothing
    // without the entry points.
    void subscribe(Receiver receiver);

    void retain(const DeviceHandle& handle) { library_->retain(handle.raw); }
    void release(const DeviceHandle& handle) { library_->release(handle.raw); }

    // One complete reading; nothing when the device cannot be read. Blocks in the library and is meant for a
    // background job, during which the caller keeps the reference retained.
    std::optional<PowerDevice> read(const DeviceHandle& handle);

private:
    bool isTrusted(MobileDeviceReference device);
    std::optional<PowerDevice> readInSession(const DeviceHandle& handle);
    std::string copyText(MobileDeviceReference device, std::string key, std::string fallback);
    std::optional<Dictionary> queryBatteryRegistry(MobileDeviceReference device);
    std::optional<Dictionary> ask(MobileServiceConnection connection, const Dictionary& request);

    MobileDeviceLibrary* library_;
    Logger logger_;
    std::optional<bool> isLoaded_;
};

} // namespace kivo
