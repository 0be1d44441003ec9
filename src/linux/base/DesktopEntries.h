// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/Folders.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kivo {

// An installed application, as its desktop entry describes it.
struct DesktopEntry {
    std::string id; // without ".desktop"
    std::string path;
    std::string name;       // in the user's language
    std::string executable; // the program's file name; empty when others run it (interpreters, containers)
    bool isShown = true;    // has a place in menus and is no terminal program
    bool operator==(const DesktopEntry&) const = default;
};

// Reads the content of a desktop entry; nothing when it is no application or deleted by its user. `locale` is
// like LC_MESSAGES ("de_DE.UTF-8").
std::optional<DesktopEntry> parseDesktopEntry(std::string_view content, std::string_view locale);

// The applications that are installed. An entry in an earlier folder hides those of its name in later ones.
class DesktopEntries {
public:
    // `folders` hold "applications" folders, most important first.
    DesktopEntries(std::vector<std::string> folders, std::string locale);
    // Those of the user and of the system, Flatpak's and Snap's included.
    static DesktopEntries installed(const EnvironmentLookup& environment = environmentVariable);

    // Null pointers when there is none. Valid until the next `reload`.
    const DesktopEntry* withId(std::string_view id) const;
    const DesktopEntry* withExecutable(std::string_view fileName) const;

    // Reads all folders again if one of them has changed.
    void reload();

private:
    void readFolder(const std::string& folder);
    std::vector<long long> times() const;

    std::vector<std::string> folders_;
    std::string locale_;
    std::vector<long long> times_;
    std::vector<DesktopEntry> entries_;
    std::unordered_map<std::string, std::size_t> byId_; // in lower case
    std::unordered_map<std::string, std::size_t> byExecutable_;
};

} // namespace kivo
