// SPDX-License-Identifier: MIT
#include "support/TimeZone.h"

#include "support/TimeZoneRule.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <limits>
#include <string>

namespace kivo {
namespace {

Date at(const char* text) {
    return Date::fromRFC3339(text).value();
}

// Expectations are written by hand from the zones' published rules.
TEST(TimeZone, StartOfTheClockHour) {
    struct Row {
        const char* label;
        const char* zone;
        const char* instant;
        const char* start;
    };
    const Row rows[] = {
        {"UTC, within", "UTC", "2026-01-05T09:59:59.5Z", "2026-01-05T09:00:00Z"},
        {"UTC, exactly on", "UTC", "2026-01-05T09:00:00Z", "2026-01-05T09:00:00Z"},
        {"before the reference date", "UTC", "1999-12-31T23:30:00Z", "1999-12-31T23:00:00Z"},
        {"Berlin, winter", "Europe/Berlin", "2026-01-05T09:30:00Z", "2026-01-05T09:00:00Z"},
        {"Berlin, last hour before summer", "Europe/Berlin", "2026-03-29T00:59:59Z", "2026-03-29T00:00:00Z"},
        {"Berlin, first hour of summer", "Europe/Berlin", "2026-03-29T01:00:00Z", "2026-03-29T01:00:00Z"},
        {"Berlin, 2:30 the first time", "Europe/Berlin", "2026-10-25T00:30:00Z", "2026-10-25T00:00:00Z"},
        {"Berlin, 2:30 the second time", "Europe/Berlin", "2026-10-25T01:30:00Z", "2026-10-25T01:00:00Z"},
        {"Kolkata, before the half hour", "Asia/Kolkata", "2026-06-01T10:29:59Z", "2026-06-01T09:30:00Z"},
        {"Kolkata, on the half hour", "Asia/Kolkata", "2026-06-01T10:30:00Z", "2026-06-01T10:30:00Z"},
        {"Kathmandu, before", "Asia/Kathmandu", "2026-06-01T10:14:59Z", "2026-06-01T09:15:00Z"},
        {"Kathmandu, on", "Asia/Kathmandu", "2026-06-01T10:15:00Z", "2026-06-01T10:15:00Z"},
        {"St. John's, winter", "America/St_Johns", "2026-01-05T12:29:00Z", "2026-01-05T11:30:00Z"},
        {"St. John's, summer", "America/St_Johns", "2026-07-05T12:31:00Z", "2026-07-05T12:30:00Z"},
        {"Lord Howe, standard is 10:30", "Australia/Lord_Howe", "2026-07-05T00:29:00Z", "2026-07-04T23:30:00Z"},
        {"Lord Howe, summer is 11:00", "Australia/Lord_Howe", "2026-01-05T00:29:00Z", "2026-01-05T00:00:00Z"},
        {"Lord Howe, on the way to standard", "Australia/Lord_Howe", "2026-04-04T14:59:59Z",
         "2026-04-04T14:00:00Z"},
        {"Lord Howe, clocks back by half an hour", "Australia/Lord_Howe", "2026-04-04T15:40:00Z",
         "2026-04-04T15:30:00Z"},
        {"Lord Howe, clocks forward by half an hour", "Australia/Lord_Howe", "2026-10-03T16:10:00Z",
         "2026-10-03T16:00:00Z"},
        {"Berlin, beyond the listed changes, winter", "Europe/Berlin", "2079-12-24T20:00:00Z",
         "2079-12-24T20:00:00Z"},
        {"Lord Howe, beyond the listed changes, summer", "Australia/Lord_Howe", "2079-12-24T20:10:00Z",
         "2079-12-24T20:00:00Z"},
        {"Lord Howe, beyond the listed changes, standard", "Australia/Lord_Howe", "2079-07-24T20:10:00Z",
         "2079-07-24T19:30:00Z"},
        {"Monrovia, 44 minutes and a half behind", "Africa/Monrovia", "1960-01-01T12:00:00Z",
         "1960-01-01T11:44:30Z"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        const auto zone = TimeZone::named(row.zone);
        ASSERT_TRUE(zone);
        EXPECT_EQ(zone->startOfHour(at(row.instant)).unixSeconds(), at(row.start).unixSeconds());
    }
}

TEST(TimeZone, NamesThatAreNone) {
    for (const char* name : {"", "/etc/passwd", "../zoneinfo/Europe/Berlin", "Europe/", "Europe",
                             "Mars/Olympus", "Europe/Berlin\n", "tzdata.zi"})
        EXPECT_FALSE(TimeZone::named(name)) << name;
    EXPECT_TRUE(TimeZone::named("UTC", "/nowhere"));
}

// A damaged file ends as no zone or as some zone, never as a read beyond its bytes (sanitizers watch).
TEST(TimeZone, DamagedFiles) {
    std::ifstream file("/usr/share/zoneinfo/Europe/Berlin", std::ios::binary);
    const std::string whole((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    ASSERT_TRUE(TimeZone::fromTZif(whole));
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(TimeZone::fromTZif(std::string_view(whole).substr(0, length))) << length;
    for (std::size_t i = 0; i < whole.size(); ++i) {
        std::string bent = whole;
        bent[i] = static_cast<char>(~bent[i]);
        if (const auto zone = TimeZone::fromTZif(bent))
            zone->startOfHour(at("2026-01-05T09:30:00Z"));
    }
    const auto zone = TimeZone::fromTZif(whole);
    for (const double seconds : {1e300, -1e300, std::numeric_limits<double>::infinity()})
        zone->offset(Date{seconds});
}

TEST(TimeZoneRule, YearlyRules) {
    struct Row {
        const char* label;
        const char* rule;
        const char* instant;
        std::int64_t offset;
    };
    const Row rows[] = {
        {"no summer", "<+0545>-5:45", "2040-06-01T00:00:00Z", 20700},
        {"summer of an hour unless said otherwise", "EST5EDT,M3.2.0,M11.1.0", "2040-07-01T00:00:00Z", -14400},
        {"just before", "EST5EDT,M3.2.0,M11.1.0", "2040-03-11T06:59:59Z", -18000},
        {"just on", "EST5EDT,M3.2.0,M11.1.0", "2040-03-11T07:00:00Z", -14400},
        {"just before the end", "EST5EDT,M3.2.0,M11.1.0", "2040-11-04T05:59:59Z", -14400},
        {"just on the end", "EST5EDT,M3.2.0,M11.1.0", "2040-11-04T06:00:00Z", -18000},
        {"southern new year", "AEST-10AEDT,M10.1.0,M4.1.0/3", "2041-01-01T00:00:00Z", 39600},
        {"negative change time", "<-02>2<-01>,M3.5.0/-1,M10.5.0/0", "2040-03-25T00:59:59Z", -7200},
        {"negative change time, on", "<-02>2<-01>,M3.5.0/-1,M10.5.0/0", "2040-03-25T01:00:00Z", -3600},
        {"days without the leap day", "AAA0BBB,J60/0,J300", "2040-03-01T00:00:00Z", 3600},
        {"days without the leap day, before", "AAA0BBB,J60/0,J300", "2040-02-29T23:59:59Z", 0},
        {"days with the leap day", "AAA0BBB,59/0,299", "2040-02-29T00:00:00Z", 3600},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        const auto rule = TimeZoneRule::parse(row.rule);
        ASSERT_TRUE(rule);
        EXPECT_EQ(rule->offset(static_cast<std::int64_t>(at(row.instant).unixSeconds())), row.offset);
    }
    for (const char* text : {"", "CET", "CE-1", "CET-1CEST", "CET-1CEST,M3.5.0", "CET-1CEST,M13.5.0,M10.5.0",
                             "CET-1CEST,M3.5.0,M10.5.0/3x", "<CET-1", "CET-25", "CET-1CEST,J0,J10"})
        EXPECT_FALSE(TimeZoneRule::parse(text)) << text;
}

} // namespace
} // namespace kivo
