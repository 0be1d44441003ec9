// SPDX-License-Identifier: MIT
#pragma once

#include "support/Date.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kivo {

// A place's civil time: how far its clocks are from UTC at any instant. Read from the system's zone files and
// independent of the process's own time zone. Copies share their data, which never changes.
class TimeZone {
public:
    // UTC.
    TimeZone();
    // The zone of that IANA name ("Europe/Berlin"); nothing when the name is none or its file is missing or
    // damaged. "UTC" needs no file.
    static std::optional<TimeZone> named(std::string_view name,
                                         const std::string& folder = "/usr/share/zoneinfo");
    // From the content of a zone file (TZif, any version). Nothing when it is damaged.
    static std::optional<TimeZone> fromTZif(std::string_view bytes);

    // Seconds to add to UTC for the clocks of the place, at that instant.
    std::int64_t offset(Date date) const;
    // The instant at which the clocks last showed a full hour, as they run at `date`. An hour that begins
    // or ends with a change of the clocks is counted by the clocks after the change.
    Date startOfHour(Date date) const;

private:
    struct Data;
    explicit TimeZone(std::shared_ptr<const Data> data);
    std::shared_ptr<const Data> data_; // null for UTC
};

} // namespace kivo
