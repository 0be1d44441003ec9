// SPDX-License-Identifier: MIT
#include "linux/base/ProcessOwners.h"

#include "linux/base/Descriptor.h"
#include "linux/base/UnitName.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace kivo {
namespace {

constexpr int deepestAncestor = 64;
constexpr unsigned long kernelThreadFlag = 0x00200000;

struct Stat {
    std::int32_t parent = 0;
    unsigned long flags = 0;
    std::uint64_t start = 0; // in ticks
};

// The fields of /proc/PID/stat behind the name, which may hold anything.
std::optional<Stat> parseStat(std::string_view text) {
    const auto nameEnd = text.rfind(')');
    if (nameEnd == text.npos)
        return std::nullopt;
    text.remove_prefix(nameEnd + 1);
    Stat stat;
    for (int field = 3; field <= 22; ++field) {
        text.remove_prefix(std::min(text.size(), text.find_first_not_of(' ')));
        const auto word = text.substr(0, text.find(' '));
        text.remove_prefix(word.size());
        if (field == 4)
            std::from_chars(word.data(), word.data() + word.size(), stat.parent);
        if (field == 9)
            std::from_chars(word.data(), word.data() + word.size(), stat.flags);
        if (field == 22)
            std::from_chars(word.data(), word.data() + word.size(), stat.start);
    }
    return stat;
}

bool isShell(std::string_view name) {
    static constexpr std::array shells = {"bash", "sh",  "zsh", "fish", "dash",  "ksh",    "mksh",
                                          "tcsh", "csh", "nu",  "pwsh", "xonsh", "elvish", "yash"};
    return std::ranges::find(shells, name) != shells.end();
}

// A small file of a process; nothing when the process is gone or the file is not for this user.
std::optional<std::string> processFile(const std::string& proc, std::int32_t pid, const char* name) {
    const std::string path = proc + "/" + std::to_string(pid) + "/" + name;
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    char buffer[4096];
    const auto length = file ? read(file.get(), buffer, sizeof buffer) : -1;
    if (length < 0)
        return std::nullopt;
    return std::string(buffer, static_cast<std::size_t>(length));
}

// The name of its program; of other users' processes only the short name can be read.
std::string nameOf(const std::string& proc, std::int32_t pid) {
    auto program = programOfProcess(pid, proc);
    return program.empty() ? commandName(pid, proc).value_or("") : program;
}

} // namespace

ProcessOwners::ProcessOwners(DesktopEntries entries, std::string proc)
    : entries_(std::move(entries)), proc_(std::move(proc)) {}

ProcessOwners::Owner ProcessOwners::find(std::int32_t pid, const Known& known, int depth) {
    if (const auto cgroup = processFile(proc_, pid, "cgroup")) {
        if (const auto unit = unitOwner(*cgroup)) {
            if (unit->kind == UnitOwner::Kind::application)
                return applicationOwner(unit->name);
            return add(Kind::service, "unit " + unit->name,
                       {.pid = 0, .localizedName = unit->name, .bundleIdentifier = {}, .bundlePath = {}});
        }
    }
    const auto text = processFile(proc_, pid, "stat");
    const auto stat = text ? parseStat(*text) : std::nullopt;
    if (!stat)
        return itself;
    if (stat->flags & kernelThreadFlag)
        return add(Kind::kernel, "kernel",
                   {.pid = 0, .localizedName = "kernel", .bundleIdentifier = {}, .bundlePath = {}});
    if (const auto* entry = entries_.withExecutable(nameOf(proc_, pid)))
        return entryOwner(*entry);
    return stat->parent > 1 && depth < deepestAncestor ? ofParent(stat->parent, known, depth) : itself;
}

// Without a unit of its own a process belongs to the terminal or the shell that it was started from.
ProcessOwners::Owner ProcessOwners::ofParent(std::int32_t parent, const Known& known, int depth) {
    const auto before = known(parent);
    const Owner owner = before ? *before : find(parent, known, depth + 1);
    if (owner != itself) {
        const Kind kind = owners_[index(owner)].kind;
        return kind == Kind::application || kind == Kind::shell ? owner : itself;
    }
    const auto name = commandName(parent, proc_);
    if (!name || !isShell(*name))
        return itself;
    return add(Kind::shell, "shell " + *name,
               {.pid = 0, .localizedName = *name, .bundleIdentifier = {}, .bundlePath = {}});
}

ProcessOwners::Owner ProcessOwners::applicationOwner(const std::string& id) {
    const DesktopEntry* entry = entries_.withId(id);
    if (!entry) {
        entries_.reload();
        entry = entries_.withId(id);
    }
    if (entry)
        return entryOwner(*entry);
    return add(Kind::application, "app " + id,
               {.pid = 0, .localizedName = id, .bundleIdentifier = id, .bundlePath = {}});
}

ProcessOwners::Owner ProcessOwners::entryOwner(const DesktopEntry& entry) {
    return add(Kind::application, "app " + entry.id,
               {.pid = 0,
                .localizedName = entry.name,
                .bundleIdentifier = entry.id,
                .bundlePath = entry.path,
                .isRegular = entry.isShown});
}

ProcessOwners::Owner ProcessOwners::add(Kind kind, const std::string& key, RunningApplication application) {
    const auto [place, isNew] = byKey_.try_emplace(key, static_cast<Owner>(owners_.size()));
    if (isNew)
        owners_.push_back({kind, std::move(application)});
    return place->second;
}

std::optional<std::string> commandName(std::int32_t pid, const std::string& proc) {
    auto name = processFile(proc, pid, "comm");
    if (name && name->ends_with('\n'))
        name->pop_back();
    return name && !name->empty() ? name : std::nullopt;
}

std::optional<std::uint64_t> startTick(std::int32_t pid, const std::string& proc) {
    const auto text = processFile(proc, pid, "stat");
    const auto stat = text ? parseStat(*text) : std::nullopt;
    return stat ? std::optional(stat->start) : std::nullopt;
}

std::uint64_t currentTick() {
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    const auto perSecond = static_cast<std::uint64_t>(sysconf(_SC_CLK_TCK));
    return static_cast<std::uint64_t>(now.tv_sec) * perSecond +
           static_cast<std::uint64_t>(now.tv_nsec) / (1'000'000'000 / perSecond);
}

std::string programOfProcess(std::int32_t pid, const std::string& proc) {
    char target[PATH_MAX];
    const auto length = readlink((proc + "/" + std::to_string(pid) + "/exe").c_str(), target, sizeof target);
    if (length <= 0)
        return {};
    std::string_view path(target, static_cast<std::size_t>(length));
    constexpr std::string_view replaced = " (deleted)";
    if (path.ends_with(replaced))
        path.remove_suffix(replaced.size());
    return std::string(path.substr(path.rfind('/') + 1));
}

} // namespace kivo
