// SPDX-License-Identifier: MIT
#include "core/SettingsStore.h"

#include "platform/UserDefaults.h"
#include "support/Json.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

using namespace kivo;

namespace {

struct Database : UserDefaults, LogSink {
    std::optional<PropertyValue> value(std::string_view key) override {
        const auto it = values.find(key);
        return it == values.end() ? std::nullopt : std::optional(it->second);
    }
    void set(std::string_view key, PropertyValue value) override {
        if (isBroken)
            throw std::runtime_error("disk full");
        ++writes;
        values.insert_or_assign(std::string(key), std::move(value));
    }
    void remove(std::string_view key) override { values.erase(std::string(key)); }
    void log(LogLevel, std::string_view category, std::string_view message) override {
        lines.push_back(std::string(category) + ": " + std::string(message));
    }

    Dictionary values;
    std::vector<std::string> lines;
    int writes = 0;
    bool isBroken = false;
};

constexpr const char* key = "alertSettings.v2";

} // namespace

TEST(SettingsStore, everyWriteIsStoredButOnlyAChangeIsTold) {
    Database database;
    SettingsStore store(database, database);
    EXPECT_EQ(database.writes, 0) << "nothing is written before the first change";
    int changes = 0;
    std::string storedWhenTold;
    const auto subscription = store.onChange([&] { ++changes; });
    store.setValue(store.value());
    EXPECT_EQ(database.writes, 1);
    EXPECT_EQ(changes, 0);
    AlertSettings settings = store.value();
    settings.playsSound = false;
    store.setValue(settings);
    EXPECT_EQ(changes, 1);
    const auto stored = json::parse(database.values[key].data()->bytes);
    EXPECT_EQ(stored.dictionary()->at("playsSound"), PropertyValue(false));
    EXPECT_EQ(SettingsStore(database, database).value(), settings);
}

TEST(SettingsStore, whatCannotBeReadStaysStoredUntilTheNextWrite) {
    const PropertyValue unreadable[] = {PropertyValue::Data{"not JSON"}, PropertyValue::Data{"{\"rules\":7}"},
                                        "text", true};
    for (const auto& value : unreadable) {
        Database database;
        database.values[key] = value;
        SettingsStore store(database, database);
        EXPECT_EQ(store.value(), AlertSettings{});
        EXPECT_TRUE(database.lines.empty());
        EXPECT_EQ(database.values[key], value);
        store.setValue(store.value());
        EXPECT_NE(database.values[key], value);
    }
}

TEST(SettingsStore, aFailedWriteIsLoggedAndKeepsTheValue) {
    Database database;
    SettingsStore store(database, database);
    database.isBroken = true;
    AlertSettings settings;
    settings.showsOverlay = false;
    store.setValue(settings);
    EXPECT_EQ(store.value(), settings);
    EXPECT_EQ(database.lines, std::vector<std::string>{"settings: Saving settings failed: disk full"});
}
