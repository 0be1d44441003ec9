// SPDX-License-Identifier: MIT
#pragma once

#include "support/Duration.h"
#include "support/Geometry.h"
#include "support/MainLoop.h"
#include "support/PropertyValue.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kivo {

// What the system did to the world outside, one JSON object a line, in the order in which it happened.
class EventLog {
public:
    explicit EventLog(const MainLoop& loop) : loop_(loop), start_(loop.now()) {}

    // Adds "t" (seconds since the log began) and "event" to the members.
    void record(std::string_view event, Dictionary members = {});

    // The same with one more member whose value is a JSON text already, which must be valid.
    void recordWithText(std::string_view event, Dictionary members, std::string_view key,
                        std::string_view json);

    // While muted nothing is recorded: the end of a process says nothing.
    void mute(bool isMuted) { isMuted_ = isMuted; }

    const std::vector<std::string>& lines() const { return lines_; }
    // The same, and forgets them.
    std::vector<std::string> takeLines() { return std::exchange(lines_, {}); }

private:
    std::string line(std::string_view event, Dictionary members) const;

    const MainLoop& loop_;
    Duration start_;
    bool isMuted_ = false;
    std::vector<std::string> lines_;
};

// A number as people write it: without a fraction when it has none.
PropertyValue plainNumber(double value);
// [x, y]
PropertyValue record(Point point);
// [x, y, w, h]
PropertyValue record(const Rect& rect);
// [w, h]
PropertyValue record(Size size);

} // namespace kivo
