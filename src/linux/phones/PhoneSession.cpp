// SPDX-License-Identifier: MIT
#include "linux/phones/PhoneSession.h"

#include "linux/phones/PropertyListText.h"

#include <cstdlib>
#include <utility>

namespace kivo {
namespace {

constexpr const char* label = "kivo";
constexpr int failure = -1;
constexpr int noPairingRecord = -20; // the library's own "missing host id"
// The reply's first byte must come within this time.
constexpr unsigned replyMilliseconds = 5000;

} // namespace

PhoneSession::PhoneSession(const PhoneLibrary& library, std::string identifier, bool isNetwork)
    : library_(library), identifier_(std::move(identifier)), isNetwork_(isNetwork) {}

int PhoneSession::connect() {
    return library_.deviceNew(&device_, identifier_.c_str(),
                              isNetwork_ ? PhoneLibrary::lookUpNetwork : PhoneLibrary::lookUpUsb);
}

void PhoneSession::disconnect() {
    invalidate();
    stopSession();
    if (device_)
        library_.deviceFree(std::exchange(device_, nullptr));
}

int PhoneSession::isPaired() {
    char* record = nullptr;
    std::uint32_t size = 0;
    const int status = library_.readPairRecord(identifier_.c_str(), &record, &size);
    std::free(record);
    return status == 0 ? 1 : 0;
}

int PhoneSession::validatePairing() {
    return isPaired() != 0 ? 0 : noPairingRecord;
}

int PhoneSession::startSession() {
    if (!device_)
        return failure;
    if (isPaired() == 0)
        return noPairingRecord;
    return library_.clientNewWithHandshake(device_, &client_, label);
}

void PhoneSession::stopSession() {
    if (client_)
        library_.clientFree(std::exchange(client_, nullptr));
}

std::optional<PropertyValue> PhoneSession::copyValue(const char* domain, const char* key) {
    // It may report success and give no value.
    PhoneLibrary::Value value = nullptr;
    if (!client_ || library_.getValue(client_, domain, key, &value) != 0)
        return std::nullopt;
    return take(value);
}

int PhoneSession::startService(const char* name) {
    if (!client_ || service_)
        return failure;
    PhoneLibrary::Descriptor descriptor = nullptr;
    int status = library_.startService(client_, name, &descriptor);
    if (status == 0)
        status = library_.serviceNew(device_, descriptor, &service_);
    if (descriptor)
        library_.descriptorFree(descriptor);
    return status;
}

int PhoneSession::sendMessage(const Dictionary& message) {
    const auto text = propertylist::write(message);
    PhoneLibrary::Value value = nullptr;
    library_.valueFromXml(text.data(), static_cast<std::uint32_t>(text.size()), &value);
    if (!service_ || !value)
        return failure;
    const int status = library_.serviceSend(service_, value);
    library_.valueFree(value);
    return status;
}

int PhoneSession::receiveMessage(std::optional<PropertyValue>& reply) {
    PhoneLibrary::Value value = nullptr;
    if (!service_)
        return failure;
    const int status = library_.serviceReceive(service_, &value, replyMilliseconds);
    reply = take(value);
    return status;
}

void PhoneSession::invalidate() {
    if (service_)
        library_.serviceFree(std::exchange(service_, nullptr));
}

std::optional<PropertyValue> PhoneSession::take(PhoneLibrary::Value value) {
    if (!value)
        return std::nullopt;
    char* text = nullptr;
    std::uint32_t size = 0;
    library_.valueToXml(value, &text, &size);
    library_.valueFree(value);
    std::optional<PropertyValue> result;
    try {
        if (text)
            result = propertylist::parse({text, size});
    } catch (const DecodingError&) {
        // Too large or too deep to be what was asked for.
    }
    std::free(text);
    return result;
}

} // namespace kivo
