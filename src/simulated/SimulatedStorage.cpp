// SPDX-License-Identifier: MIT
#include "simulated/SimulatedStorage.h"

#include "support/Json.h"

#include <utility>

namespace kivo {

PropertyValue describeContents(const std::string& bytes) {
    try {
        return Dictionary{{"json", json::parse(bytes)}};
    } catch (const DecodingError&) {
        return Dictionary{{"text", bytes}};
    }
}

Dictionary* SimulatedDefaults::values() const {
    auto& defaults = core_.state.defaults;
    if (suite_ == Suite::standard)
        return &defaults.standard;
    return defaults.group ? &*defaults.group : nullptr;
}

std::optional<PropertyValue> SimulatedDefaults::value(std::string_view key) {
    const auto* all = values();
    const auto* value = all ? find(*all, key) : nullptr;
    return value ? std::optional(*value) : std::nullopt;
}

void SimulatedDefaults::set(std::string_view key, PropertyValue value) {
    record(key, value);
    if (auto* all = values())
        all->insert_or_assign(std::string(key), std::move(value));
}

void SimulatedDefaults::remove(std::string_view key) {
    record(key, nullptr);
    auto* all = values();
    if (!all)
        return;
    if (const auto entry = all->find(key); entry != all->end())
        all->erase(entry);
}

void SimulatedDefaults::record(std::string_view key, const PropertyValue& value) {
    const auto* data = value.data();
    core_.events.record("defaults.write", {{"suite", suite_ == Suite::standard ? "standard" : "group"},
                                           {"key", key},
                                           {"value", data ? describeContents(data->bytes) : value}});
}

std::optional<std::string> SimulatedFiles::read(std::string_view path) {
    const auto file = core_.state.support.find(path);
    return file == core_.state.support.end() ? std::nullopt : std::optional(file->second);
}

// Nothing is kept here: the machine has the files that its description names and those that are written.
bool SimulatedFiles::keepAside(std::string_view) {
    return false;
}

std::optional<std::string> SimulatedFiles::write(std::string_view path, const std::string& text) {
    if (!core_.state.supportWritable)
        return "You don’t have permission to save the file “" + std::string(path) + "”.";
    core_.state.support.insert_or_assign(std::string(path), text);
    // Files are long and written often: one that is a line of JSON is taken as it stands.
    const bool isLine = text.find_first_of("\r\n") == std::string::npos;
    if (isLine && json::isValid(text)) {
        core_.events.recordWithText("file.write", {{"path", path}}, "json", text);
        return std::nullopt;
    }
    const PropertyValue contents = describeContents(text);
    Dictionary event = *contents.dictionary();
    event.insert_or_assign("path", path);
    core_.events.record("file.write", std::move(event));
    return std::nullopt;
}

void SimulatedFiles::writeInBackground(std::string_view path, std::string text,
                                       std::function<void(std::optional<std::string> error)> done) {
    core_.loop.background(
        [&, done = std::move(done)] { return [done, error = write(path, text)] { done(error); }; });
}

} // namespace kivo
