// SPDX-License-Identifier: MIT
#include "core/SettingsStore.h"

#include "platform/UserDefaults.h"
#include "support/Json.h"

#include <exception>
#include <string>

namespace kivo {
namespace {

constexpr std::string_view key = "alertSettings.v2";

AlertSettings load(UserDefaults& defaults) {
    const auto stored = defaults.value(key);
    if (!stored || !stored->data())
        return {};
    try {
        return decodeAlertSettings(json::parse(stored->data()->bytes));
    } catch (const DecodingError&) {
        return {};
    }
}

} // namespace

SettingsStore::SettingsStore(UserDefaults& defaults, LogSink& log)
    : defaults_(defaults), logger_(log, "settings"), value_(load(defaults)) {}

void SettingsStore::setValue(AlertSettings value) {
    // Kept apart from the observable: a listener may write again, and the newest value is then stored last.
    value_.set(std::move(value));
    save();
}

void SettingsStore::save() {
    try {
        defaults_.set(key, PropertyValue::Data{json::write(encode(value_.get()))});
    } catch (const std::exception& error) {
        logger_.error(std::string("Saving settings failed: ") + error.what());
    }
}

} // namespace kivo
