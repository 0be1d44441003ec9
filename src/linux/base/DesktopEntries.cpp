// SPDX-License-Identifier: MIT
#include "linux/base/DesktopEntries.h"

#include "linux/base/WholeFile.h"
#include "linux/base/Words.h"
#include "support/Text.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <sys/stat.h>
#include <utility>

namespace kivo {
namespace {

std::string_view fileName(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

// The first word of a command line, without its quotes; the rest stays in `line`.
std::string_view takeWord(std::string_view& line) {
    line = trimmed(line);
    const char quote = line.starts_with('"') ? '"' : ' ';
    if (quote == '"')
        line.remove_prefix(1);
    const auto word = line.substr(0, line.find(quote));
    line.remove_prefix(std::min(line.size(), word.size() + 1));
    return word;
}

// Programs that run others: they say nothing about the application.
bool isRunner(std::string_view name) {
    static constexpr std::array runners = {
        "sh",   "bash",     "dash",   "flatpak",      "snap", "perl", "ruby", "java",     "node",
        "wine", "xdg-open", "pkexec", "gapplication", "gio",  "gjs",  "mono", "electron", "dbus-launch"};
    return name.starts_with("python") || std::ranges::find(runners, name) != runners.end();
}

std::string executable(std::string_view line) {
    auto word = takeWord(line);
    if (fileName(word) == "env") {
        do
            word = takeWord(line);
        while (word.find('=') != word.npos || word.starts_with('-'));
    }
    const auto name = fileName(word);
    return isRunner(name) ? std::string() : std::string(name);
}

// How well a key such as "Name[de_DE]" fits the locale "de_DE": 0 not at all, 1 for the plain key.
int fit(std::string_view key, std::string_view locale) {
    if (key == "Name")
        return 1;
    if (!key.starts_with("Name[") || !key.ends_with(']'))
        return 0;
    const auto language = key.substr(5, key.size() - 6);
    if (language == locale)
        return 3;
    return language == locale.substr(0, locale.find('_')) ? 2 : 0;
}

} // namespace

std::optional<DesktopEntry> parseDesktopEntry(std::string_view content, std::string_view locale) {
    locale = locale.substr(0, locale.find_first_of(".@"));
    DesktopEntry entry;
    int bestFit = 0;
    bool isInGroup = false;
    bool isApplication = false;
    while (!content.empty()) {
        const auto line = trimmed(content.substr(0, content.find('\n')));
        content.remove_prefix(std::min(content.size(), content.find('\n')));
        content.remove_prefix(content.empty() ? 0 : 1);
        if (line.starts_with('[')) {
            isInGroup = line == "[Desktop Entry]";
            continue;
        }
        const auto equals = line.find('=');
        if (!isInGroup || line.starts_with('#') || equals == line.npos)
            continue;
        const auto key = trimmed(line.substr(0, equals));
        const auto value = trimmed(line.substr(equals + 1));
        if (const int thisFit = fit(key, locale); thisFit > bestFit) {
            bestFit = thisFit;
            entry.name = value;
        } else if (key == "Type") {
            isApplication = value == "Application";
        } else if (key == "Exec") {
            entry.executable = executable(value);
        } else if (key == "Hidden" && value == "true") {
            return std::nullopt;
        } else if ((key == "NoDisplay" || key == "Terminal") && value == "true") {
            entry.isShown = false;
        }
    }
    return isApplication && !entry.name.empty() ? std::optional(std::move(entry)) : std::nullopt;
}

DesktopEntries::DesktopEntries(std::vector<std::string> folders, std::string locale)
    : folders_(std::move(folders)), locale_(std::move(locale)) {
    reload();
}

DesktopEntries DesktopEntries::installed(const EnvironmentLookup& environment) {
    const auto places = Folders::find(environment);
    std::vector<std::string> folders = {places.userData, places.userData + "/flatpak/exports/share"};
    folders.insert(folders.end(), places.systemData.begin(), places.systemData.end());
    folders.insert(folders.end(), {"/var/lib/flatpak/exports/share", "/var/lib/snapd/desktop"});
    std::string locale;
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (locale.empty())
            locale = environment(variable).value_or("");
    }
    return DesktopEntries(std::move(folders), std::move(locale));
}

const DesktopEntry* DesktopEntries::withId(std::string_view id) const {
    const auto found = byId_.find(lowercased(id));
    return found == byId_.end() ? nullptr : &entries_[found->second];
}

const DesktopEntry* DesktopEntries::withExecutable(std::string_view name) const {
    const auto found = byExecutable_.find(std::string(name));
    return found == byExecutable_.end() ? nullptr : &entries_[found->second];
}

void DesktopEntries::reload() {
    auto current = times();
    if (current == times_)
        return;
    times_ = std::move(current);
    entries_.clear();
    byId_.clear();
    byExecutable_.clear();
    for (const auto& folder : folders_)
        readFolder(folder + "/applications");
}

std::vector<long long> DesktopEntries::times() const {
    std::vector<long long> result;
    for (const auto& folder : folders_) {
        struct stat status {};
        const bool isThere = stat((folder + "/applications").c_str(), &status) == 0;
        result.push_back(isThere ? status.st_mtim.tv_sec * 1'000'000'000LL + status.st_mtim.tv_nsec : 0);
    }
    return result;
}

// Entries in subfolders are named after their way: "kde/okular.desktop" is "kde-okular".
void DesktopEntries::readFolder(const std::string& folder) {
    std::error_code error;
    auto file = std::filesystem::recursive_directory_iterator(
        folder, std::filesystem::directory_options::skip_permission_denied, error);
    for (; !error && file != std::filesystem::recursive_directory_iterator(); file.increment(error)) {
        const std::string path = file->path();
        if (!path.ends_with(".desktop"))
            continue;
        std::string id = path.substr(folder.size() + 1, path.size() - folder.size() - 1 - 8);
        std::ranges::replace(id, '/', '-');
        if (byId_.contains(lowercased(id)))
            continue;
        auto entry = parseDesktopEntry(readWholeFile(path).text, locale_);
        if (!entry)
            continue;
        entry->id = std::move(id);
        entry->path = path;
        byId_.emplace(lowercased(entry->id), entries_.size());
        if (entry->isShown && !entry->executable.empty())
            byExecutable_.emplace(entry->executable, entries_.size());
        entries_.push_back(std::move(*entry));
    }
}

} // namespace kivo
