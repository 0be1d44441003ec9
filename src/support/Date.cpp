// SPDX-License-Identifier: MIT
#include "support/Date.h"

#include <charconv>
#include <chrono>

namespace kivo {
namespace {

// Reads exactly `digits` decimal digits at the front of `text` and drops them.
std::optional<int> takeNumber(std::string_view& text, std::size_t digits) {
    if (text.size() < digits)
        return std::nullopt;
    int value = 0;
    const auto result = std::from_chars(text.data(), text.data() + digits, value);
    if (result.ec != std::errc{} || result.ptr != text.data() + digits || text[0] == '-')
        return std::nullopt;
    text.remove_prefix(digits);
    return value;
}

bool take(std::string_view& text, char expected) {
    if (text.empty() || text[0] != expected)
        return false;
    text.remove_prefix(1);
    return true;
}

std::optional<double> takeFraction(std::string_view& text) {
    double fraction = 0;
    double unit = 0.1;
    std::size_t digits = 0;
    for (; !text.empty() && text[0] >= '0' && text[0] <= '9'; text.remove_prefix(1), unit /= 10, ++digits)
        fraction += (text[0] - '0') * unit;
    return digits == 0 ? std::nullopt : std::optional(fraction);
}

// Offset from UTC in seconds: "Z" or "+hh:mm".
std::optional<int> takeOffset(std::string_view& text) {
    if (take(text, 'Z') || take(text, 'z'))
        return 0;
    const int sign = take(text, '+') ? 1 : take(text, '-') ? -1 : 0;
    if (sign == 0)
        return std::nullopt;
    const auto hours = takeNumber(text, 2);
    if (!hours || *hours > 23 || !take(text, ':'))
        return std::nullopt;
    const auto minutes = takeNumber(text, 2);
    if (!minutes || *minutes > 59)
        return std::nullopt;
    return sign * (*hours * 3600 + *minutes * 60);
}

} // namespace

std::optional<Date> Date::fromRFC3339(std::string_view text) {
    using namespace std::chrono;
    const auto y = takeNumber(text, 4);
    if (!y || !take(text, '-'))
        return std::nullopt;
    const auto mo = takeNumber(text, 2);
    if (!mo || !take(text, '-'))
        return std::nullopt;
    const auto d = takeNumber(text, 2);
    if (!d || !(take(text, 'T') || take(text, 't') || take(text, ' ')))
        return std::nullopt;
    const year_month_day day{year{*y}, month{static_cast<unsigned>(*mo)},
                             std::chrono::day{static_cast<unsigned>(*d)}};
    const auto h = takeNumber(text, 2);
    if (!day.ok() || !h || *h > 23 || !take(text, ':'))
        return std::nullopt;
    const auto mi = takeNumber(text, 2);
    if (!mi || *mi > 59 || !take(text, ':'))
        return std::nullopt;
    const auto s = takeNumber(text, 2);
    if (!s || *s > 60)
        return std::nullopt;
    double fraction = 0;
    if (take(text, '.')) {
        const auto digits = takeFraction(text);
        if (!digits)
            return std::nullopt;
        fraction = *digits;
    }
    const auto offset = takeOffset(text);
    if (!offset || !text.empty())
        return std::nullopt;
    const double days = static_cast<double>(sys_days(day).time_since_epoch().count());
    return fromUnix(days * 86400 + *h * 3600 + *mi * 60 + *s - *offset + fraction);
}

} // namespace kivo
