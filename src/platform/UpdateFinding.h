// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace kivo {

// What a check for updates found, for whoever shows it. Versions are texts as their makers write them.
struct UpdateFinding {
    enum class Kind {
        available,
        upToDate,
        unreachable, // nobody answered, or too slowly
        refused,     // what came is damaged, unsigned, or older than what was seen before
    };
    struct Release {
        std::string version;
        std::vector<std::string> notes; // what is new, a sentence each
        bool operator==(const Release&) const = default;
    };

    Kind kind = Kind::upToDate;
    bool isAsked = false;          // its user is waiting for it
    std::string current;           // the version that runs
    std::vector<Release> releases; // newer than that, newest first; only when available
    std::string page;              // where the newest is to be had (https); only when available

    bool operator==(const UpdateFinding&) const = default;
};

} // namespace kivo
