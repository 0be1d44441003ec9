// SPDX-License-Identifier: MIT
#include "support/TimeZoneRule.h"

#include <chrono>

namespace kivo {

struct TimeZoneRule::Reader {
    std::string_view rest;

    bool take(char expected) {
        if (rest.empty() || rest[0] != expected)
            return false;
        rest.remove_prefix(1);
        return true;
    }

    static bool isDigit(char c) { return c >= '0' && c <= '9'; }

    std::optional<int> number(int least, int greatest) {
        int value = 0;
        std::size_t digits = 0;
        for (; !rest.empty() && isDigit(rest[0]) && digits < 4; ++digits, rest.remove_prefix(1))
            value = value * 10 + (rest[0] - '0');
        if (digits == 0 || value < least || value > greatest)
            return std::nullopt;
        return value;
    }

    // "CET" or "<+0530>".
    bool name() {
        std::size_t length = 0;
        if (take('<')) {
            while (length < rest.size() && rest[length] != '>')
                ++length;
            if (length < 3 || length == rest.size())
                return false;
            rest.remove_prefix(length + 1);
            return true;
        }
        const auto isLetter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
        while (length < rest.size() && isLetter(rest[length]))
            ++length;
        rest.remove_prefix(length);
        return length >= 3;
    }

    // "[+-]hh[:mm[:ss]]".
    std::optional<std::int64_t> time(int greatestHour) {
        std::int64_t sign = 1;
        if (take('-'))
            sign = -1;
        else
            take('+');
        const auto hours = number(0, greatestHour);
        if (!hours)
            return std::nullopt;
        std::int64_t seconds = std::int64_t{*hours} * 3600;
        for (const int unit : {60, 1}) {
            if (!take(':'))
                break;
            const auto part = number(0, 59);
            if (!part)
                return std::nullopt;
            seconds += *part * unit;
        }
        return sign * seconds;
    }

    std::optional<Change> change() {
        Change change;
        if (take('M')) {
            const auto month = number(1, 12);
            if (!month || !take('.'))
                return std::nullopt;
            const auto week = number(1, 5);
            if (!week || !take('.'))
                return std::nullopt;
            const auto day = number(0, 6);
            if (!day)
                return std::nullopt;
            change.month = *month;
            change.week = *week;
            change.day = *day;
        } else {
            const bool isJulian = take('J');
            const auto day = isJulian ? number(1, 365) : number(0, 365);
            if (!day)
                return std::nullopt;
            change.kind = isJulian ? Change::Kind::julianWithoutLeapDay : Change::Kind::dayOfYear;
            change.day = *day;
        }
        if (take('/')) {
            const auto seconds = time(167);
            if (!seconds)
                return std::nullopt;
            change.seconds = *seconds;
        }
        return change;
    }
};

std::int64_t TimeZoneRule::Change::inYear(int year) const {
    using namespace std::chrono;
    const std::chrono::year y{year};
    sys_days date{};
    switch (kind) {
    case Kind::weekdayOfMonth: {
        const std::chrono::month m{static_cast<unsigned>(month)};
        const weekday w{static_cast<unsigned>(day)};
        date = week == 5 ? sys_days(y / m / w[last]) : sys_days(y / m / w[static_cast<unsigned>(week)]);
        break;
    }
    case Kind::julianWithoutLeapDay:
        date = sys_days(y / January / 1) + days(day - 1 + (y.is_leap() && day > 59 ? 1 : 0));
        break;
    case Kind::dayOfYear:
        date = sys_days(y / January / 1) + days(day);
        break;
    }
    return std::int64_t{date.time_since_epoch().count()} * 86400 + seconds;
}

std::optional<TimeZoneRule> TimeZoneRule::parse(std::string_view text) {
    Reader reader{text};
    TimeZoneRule rule;
    if (!reader.name())
        return std::nullopt;
    const auto west = reader.time(24);
    if (!west)
        return std::nullopt;
    rule.standard_ = -*west;
    if (reader.rest.empty())
        return rule;
    if (!reader.name())
        return std::nullopt;
    std::int64_t summerOffset = rule.standard_ + 3600;
    if (!reader.rest.empty() && reader.rest[0] != ',') {
        const auto summerWest = reader.time(24);
        if (!summerWest)
            return std::nullopt;
        summerOffset = -*summerWest;
    }
    if (!reader.take(','))
        return std::nullopt;
    const auto begin = reader.change();
    if (!begin || !reader.take(','))
        return std::nullopt;
    const auto end = reader.change();
    if (!end || !reader.rest.empty())
        return std::nullopt;
    rule.summer_ = Summer{summerOffset, *begin, *end};
    return rule;
}

std::int64_t TimeZoneRule::offset(std::int64_t unixSeconds) const {
    using namespace std::chrono;
    if (!summer_)
        return standard_;
    const auto day = floor<days>(sys_seconds(seconds(unixSeconds + standard_)));
    const int year = static_cast<int>(year_month_day(day).year());
    const std::int64_t begin = summer_->begin.inYear(year) - standard_;
    const std::int64_t end = summer_->end.inYear(year) - summer_->offset;
    // South of the equator summer spans the turn of the year.
    const bool isSummer =
        begin < end ? unixSeconds >= begin && unixSeconds < end : unixSeconds >= begin || unixSeconds < end;
    return isSummer ? summer_->offset : standard_;
}

} // namespace kivo
