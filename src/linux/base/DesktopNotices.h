// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/Folders.h"
#include "linux/base/NoticeSwitch.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kivo {

// The switches that this program knows.
using NoticeSwitches = std::vector<std::unique_ptr<NoticeSwitch>>;
NoticeSwitches noticeSwitches(const EnvironmentLookup& environment = environmentVariable);

// Turns desktops' own low-battery notices off and on again. What was there before is in a file, safely on the
// disk, before anything is changed, and stays in it until it is back: whoever is killed in between, or finds a
// disk full, loses nothing. Several processes may do this at once; one waits for the other.
class DesktopNotices {
public:
    // `memory` is the file's path.
    DesktopNotices(NoticeSwitches switches, std::string memory);

    // What was done: the names of the switches that were changed, and errors' descriptions.
    struct Outcome {
        std::vector<std::string> changed;
        std::vector<std::string> errors;
    };
    // Silences the notice of the desktop (`desktop` is XDG_CURRENT_DESKTOP, a list with colons), where it has a
    // switch that this program knows.
    Outcome silence(std::string_view desktop);
    // Puts back what was remembered, on every desktop; leaves what somebody else has changed since.
    Outcome restore();

    static std::string memoryPath(const Folders& folders) { return folders.data + "/desktop-notices.json"; }

private:
    class Lock;
    Dictionary remembered(Outcome& outcome) const;
    bool remember(const Dictionary& values, Outcome& outcome) const;
    bool write(NoticeSwitch& notice, const PropertyValue& value, Outcome& outcome) const;

    NoticeSwitches switches_;
    std::string memory_;
};

} // namespace kivo
