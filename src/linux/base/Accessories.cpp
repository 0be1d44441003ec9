// SPDX-License-Identifier: MIT
#include "linux/base/Accessories.h"

#include "linux/base/Words.h"
#include "support/UTF8.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace kivo {
namespace {

constexpr std::size_t addressLength = 17;

// UPower's numbers.
constexpr std::int64_t linePowerType = 1;
constexpr std::int64_t uninterruptibleSupplyType = 3;
constexpr std::int64_t chargingState = 1;
// A device that has coarse levels and does not know its own; UPower shows half for that.
constexpr std::int64_t unknownLevel = 0;
constexpr double unknownLevelPercent = 50;

// What is known of a device's level: nothing, about how much ("low"), or a percentage.
enum class Precision { none, coarse, exact };

// What one service tells of one device.
struct Sighting {
    std::string address; // empty where unknown
    std::string serial;
    std::string path;
    std::string name;
    std::string_view category; // in the system's words; empty where unknown
    Precision precision = Precision::none;
    std::int64_t percent = 0;
    bool isCharging = false;
    bool isNamedByUser = false;
};

bool isLetterOrDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isHexadecimal(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

std::string capital(std::string text) {
    for (char& c : text) {
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    }
    return text;
}

// `text` is exactly as long as an address.
bool isAddress(std::string_view text) {
    const char separator = text[2];
    if (separator != ':' && separator != '_' && separator != '-')
        return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i % 3 == 2 ? text[i] != separator : !isHexadecimal(text[i]))
            return false;
    }
    return true;
}

// Devices say what they like, and it is shown in lists and terminals.
std::string plainName(std::string_view text) {
    constexpr std::size_t longest = 200;
    return std::string(trimmed(utf8::plainLine(text, longest)));
}

std::string textAt(const Dictionary& properties, std::string_view key) {
    const auto* text = stringAt(properties, key);
    return text ? *text : std::string();
}

std::string nameAt(const Dictionary& properties, std::string_view key) {
    return plainName(textAt(properties, key));
}

template <typename Key, typename Value>
struct Entry {
    Key key;
    Value value;
};
using NumberToWord = Entry<std::int64_t, std::string_view>;
using TextToWord = Entry<std::string_view, std::string_view>;
using NumberToPercent = Entry<std::int64_t, std::int64_t>;
using TextToPercent = Entry<std::string_view, std::int64_t>;

// The value for `key`; an empty one where there is none.
template <typename Key, typename Value, std::size_t count>
Value look(const std::array<Entry<Key, Value>, count>& entries, Key key) {
    const auto found =
        std::find_if(entries.begin(), entries.end(), [&](const auto& entry) { return entry.key == key; });
    return found == entries.end() ? Value{} : found->value;
}

constexpr std::array categoryByUPowerType{
    NumberToWord{5, "Mouse"},       NumberToWord{6, "Keyboard"},         NumberToWord{8, "Phone"},
    NumberToWord{10, "Tablet"},     NumberToWord{12, "Game Controller"}, NumberToWord{13, "Pen"},
    NumberToWord{14, "Trackpad"},   NumberToWord{17, "Headset"},         NumberToWord{18, "Speaker"},
    NumberToWord{19, "Headphones"}, NumberToWord{21, "Audio"},           NumberToWord{22, "Remote"},
    NumberToWord{26, "Wearable"},
};
constexpr std::array categoryByBluezIcon{
    TextToWord{"input-mouse", "Mouse"},
    TextToWord{"input-keyboard", "Keyboard"},
    TextToWord{"input-gaming", "Game Controller"},
    TextToWord{"input-tablet", "Pen"},
    TextToWord{"audio-headset", "Headset"},
    TextToWord{"audio-headphones", "Headphones"},
    TextToWord{"audio-card", "Audio"},
    TextToWord{"phone", "Phone"},
};

// Percentages that stand for the levels of devices that know no better, by UPower's number and by the kernel's
// word. The same ones that UPower shows.
constexpr std::array coarseLevels{NumberToPercent{3, 10}, NumberToPercent{4, 5},  NumberToPercent{5, 1},
                                  NumberToPercent{6, 55}, NumberToPercent{7, 70}, NumberToPercent{8, 100}};
constexpr std::array coarseWords{TextToPercent{"Critical", 5}, TextToPercent{"Low", 10},
                                 TextToPercent{"Normal", 55}, TextToPercent{"High", 70},
                                 TextToPercent{"Full", 100}};

void setPercent(Sighting& sighting, double percent, Precision precision) {
    if (!(percent > 0))
        return;
    sighting.precision = precision;
    sighting.percent = std::clamp<std::int64_t>(std::llround(std::min(percent, 100.0)), 1, 100);
}

std::optional<Sighting> sightingFromUPower(const std::string& path, const Dictionary& properties) {
    const auto type = integerAt(properties, "Type").value_or(0);
    if (booleanAt(properties, "PowerSupply").value_or(true) || type == linePowerType ||
        type == uninterruptibleSupplyType)
        return std::nullopt;
    Sighting sighting;
    const auto nativePath = textAt(properties, "NativePath");
    sighting.serial = textAt(properties, "Serial");
    sighting.address =
        bluetoothAddress(nativePath).value_or(bluetoothAddress(sighting.serial).value_or(std::string()));
    sighting.path = nativePath.empty() ? path : nativePath;
    sighting.name = nameAt(properties, "Model");
    if (sighting.name.empty())
        sighting.name = nameAt(properties, "Vendor");
    sighting.category = look(categoryByUPowerType, type);
    sighting.isCharging = integerAt(properties, "State").value_or(0) == chargingState;
    sighting.isNamedByUser = nativePath.find("/org/bluez/") == 0;
    if (!booleanAt(properties, "IsPresent").value_or(true))
        return sighting;
    const auto* level = find(properties, "BatteryLevel");
    const auto percent = numberAt(properties, "Percentage").value_or(0);
    if (level && level->integer() == unknownLevel && percent == unknownLevelPercent)
        return sighting;
    const auto coarse = look(coarseLevels, integerAt(properties, "BatteryLevel").value_or(0));
    setPercent(sighting, percent > 0 ? percent : static_cast<double>(coarse),
               coarse != 0 ? Precision::coarse : Precision::exact);
    return sighting;
}

Sighting sightingFromBluez(const std::string& path, const Dictionary& properties) {
    Sighting sighting;
    sighting.address = bluetoothAddress(textAt(properties, "Address"))
                           .value_or(bluetoothAddress(path).value_or(std::string()));
    sighting.path = path;
    sighting.name = nameAt(properties, "Alias");
    if (sighting.name.empty())
        sighting.name = nameAt(properties, "Name");
    const auto icon = textAt(properties, "Icon");
    sighting.category = look(categoryByBluezIcon, std::string_view(icon));
    sighting.isNamedByUser = true;
    if (booleanAt(properties, "Connected").value_or(true))
        setPercent(sighting, numberAt(properties, "Percentage").value_or(0), Precision::exact);
    return sighting;
}

// A serial number that several devices claim (some makers count all theirs 0) tells nothing.
std::string identity(const Sighting& sighting, const std::map<std::string, int>& serials) {
    if (!sighting.address.empty())
        return sighting.address;
    const auto serial = serials.find(sighting.serial);
    return serial != serials.end() && serial->second == 1 ? sighting.serial : sighting.path;
}

// Takes from `other` what it knows better about the same device.
void merge(Sighting& sighting, const Sighting& other) {
    if (other.precision > sighting.precision) {
        sighting.precision = other.precision;
        sighting.percent = other.percent;
    }
    if (!other.name.empty() && (sighting.name.empty() || (other.isNamedByUser && !sighting.isNamedByUser))) {
        sighting.name = other.name;
        sighting.isNamedByUser = other.isNamedByUser;
    }
    if (sighting.category.empty())
        sighting.category = other.category;
    sighting.isCharging = sighting.isCharging || other.isCharging;
}

Dictionary description(const std::string& identity, const Sighting& sighting) {
    Dictionary result{{"Type", "Accessory Source"},
                      {"Accessory Identifier", identity},
                      {"Name", sighting.name},
                      {"Current Capacity", sighting.percent},
                      {"Max Capacity", 100},
                      {"Is Present", true},
                      {"Is Charging", sighting.isCharging}};
    if (!sighting.category.empty())
        result["Accessory Category"] = sighting.category;
    if (sighting.name.empty())
        result["Name"] = sighting.category.empty() ? std::string_view("Accessory") : sighting.category;
    return result;
}

std::int64_t percentFromKernel(const KernelAttributes& attributes) {
    const auto text = attribute(attributes, "capacity");
    std::int64_t percent = 0;
    std::from_chars(text.data(), text.data() + text.size(), percent);
    if (percent <= 0)
        percent = look(coarseWords, attribute(attributes, "capacity_level"));
    return std::min<std::int64_t>(percent, 100);
}

} // namespace

std::optional<std::string> bluetoothAddress(std::string_view text) {
    for (std::size_t i = 0; i + addressLength <= text.size(); ++i) {
        const std::size_t end = i + addressLength;
        const bool isApart =
            (i == 0 || !isLetterOrDigit(text[i - 1])) && (end == text.size() || !isLetterOrDigit(text[end]));
        if (!isApart || !isAddress(text.substr(i, addressLength)))
            continue;
        auto address = capital(std::string(text.substr(i, addressLength)));
        for (std::size_t place = 2; place < addressLength; place += 3)
            address[place] = ':';
        if (address != "00:00:00:00:00:00" && address != "FF:FF:FF:FF:FF:FF")
            return address;
    }
    return std::nullopt;
}

std::vector<Dictionary> accessoryDescriptions(const UPowerDevices& upower, const BluezDevices& bluez) {
    std::vector<Sighting> sightings;
    for (const auto& [path, properties] : upower) {
        if (auto sighting = sightingFromUPower(path, properties))
            sightings.push_back(std::move(*sighting));
    }
    for (const auto& [path, properties] : bluez)
        sightings.push_back(sightingFromBluez(path, properties));

    std::map<std::string, int> serials;
    for (const auto& sighting : sightings) {
        if (!sighting.serial.empty())
            ++serials[sighting.serial];
    }
    std::map<std::string, Sighting> devices;
    for (const auto& sighting : sightings) {
        const auto [known, isNew] = devices.try_emplace(identity(sighting, serials), sighting);
        if (!isNew)
            merge(known->second, sighting);
    }
    std::vector<Dictionary> descriptions;
    for (const auto& [identity, device] : devices) {
        if (device.precision != Precision::none)
            descriptions.push_back(description(identity, device));
    }
    return descriptions;
}

std::vector<Dictionary> inputDeviceProperties(const KernelSupplies& supplies) {
    constexpr std::int64_t chargingFlag = 2;
    std::vector<Dictionary> devices;
    for (const auto& [name, attributes] : supplies) {
        const auto percent = percentFromKernel(attributes);
        if (attribute(attributes, "scope") != "Device" || attribute(attributes, "type") != "Battery" ||
            attribute(attributes, "present") == "0" || percent <= 0)
            continue;
        const std::string serial(attribute(attributes, "serial_number"));
        const std::string model = plainName(attribute(attributes, "model_name"));
        auto address = bluetoothAddress(name);
        if (!address)
            address = bluetoothAddress(serial);
        devices.push_back({{"Product", model.empty() ? name : model},
                           {"DeviceAddress", address.value_or(serial.empty() ? name : serial)},
                           {"BatteryPercent", percent},
                           {"BatteryStatusFlags",
                            attribute(attributes, "status") == "Charging" ? chargingFlag : std::int64_t{0}}});
    }
    return devices;
}

} // namespace kivo
