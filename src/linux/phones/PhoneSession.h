// SPDX-License-Identifier: MIT
#pragma once

#include "linux/phones/PhoneLibrary.h"
#include "support/PropertyValue.h"

#include <optional>
#include <string>

namespace kivo {

// One phone by way of the library, in the steps of MobileDeviceLibrary. Any call may take for ever, use all
// memory or end the process: only ever used in a helper that is limited in all three.
class PhoneSession {
public:
    PhoneSession(const PhoneLibrary& library, std::string identifier, bool isNetwork);
    ~PhoneSession() { disconnect(); }
    PhoneSession(const PhoneSession&) = delete;
    PhoneSession& operator=(const PhoneSession&) = delete;

    // Each gives 0 or the library's error.
    int connect();
    void disconnect();
    // Non-zero when the user has once trusted this computer on the phone.
    int isPaired();
    // Since iOS 7 beginning a session is the validation, so here it is that there still is a record.
    int validatePairing();
    // Never without a pairing record: the library would then ask for trust on the phone.
    int startSession();
    void stopSession();
    std::optional<PropertyValue> copyValue(const char* domain, const char* key);
    int startService(const char* name);
    int sendMessage(const Dictionary& message);
    int receiveMessage(std::optional<PropertyValue>& reply);
    void invalidate();

private:
    // Frees the library's value.
    std::optional<PropertyValue> take(PhoneLibrary::Value value);

    const PhoneLibrary& library_;
    std::string identifier_;
    bool isNetwork_;
    PhoneLibrary::Device device_ = nullptr;
    PhoneLibrary::Client client_ = nullptr;
    PhoneLibrary::Service service_ = nullptr;
};

} // namespace kivo
