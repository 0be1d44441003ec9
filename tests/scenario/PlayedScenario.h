// SPDX-License-Identifier: MIT
#pragma once

#include "scenario/Scenario.h"
#include "support/Json.h"

#include <string>
#include <string_view>
#include <vector>

namespace kivo {

// The events of one scenario, and short ways to say what they were.
class PlayedScenario {
public:
    explicit PlayedScenario(std::string_view text) {
        for (const auto& line : Scenario::read(text).play())
            events_.push_back(*json::parse(line).dictionary());
    }

    // "5 a b" for each event of that name: its time, then the text of the given members.
    std::vector<std::string> list(std::string_view event, const std::vector<std::string>& members = {}) const {
        std::vector<std::string> result;
        for (const auto& one : events_) {
            if (*one.at("event").string() != event)
                continue;
            auto& line = result.emplace_back(json::write(one.at("t")));
            for (const auto& path : members)
                line += " " + text(PropertyValue(one), path);
        }
        return result;
    }
    // The value at a path like "content.title" of the last event of that name, as JSON (a text as it is).
    std::string last(std::string_view event, std::string_view path) const {
        for (auto one = events_.rbegin(); one != events_.rend(); ++one) {
            if (*one->at("event").string() == event)
                return text(PropertyValue(*one), path);
        }
        return "(no " + std::string(event) + ")";
    }

private:
    static std::string text(const PropertyValue& value, std::string_view path) {
        const auto dot = path.find('.');
        const auto* members = value.dictionary();
        const auto* member = members ? find(*members, path.substr(0, dot)) : nullptr;
        if (!member)
            return "(absent)";
        if (dot != std::string_view::npos)
            return text(*member, path.substr(dot + 1));
        return member->string() ? *member->string() : json::write(*member);
    }

    std::vector<Dictionary> events_;
};

} // namespace kivo
