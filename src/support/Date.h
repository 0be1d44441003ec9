// SPDX-License-Identifier: MIT
#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>

namespace kivo {

// A point of the wall clock. Stored form: seconds since 2001-01-01 00:00:00 UTC, fractions kept.
struct Date {
    double secondsSince2001 = 0;

    // Seconds between the Unix epoch and 2001-01-01 00:00:00 UTC.
    static constexpr double unixOffset = 978'307'200.0;
    static Date fromUnix(double seconds) { return {seconds - unixOffset}; }
    double unixSeconds() const { return secondsSince2001 + unixOffset; }

    // RFC 3339 ("2026-01-05T09:00:00Z", offsets and fractions allowed). Nothing when the text is no such date.
    static std::optional<Date> fromRFC3339(std::string_view text);

    auto operator<=>(const Date&) const = default;
    bool operator==(const Date&) const = default;
};

inline Date operator+(Date date, double seconds) {
    return {date.secondsSince2001 + seconds};
}
inline Date operator-(Date date, double seconds) {
    return {date.secondsSince2001 - seconds};
}
// Seconds from `earlier` to `later`.
inline double operator-(Date later, Date earlier) {
    return later.secondsSince2001 - earlier.secondsSince2001;
}

} // namespace kivo
