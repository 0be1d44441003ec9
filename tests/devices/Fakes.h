// SPDX-License-Identifier: MIT
#pragma once

#include "platform/DeviceRegistry.h"
#include "platform/MobileDeviceLibrary.h"
#include "platform/PowerSources.h"
#include "platform/UserDefaults.h"
#include "support/Json.h"
#include "support/Log.h"
#include "support/VirtualLoop.h"

#include <map>
#include <set>
#include <string>
#include <vector>

// What the device tests put in the place of a machine. Contents are public: a test sets them as it likes.
namespace kivo::fakes {

inline std::optional<std::vector<std::optional<Dictionary>>> dictionaries(const PropertyValue& list) {
    if (!list.array())
        return std::nullopt;
    std::vector<std::optional<Dictionary>> result;
    for (const auto& element : *list.array())
        result.push_back(element.dictionary() ? std::optional(*element.dictionary()) : std::nullopt);
    return result;
}

struct Sources final : AccessorySources {
    bool isThere = true;
    int resolutions = 0;
    PropertyValue list = Array{};

    bool resolve() override { return ++resolutions, isThere; }
    std::optional<std::vector<PowerSourceDescription>> copyAccessorySources() override {
        return dictionaries(list);
    }
};

struct Registry final : DeviceRegistry {
    PropertyValue inputDevices = Array{};

    std::optional<std::vector<std::optional<Dictionary>>>
    matchingServices(std::string_view serviceClass) override {
        return serviceClass == hidBatteryClass ? dictionaries(inputDevices) : std::nullopt;
    }
};

struct Defaults final : UserDefaults {
    std::map<std::string, PropertyValue, std::less<>> values;
    int writes = 0;

    std::optional<PropertyValue> value(std::string_view key) override {
        const auto found = values.find(key);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    }
    void set(std::string_view key, PropertyValue value) override {
        ++writes;
        values.insert_or_assign(std::string(key), std::move(value));
    }
    void remove(std::string_view key) override { values.erase(std::string(key)); }
};

struct Log final : LogSink {
    std::vector<std::string> lines;

    void log(LogLevel level, std::string_view category, std::string_view message) override {
        lines.push_back(std::string(name(level)) + " " + std::string(category) + ": " + std::string(message));
    }
};

// A phone as the library shows it. Statuses are those of the calls; `replies` answer the messages in order, an
// absent one is a failed receive, and past the end sending fails.
struct Phone {
    std::string identifier;
    int interface = 1;
    int connect = 0;
    int paired = 1;
    int validate = 0;
    int session = 0;
    Dictionary values; // by domain, "" for none
    int service = 1;
    bool givesConnection = true;
    std::vector<std::optional<PropertyValue>> replies;
    double readSeconds = 0;
};

// Records each call and counts the references that it has given away.
struct Library final : MobileDeviceLibrary {
    explicit Library(VirtualLoop* timeOfReadings = nullptr) : loop(timeOfReadings) {}

    VirtualLoop* loop;
    bool isThere = true;
    std::set<std::string, std::less<>> missing;
    std::map<MobileDeviceReference, Phone> phones;
    std::vector<std::string> calls;
    std::vector<std::string> lookUps;
    std::map<MobileDeviceReference, int> references;
    std::function<void(MobileDeviceReference, std::uint32_t)> listener;
    int subscriptions = 0;
    std::size_t replied = 0;

    bool open() override { return isThere; }
    bool hasSymbol(std::string_view name) override {
        lookUps.emplace_back(name);
        return !missing.contains(name);
    }
    void subscribe(std::function<void(MobileDeviceReference, std::uint32_t)> newListener) override {
        ++subscriptions;
        listener = std::move(newListener);
    }
    void retain(MobileDeviceReference device) override { ++references[device]; }
    void release(MobileDeviceReference device) override { --references[device]; }
    std::optional<std::string> copyDeviceIdentifier(MobileDeviceReference device) override {
        calls.emplace_back("identifier");
        const auto& identifier = phones[device].identifier;
        return identifier.empty() ? std::nullopt : std::optional(identifier);
    }
    int interfaceType(MobileDeviceReference device) override {
        calls.emplace_back("interface");
        return phones[device].interface;
    }
    int connect(MobileDeviceReference device) override {
        if (loop)
            loop->spend(seconds(phones[device].readSeconds));
        calls.emplace_back("connect");
        return phones[device].connect;
    }
    void disconnect(MobileDeviceReference) override { calls.emplace_back("disconnect"); }
    int isPaired(MobileDeviceReference device) override {
        calls.emplace_back("paired");
        return phones[device].paired;
    }
    int validatePairing(MobileDeviceReference device) override {
        calls.emplace_back("validate");
        return phones[device].validate;
    }
    int startSession(MobileDeviceReference device) override {
        calls.emplace_back("session");
        return phones[device].session;
    }
    void stopSession(MobileDeviceReference) override { calls.emplace_back("stop"); }
    std::optional<PropertyValue> copyValue(MobileDeviceReference device, std::optional<std::string> domain,
                                           std::optional<std::string> key) override {
        calls.push_back("value(" + domain.value_or("-") + "," + key.value_or("-") + ")");
        const auto* all = find(phones[device].values, domain.value_or(""));
        if (!all || !key)
            return all ? std::optional(*all) : std::nullopt;
        const auto* value = find(*all->dictionary(), *key);
        return value ? std::optional(*value) : std::nullopt;
    }
    int startService(MobileDeviceReference device, const std::string& service,
                     MobileServiceConnection& connection) override {
        calls.push_back("service(" + service + ")");
        replied = 0;
        if (phones[device].givesConnection)
            connection = device;
        return phones[device].service;
    }
    int sendMessage(MobileServiceConnection connection, const Dictionary& message) override {
        calls.push_back("send(" + json::write(message) + ")");
        return replied < phones[connection].replies.size() ? 0 : 1;
    }
    int receiveMessage(MobileServiceConnection connection, std::optional<PropertyValue>& reply) override {
        calls.emplace_back("receive");
        reply = phones[connection].replies.at(replied++);
        return reply ? 0 : 1;
    }
    void invalidate(MobileServiceConnection) override { calls.emplace_back("invalidate"); }

    void attach(MobileDeviceReference device) { listener(device, 1); }
    void detach(MobileDeviceReference device) { listener(device, 2); }
};

// A phone that can be read, with nothing but a name and a level.
inline Phone healthyPhone(std::string identifier, std::string name, std::int64_t level) {
    Phone phone;
    phone.identifier = std::move(identifier);
    phone.values = {{"", Dictionary{{"DeviceName", std::move(name)}}},
                    {"com.apple.mobile.battery", Dictionary{{"BatteryCurrentCapacity", level}}}};
    return phone;
}

} // namespace kivo::fakes
