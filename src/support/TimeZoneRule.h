// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace kivo {

// The yearly rule at the end of a zone file, for the time after its last listed change, in the POSIX form
// ("CET-1CEST,M3.5.0,M10.5.0/3").
class TimeZoneRule {
public:
    // Nothing when the text is no such rule.
    static std::optional<TimeZoneRule> parse(std::string_view text);

    // Seconds to add to UTC at that Unix time.
    std::int64_t offset(std::int64_t unixSeconds) const;

private:
    struct Change {
        enum class Kind { julianWithoutLeapDay, dayOfYear, weekdayOfMonth };
        Kind kind = Kind::weekdayOfMonth;
        int month = 0, week = 0;
        int day = 0;
        std::int64_t seconds = 2 * 3600; // after midnight, by the clocks before the change

        // The local second of the change in that year, counted from 1970-01-01 00:00 local time.
        std::int64_t inYear(int year) const;
    };
    struct Summer {
        std::int64_t offset;
        Change begin;
        Change end;
    };
    struct Reader;

    std::int64_t standard_ = 0;
    std::optional<Summer> summer_;
};

} // namespace kivo
