// SPDX-License-Identifier: MIT
#pragma once

#include "support/PropertyValue.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kivo {

// A reference to a mobile device as the library hands it out; 0 is none. Never dereferenced here.
using MobileDeviceReference = std::uint64_t;
using MobileServiceConnection = std::uint64_t;

// The library that talks to phones and tablets: fourteen entry points found by name at run time. The calls on
// a device may take long; they are made inside MainLoop::background and block only there. Where nothing else is
// said a status is 0 on success.
class MobileDeviceLibrary {
public:
    // In the order in which they are looked up.
    static constexpr std::array<std::string_view, 14> entryPoints = {
        "AMDeviceNotificationSubscribe",
        "AMDeviceConnect",
        "AMDeviceDisconnect",
        "AMDeviceIsPaired",
        "AMDeviceValidatePairing",
        "AMDeviceStartSession",
        "AMDeviceStopSession",
        "AMDeviceCopyValue",
        "AMDeviceCopyDeviceIdentifier",
        "AMDeviceGetInterfaceType",
        "AMDeviceSecureStartService",
        "AMDServiceConnectionSendMessage",
        "AMDServiceConnectionReceiveMessage",
        "AMDServiceConnectionInvalidate",
    };

    virtual ~MobileDeviceLibrary() = default;

    // Whether the library itself is there.
    virtual bool open() = 0;
    // Whether it has the entry point of this name.
    virtual bool hasSymbol(std::string_view name) = 0;

    // Subscribes for the rest of the process; devices already attached are reported right afterwards. The
    // listener runs on the main thread with the library's message code (1 connected, 2 disconnected, others
    // mean nothing) and may get the reference 0.
    virtual void subscribe(std::function<void(MobileDeviceReference, std::uint32_t code)> listener) = 0;

    // A reference stays valid while it is retained; from any thread.
    virtual void retain(MobileDeviceReference device) = 0;
    virtual void release(MobileDeviceReference device) = 0;
    virtual std::optional<std::string> copyDeviceIdentifier(MobileDeviceReference device) = 0;
    virtual int interfaceType(MobileDeviceReference device) = 0; // 2: network

    virtual int connect(MobileDeviceReference device) = 0;
    virtual void disconnect(MobileDeviceReference device) = 0;
    virtual int isPaired(MobileDeviceReference device) = 0; // 0: it is not
    virtual int validatePairing(MobileDeviceReference device) = 0;
    virtual int startSession(MobileDeviceReference device) = 0;
    virtual void stopSession(MobileDeviceReference device) = 0;
    // Absent domain or key: all. Nothing when the device gives no value.
    virtual std::optional<PropertyValue> copyValue(MobileDeviceReference device,
                                                   std::optional<std::string> domain,
                                                   std::optional<std::string> key) = 0;
    // 0 and a connection on success.
    virtual int startService(MobileDeviceReference device, const std::string& service,
                             MobileServiceConnection& connection) = 0;
    virtual int sendMessage(MobileServiceConnection connection, const Dictionary& message) = 0;
    // 0 on success; the reply may still be absent.
    virtual int receiveMessage(MobileServiceConnection connection, std::optional<PropertyValue>& reply) = 0;
    virtual void invalidate(MobileServiceConnection connection) = 0;
};

} // namespace kivo
