// SPDX-License-Identifier: MIT
#include "simulated/SimulatedMobileDevices.h"

#include <algorithm>
#include <utility>

namespace kivo {
namespace {

constexpr int failure = -1;

} // namespace

bool SimulatedMobileDevices::open() {
    return !core_.state.isMissing("MobileDevice.framework");
}

bool SimulatedMobileDevices::hasSymbol(std::string_view name) {
    return !core_.state.isMissing(name);
}

void SimulatedMobileDevices::subscribe(std::function<void(MobileDeviceReference, std::uint32_t)> listener) {
    core_.events.record("mobile.subscribe");
    listener_ = std::move(listener);
    core_.loop.post([this] {
        for (const std::string& name : std::vector(core_.state.attached)) {
            if (listener_)
                listener_(reference(name), 1);
        }
    });
}

void SimulatedMobileDevices::retain(MobileDeviceReference device) {
    core_.events.record("mobile.retain", {{"device", nameOf(device)}});
}

void SimulatedMobileDevices::release(MobileDeviceReference device) {
    core_.events.record("mobile.release", {{"device", nameOf(device)}});
}

std::optional<std::string> SimulatedMobileDevices::copyDeviceIdentifier(MobileDeviceReference device) {
    recordCall("AMDeviceCopyDeviceIdentifier", device);
    const auto* found = state(device);
    return found ? found->identifier : std::nullopt;
}

int SimulatedMobileDevices::interfaceType(MobileDeviceReference device) {
    return call("AMDeviceGetInterfaceType", device, &MobileDeviceState::interfaceType);
}

int SimulatedMobileDevices::connect(MobileDeviceReference device) {
    // Every read begins here, so this is where it takes its time.
    if (const auto* found = state(device))
        core_.loop.spend(seconds(found->readSeconds));
    return call("AMDeviceConnect", device, &MobileDeviceState::connectStatus);
}

void SimulatedMobileDevices::disconnect(MobileDeviceReference device) {
    recordCall("AMDeviceDisconnect", device);
}

int SimulatedMobileDevices::isPaired(MobileDeviceReference device) {
    return call("AMDeviceIsPaired", device, &MobileDeviceState::isPaired);
}

int SimulatedMobileDevices::validatePairing(MobileDeviceReference device) {
    return call("AMDeviceValidatePairing", device, &MobileDeviceState::validateStatus);
}

int SimulatedMobileDevices::startSession(MobileDeviceReference device) {
    return call("AMDeviceStartSession", device, &MobileDeviceState::sessionStatus);
}

void SimulatedMobileDevices::stopSession(MobileDeviceReference device) {
    recordCall("AMDeviceStopSession", device);
}

std::optional<PropertyValue> SimulatedMobileDevices::copyValue(MobileDeviceReference device,
                                                               std::optional<std::string> domain,
                                                               std::optional<std::string> key) {
    recordCall("AMDeviceCopyValue", device, {{"domain", domain}, {"key", key}});
    const auto* found = state(device);
    if (!found)
        return std::nullopt;
    const auto values = found->values.find(domain.value_or(""));
    if (values == found->values.end())
        return std::nullopt;
    if (!key)
        return PropertyValue(values->second);
    const auto* value = kivo::find(values->second, *key);
    return value && !value->isNull() ? std::optional(*value) : std::nullopt;
}

int SimulatedMobileDevices::startService(MobileDeviceReference device, const std::string&,
                                         MobileServiceConnection& connection) {
    recordCall("AMDeviceSecureStartService", device);
    connection = 0;
    const auto* found = state(device);
    if (!found || !found->diagnostics)
        return failure;
    if (found->diagnostics->startStatus != 0)
        return found->diagnostics->startStatus;
    connection = nextConnection_++;
    connections_[connection].device = device;
    return 0;
}

int SimulatedMobileDevices::sendMessage(MobileServiceConnection connection, const Dictionary& message) {
    auto* open = find(connection);
    recordCall("AMDServiceConnectionSendMessage", open ? open->device : 0, {{"message", message}});
    const auto* found = open ? state(open->device) : nullptr;
    if (!found || !found->diagnostics || open->sent >= found->diagnostics->replies.size())
        return failure;
    open->reply = found->diagnostics->replies[open->sent++];
    open->isAnswered = true;
    return 0;
}

int SimulatedMobileDevices::receiveMessage(MobileServiceConnection connection,
                                           std::optional<PropertyValue>& reply) {
    auto* open = find(connection);
    recordCall("AMDServiceConnectionReceiveMessage", open ? open->device : 0);
    reply = std::nullopt;
    if (!open || !std::exchange(open->isAnswered, false) || open->reply.isNull())
        return failure;
    reply = open->reply;
    return 0;
}

void SimulatedMobileDevices::invalidate(MobileServiceConnection connection) {
    auto* open = find(connection);
    recordCall("AMDServiceConnectionInvalidate", open ? open->device : 0);
    connections_.erase(connection);
}

void SimulatedMobileDevices::deliver(const std::string& name, std::uint32_t code) {
    auto& attached = core_.state.attached;
    const auto place = std::find(attached.begin(), attached.end(), name);
    if (code == 1 && !name.empty() && place == attached.end())
        attached.push_back(name);
    if (code == 2 && place != attached.end())
        attached.erase(place);
    if (listener_)
        listener_(name.empty() ? 0 : reference(name), code);
}

void SimulatedMobileDevices::endProcess() {
    listener_ = nullptr;
    connections_.clear();
}

MobileDeviceReference SimulatedMobileDevices::reference(const std::string& name) {
    const auto place = std::find(names_.begin(), names_.end(), name);
    const auto index = static_cast<MobileDeviceReference>(place - names_.begin());
    if (place == names_.end())
        names_.push_back(name);
    return index + 1;
}

const std::string& SimulatedMobileDevices::nameOf(MobileDeviceReference device) const {
    static const std::string none;
    return device >= 1 && device <= names_.size() ? names_[device - 1] : none;
}

const MobileDeviceState* SimulatedMobileDevices::state(MobileDeviceReference device) const {
    const auto found = core_.state.mobileDevices.find(nameOf(device));
    return found == core_.state.mobileDevices.end() ? nullptr : &found->second;
}

void SimulatedMobileDevices::recordCall(std::string_view entryPoint, MobileDeviceReference device,
                                        Dictionary more) {
    more.insert_or_assign("name", entryPoint);
    more.insert_or_assign("device", device == 0 ? PropertyValue() : PropertyValue(nameOf(device)));
    core_.events.record("mobile.call", std::move(more));
}

int SimulatedMobileDevices::call(std::string_view entryPoint, MobileDeviceReference device,
                                 int MobileDeviceState::*result) {
    recordCall(entryPoint, device);
    const auto* found = state(device);
    return found ? found->*result : failure;
}

SimulatedMobileDevices::Connection* SimulatedMobileDevices::find(MobileServiceConnection connection) {
    const auto found = connections_.find(connection);
    return found == connections_.end() ? nullptr : &found->second;
}

} // namespace kivo
