// SPDX-License-Identifier: MIT
#include "simulated/EventLog.h"

#include "support/Json.h"

#include <cmath>

namespace kivo {

void EventLog::record(std::string_view event, Dictionary members) {
    if (!isMuted_)
        lines_.push_back(line(event, std::move(members)));
}

void EventLog::recordWithText(std::string_view event, Dictionary members, std::string_view key,
                              std::string_view json) {
    if (isMuted_)
        return;
    std::string text = line(event, std::move(members));
    text.pop_back();
    text += ",\"";
    text += key;
    text += "\":";
    text += json;
    text += '}';
    lines_.push_back(std::move(text));
}

std::string EventLog::line(std::string_view event, Dictionary members) const {
    members.insert_or_assign("t", plainNumber(inSeconds(loop_.now() - start_)));
    members.insert_or_assign("event", event);
    return json::write(std::move(members));
}

PropertyValue plainNumber(double value) {
    constexpr double largestExact = 9007199254740992.0;
    if (std::trunc(value) == value && std::abs(value) <= largestExact)
        return static_cast<std::int64_t>(value);
    return value;
}

PropertyValue record(Point point) {
    return Array{plainNumber(point.x), plainNumber(point.y)};
}

PropertyValue record(const Rect& rect) {
    return Array{plainNumber(rect.x), plainNumber(rect.y), plainNumber(rect.width), plainNumber(rect.height)};
}

PropertyValue record(Size size) {
    return Array{plainNumber(size.width), plainNumber(size.height)};
}

} // namespace kivo
