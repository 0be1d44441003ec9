// SPDX-License-Identifier: MIT
#pragma once

#include "platform/MobileDeviceLibrary.h"
#include "simulated/SimulatedCore.h"

#include <map>
#include <string>
#include <vector>

namespace kivo {

// The library for phones and tablets over the devices of the machine's state. References have names there;
// here they are numbered in the order in which they are first seen.
class SimulatedMobileDevices final : public MobileDeviceLibrary {
public:
    explicit SimulatedMobileDevices(SimulatedCore& core) : core_(core) {}

    bool open() override;
    bool hasSymbol(std::string_view name) override;
    void subscribe(std::function<void(MobileDeviceReference, std::uint32_t)> listener) override;
    void retain(MobileDeviceReference device) override;
    void release(MobileDeviceReference device) override;
    std::optional<std::string> copyDeviceIdentifier(MobileDeviceReference device) override;
    int interfaceType(MobileDeviceReference device) override;
    int connect(MobileDeviceReference device) override;
    void disconnect(MobileDeviceReference device) override;
    int isPaired(MobileDeviceReference device) override;
    int validatePairing(MobileDeviceReference device) override;
    int startSession(MobileDeviceReference device) override;
    void stopSession(MobileDeviceReference device) override;
    std::optional<PropertyValue> copyValue(MobileDeviceReference device, std::optional<std::string> domain,
                                           std::optional<std::string> key) override;
    int startService(MobileDeviceReference device, const std::string& service,
                     MobileServiceConnection& connection) override;
    int sendMessage(MobileServiceConnection connection, const Dictionary& message) override;
    int receiveMessage(MobileServiceConnection connection, std::optional<PropertyValue>& reply) override;
    void invalidate(MobileServiceConnection connection) override;

    // The library tells its subscriber: 1 connected, 2 disconnected, others mean nothing. An empty name is the
    // reference 0. Keeps the machine's list of attached devices.
    void deliver(const std::string& name, std::uint32_t code);
    // The process that subscribed has ended.
    void endProcess();

private:
    struct Connection {
        MobileDeviceReference device = 0;
        std::size_t sent = 0;    // messages answered so far
        bool isAnswered = false; // a reply waits to be received
        PropertyValue reply;
    };

    MobileDeviceReference reference(const std::string& name);
    const std::string& nameOf(MobileDeviceReference device) const;
    const MobileDeviceState* state(MobileDeviceReference device) const;
    void recordCall(std::string_view entryPoint, MobileDeviceReference device, Dictionary more = {});
    int call(std::string_view entryPoint, MobileDeviceReference device, int MobileDeviceState::*result);
    Connection* find(MobileServiceConnection connection);

    SimulatedCore& core_;
    std::vector<std::string> names_;
    std::function<void(MobileDeviceReference, std::uint32_t)> listener_;
    std::map<MobileServiceConnection, Connection> connections_;
    MobileServiceConnection nextConnection_ = 1;
};

} // namespace kivo
