// SPDX-License-Identifier: MIT
#include "simulated/MachineKeyTable.h"

namespace kivo {
namespace {

// {"json": …} or {"text": "…"}: the bytes they stand for; nothing for any other value.
std::optional<std::string> readContents(const PropertyValue& value) {
    const auto* object = value.dictionary();
    if (!object || object->size() != 1)
        return std::nullopt;
    if (const auto* tree = find(*object, "json"))
        return json::write(*tree);
    const auto* text = stringAt(*object, "text");
    return text ? std::optional(*text) : std::nullopt;
}

Dictionary readSuite(const PropertyValue& value, const std::string& what) {
    Dictionary suite;
    for (const auto& [key, entry] : reading::object(value, what)) {
        if (auto contents = readContents(entry))
            suite.emplace(key, PropertyValue::Data{std::move(*contents)});
        else
            suite.emplace(key, entry);
    }
    return suite;
}

DefaultsState readDefaults(const PropertyValue& value) {
    RecordReader record(value, "defaults");
    DefaultsState state;
    if (const auto* standard = record.find("standard"))
        state.standard = readSuite(*standard, record.path("standard"));
    if (const auto* group = record.find("group")) {
        if (group->isNull())
            state.group = std::nullopt;
        else
            state.group = readSuite(*group, record.path("group"));
    }
    record.finish();
    return state;
}

TextMap readSupport(const PropertyValue& value) {
    TextMap files;
    for (const auto& [path, file] : reading::object(value, "support")) {
        auto contents = readContents(file);
        if (!contents)
            reading::mismatch("support." + path, R"({"json": …} or {"text": "…"})", file);
        files.emplace(path, std::move(*contents));
    }
    return files;
}

} // namespace

void addStorageKeys(MachineKeyTable& table) {
    table["defaults"] = [](const PropertyValue& value) {
        return replacing(&MachineState::defaults, readDefaults(value));
    };
    table["support"] = [](const PropertyValue& value) {
        return replacing(&MachineState::support, readSupport(value));
    };
    table["supportWritable"] = [](const PropertyValue& value) {
        return replacing(&MachineState::supportWritable, reading::boolean(value, "supportWritable"));
    };
}

} // namespace kivo
