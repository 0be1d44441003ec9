// SPDX-License-Identifier: MIT
#pragma once

#include "platform/MobileDeviceLibrary.h"

namespace kivo {

// A machine without the library for phones and tablets: it cannot be opened, so nothing else is ever asked.
class AbsentMobileDevices final : public MobileDeviceLibrary {
public:
    bool open() override { return false; }
    bool hasSymbol(std::string_view) override { return false; }
    void subscribe(std::function<void(MobileDeviceReference, std::uint32_t)>) override {}
    void retain(MobileDeviceReference) override {}
    void release(MobileDeviceReference) override {}
    std::optional<std::string> copyDeviceIdentifier(MobileDeviceReference) override { return std::nullopt; }
    int interfaceType(MobileDeviceReference) override { return 0; }
    int connect(MobileDeviceReference) override { return failure; }
    void disconnect(MobileDeviceReference) override {}
    int isPaired(MobileDeviceReference) override { return 0; }
    int validatePairing(MobileDeviceReference) override { return failure; }
    int startSession(MobileDeviceReference) override { return failure; }
    void stopSession(MobileDeviceReference) override {}
    std::optional<PropertyValue> copyValue(MobileDeviceReference, std::optional<std::string>,
                                           std::optional<std::string>) override {
        return std::nullopt;
    }
    int startService(MobileDeviceReference, const std::string&, MobileServiceConnection&) override {
        return failure;
    }
    int sendMessage(MobileServiceConnection, const Dictionary&) override { return failure; }
    int receiveMessage(MobileServiceConnection, std::optional<PropertyValue>&) override { return failure; }
    void invalidate(MobileServiceConnection) override {}

private:
    static constexpr int failure = -1;
};

} // namespace kivo
