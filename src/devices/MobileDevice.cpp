// SPDX-License-Identifier: MIT
#include "devices/MobileDevice.h"

#include "battery/BatteryHealth.h"
#include "support/Text.h"

#include <algorithm>
#include <utility>

namespace kivo {
namespace {

constexpr int networkInterface = 2;
constexpr const char* batteryDomain = "com.apple.mobile.battery";
constexpr const char* diagnosticsService = "com.apple.mobile.diagnostics_relay";
constexpr const char* capacityKey = "BatteryCurrentCapacity";

enum class Message : std::uint32_t { connected = 1, disconnected = 2 };

} // namespace

MobileDevice::MobileDevice(MobileDeviceLibrary& library, LogSink& log)
    : library_(&library), logger_(log, "mobiledevice") {}

bool MobileDevice::load() {
    if (isLoaded_)
        return *isLoaded_;
    isLoaded_ = false;
    if (!library_->open()) {
        logger_.error("MobileDevice.framework unavailable");
        return false;
    }
    for (const auto name : MobileDeviceLibrary::entryPoints) {
        if (!library_->hasSymbol(name)) {
            logger_.error("MobileDevice.framework is missing expected symbols");
            return false;
        }
    }
    isLoaded_ = true;
    return true;
}

void MobileDevice::subscribe(Receiver receiver) {
    if (!load())
        return;
    auto& library = *library_;
    library.subscribe(
        [&library, receiver = std::move(receiver)](MobileDeviceReference device, std::uint32_t code) {
            const auto message = static_cast<Message>(code);
            if (device == 0 || (message != Message::connected && message != Message::disconnected))
                return;
            const auto identifier = library.copyDeviceIdentifier(device);
            if (!identifier)
                return;
            if (message == Message::connected)
                library.retain(device);
            const DeviceHandle handle{device, *identifier, library.interfaceType(device) == networkInterface};
            if (message == Message::connected)
                receiver.connected(handle);
            else
                receiver.disconnected(handle);
        });
}

std::optional<PowerDevice> MobileDevice::read(const DeviceHandle& handle) {
    const auto device = handle.raw;
    if (!load() || library_->connect(device) != 0)
        return std::nullopt;
    std::optional<PowerDevice> result;
    if (isTrusted(device)) {
        if (library_->startSession(device) == 0) {
            result = readInSession(handle);
            library_->stopSession(device);
        }
    } else {
        logger_.log("Device not paired/trusted; skipping");
    }
    library_->disconnect(device);
    return result;
}

bool MobileDevice::isTrusted(MobileDeviceReference device) {
    return library_->isPaired(device) != 0 && library_->validatePairing(device) == 0;
}

std::optional<PowerDevice> MobileDevice::readInSession(const DeviceHandle& handle) {
    const auto battery = library_->copyValue(handle.raw, batteryDomain, std::nullopt);
    const auto* values = battery ? battery->dictionary() : nullptr;
    const auto level = values ? integerAt(*values, capacityKey) : std::nullopt;
    if (!level)
        return std::nullopt;

    PowerDevice device;
    device.id = "ios-" + handle.identifier;
    device.name = copyText(handle.raw, "DeviceName", "iPhone");
    const auto deviceClass = lowercased(copyText(handle.raw, "DeviceClass", ""));
    device.category = deviceClass.find("ipad") != std::string::npos ? PowerDevice::Category::ipad
                                                                    : PowerDevice::Category::iphone;
    device.level = *level;
    device.isCharging = booleanAt(*values, "BatteryIsCharging").value_or(false);
    device.connection = handle.isWiFi ? "Wi\u2011Fi" : "USB";
    if (const auto registry = queryBatteryRegistry(handle.raw)) {
        const auto health = parseHealth(*registry);
        device.cycleCount = health.cycleCount;
        if (const auto percent = healthPercent(health))
            device.healthPercent = std::min(*percent, std::int64_t{100});
    }
    return device;
}

std::string MobileDevice::copyText(MobileDeviceReference device, std::string key, std::string fallback) {
    const auto value = library_->copyValue(device, std::nullopt, std::move(key));
    const auto* text = value ? value->string() : nullptr;
    return text ? *text : std::move(fallback);
}

std::optional<Dictionary> MobileDevice::queryBatteryRegistry(MobileDeviceReference device) {
    MobileServiceConnection connection = 0;
    if (library_->startService(device, diagnosticsService, connection) != 0 || connection == 0)
        return std::nullopt;
    // Older devices name the battery by its class, newer ones only by the entry of their charger.
    auto registry = ask(connection, {{"Request", "IORegistry"}, {"EntryClass", "IOPMPowerSource"}});
    if (!registry)
        registry = ask(connection, {{"Request", "IORegistry"}, {"EntryName", "AppleARMPMUCharger"}});
    library_->sendMessage(connection, {{"Request", "Goodbye"}});
    library_->invalidate(connection);
    return registry;
}

std::optional<Dictionary> MobileDevice::ask(MobileServiceConnection connection, const Dictionary& request) {
    std::optional<PropertyValue> reply;
    if (library_->sendMessage(connection, request) != 0 || library_->receiveMessage(connection, reply) != 0 ||
        !reply)
        return std::nullopt;
    const auto* answer = reply->dictionary();
    const auto* diagnostics = answer ? dictionaryAt(*answer, "Diagnostics") : nullptr;
    const auto* registry = diagnostics ? dictionaryAt(*diagnostics, "IORegistry") : nullptr;
    return registry ? std::optional(*registry) : std::nullopt;
}

} // namespace kivo
