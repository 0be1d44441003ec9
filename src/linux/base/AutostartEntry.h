// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace kivo {

// The texts of autostart entries: files that a session reads when its user logs in, by the rules for desktop
// entries and for autostart. Nothing here touches a disk.
namespace autostart {

// What decides besides the entry itself.
struct Session {
    std::string desktops; // as XDG_CURRENT_DESKTOP names them, "ubuntu:GNOME"
    // Whether this program (a path, or a name to be looked up) can be run.
    std::function<bool(const std::string& program)> isRunnable;
};

// Kivo's own entry for the program at this path.
std::string entry(std::string_view program);
// Whether the text holds nothing that is not Kivo's: its entry for whatever program, switched off or not, or no
// more than the switch.
bool isOwn(std::string_view text);

// Whether a session starts what the entry names. A switched-off or unreadable entry starts nothing.
bool isStarted(std::string_view text, const Session& session);
// Whether its user (or a desktop for its user) switched the entry off.
bool isSwitchedOff(std::string_view text);

// The entry switched on or off; everything else in it stays.
std::string switchedOn(std::string_view text);
std::string switchedOff(std::string_view text);

} // namespace autostart
} // namespace kivo
