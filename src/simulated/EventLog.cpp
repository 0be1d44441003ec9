// SPDX-License-Identifier: MIT
#include "simulated/EventLog.h"

#include "support/Json.h"

#include <cmath>

namespace kivo {

void EventLog::record(std::string_view event, Dictionary members) {
    if (isMuted_)
        return;
    members.insert_or_assign("t", plainNumber(inSeconds(loop_.now() - start_)));
    members.insert_or_assign("event", event);
    lines_.push_back(json::write(std::move(members)));
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
