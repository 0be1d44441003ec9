// SPDX-License-Identifier: MIT
#pragma once

#include "scenario/Scenario.h"
#include "support/Json.h"

#include <algorithm>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace kivo {

inline std::vector<Dictionary> play(const std::string& scenario) {
    std::vector<Dictionary> events;
    for (const std::string& line : Scenario::read(scenario).play())
        events.push_back(*json::parse(line).dictionary());
    return events;
}

// One event as a short text: its time, its name and what matters most about it.
inline std::string digest(const Dictionary& event) {
    const auto text = [&](const Dictionary& object, const char* key) {
        const auto* value = find(object, key);
        return value && value->string() ? *value->string() : value ? json::write(*value) : std::string();
    };
    const std::string name = text(event, "event");
    std::string result = text(event, "t") + " " + name;
    if (name == "island.show") {
        const auto& content = *event.at("content").dictionary();
        result += " " + text(content, "title") + " / " + text(content, "subtitle");
        return event.at("retarget") == PropertyValue(true) ? result + " (retarget)" : result;
    }
    for (const char* key : {"suite", "key", "name", "device", "pattern", "url", "path", "kind", "identifier",
                            "title", "body", "category", "message", "view", "ok"}) {
        if (find(event, key))
            result += " " + text(event, key);
    }
    return result;
}

// The digests of the events with these names, or with names that begin with one of them and a dot.
inline std::vector<std::string> digests(const std::string& scenario,
                                        std::initializer_list<std::string_view> names) {
    std::vector<std::string> result;
    for (const Dictionary& event : play(scenario)) {
        const std::string& name = *event.at("event").string();
        if (std::any_of(names.begin(), names.end(), [&](std::string_view wanted) {
                return name == wanted || name.starts_with(std::string(wanted) + ".");
            }))
            result.push_back(digest(event));
    }
    return result;
}

// The content of the last view that the scenario prints.
inline Dictionary lastView(const std::string& scenario) {
    const auto events = play(scenario);
    const auto view = std::find_if(events.rbegin(), events.rend(), [](const Dictionary& event) {
        return event.at("event") == PropertyValue("view");
    });
    return *view->at("content").dictionary();
}

// A scenario's text from a machine and steps. "$battery(N)" and "$charging(N)" in it stand for power sources
// with a battery at N percent, discharging or charging.
inline std::string scenario(const std::string& machine, const std::string& steps) {
    const std::string text = R"({"machine": {)" + machine + R"(}, "steps": [)" + steps + "]}";
    std::string result;
    for (std::size_t place = 0; place < text.size();) {
        const std::size_t macro = std::min(text.find('$', place), text.size());
        result.append(text, place, macro - place);
        place = macro;
        if (macro == text.size())
            break;
        const std::size_t open = text.find('(', macro);
        const std::size_t close = text.find(')', open);
        const bool isCharging = text.compare(macro, open - macro, "$charging") == 0;
        result += R"([{"Type": "InternalBattery", "Max Capacity": 100, "Power Source State": )";
        result += isCharging ? R"("AC Power", "Is Charging": true)" : R"("Battery Power")";
        result += R"(, "Current Capacity": )" + text.substr(open + 1, close - open - 1) + "}]";
        place = close + 1;
    }
    return result;
}

} // namespace kivo
