// SPDX-License-Identifier: MIT
#pragma once

#include "platform/UpdateFinding.h"
#include "ui/Ink.h"

#include <optional>
#include <string>
#include <vector>

namespace kivo {

// What the window about updates shows.
struct UpdateNotice {
    struct Section {
        std::string heading; // a version
        std::vector<std::string> lines;
        bool operator==(const Section&) const = default;
    };

    std::string windowTitle;
    std::string symbol;
    Ink tint;
    std::string title;
    std::string text;
    std::vector<Section> sections; // what is new, newest first
    // The buttons' titles; absent where there is none.
    std::optional<std::string> page;
    std::optional<std::string> skip;
    std::string close;

    bool operator==(const UpdateNotice&) const = default;
};

UpdateNotice updateNotice(const UpdateFinding& finding);

} // namespace kivo
