// SPDX-License-Identifier: MIT
#include "linux/base/DesktopNotices.h"

#include "linux/base/Descriptor.h"
#include "linux/base/GSettingsSwitch.h"
#include "linux/base/NotifyrcSwitch.h"
#include "linux/base/WholeFile.h"
#include "linux/base/Words.h"
#include "support/Json.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <unistd.h>
#include <utility>

namespace kivo {
namespace {

// Which switch is whose. Budgie's notifications follow GNOME's settings.
constexpr std::pair<std::string_view, std::string_view> desktops[] = {
    {"GNOME", GSettingsSwitch::ownName},
    {"Budgie", GSettingsSwitch::ownName},
    {"KDE", NotifyrcSwitch::ownName},
};

bool isOf(std::string_view desktop, std::string_view notice) {
    return std::any_of(std::begin(desktops), std::end(desktops), [&](const auto& row) {
        return row.second == notice && isListed(row.first, desktop, ':');
    });
}

} // namespace

NoticeSwitches noticeSwitches(const EnvironmentLookup& environment) {
    NoticeSwitches result;
    result.push_back(std::make_unique<GSettingsSwitch>());
    result.push_back(std::make_unique<NotifyrcSwitch>(environment));
    return result;
}

// Held while the memory and the switches are being changed; the kernel gives it back when the process ends.
class DesktopNotices::Lock {
public:
    explicit Lock(const std::string& memory) {
        std::error_code ignored;
        std::filesystem::create_directories(std::filesystem::path(memory).parent_path(), ignored);
        file_ = Descriptor(open((memory + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
        while (file_ && flock(file_.get(), LOCK_EX) != 0 && errno == EINTR) {
        }
    }

private:
    Descriptor file_;
};

DesktopNotices::DesktopNotices(NoticeSwitches switches, std::string memory)
    : switches_(std::move(switches)), memory_(std::move(memory)) {}

DesktopNotices::Outcome DesktopNotices::silence(std::string_view desktop) {
    const Lock lock(memory_);
    Outcome outcome;
    Dictionary before = remembered(outcome);
    for (const auto& notice : switches_) {
        if (!outcome.errors.empty() || !isOf(desktop, notice->name()))
            continue;
        const auto now = notice->read();
        if (!now)
            continue;
        const PropertyValue silent = notice->silenced(*now);
        if (silent == *now)
            continue;
        // What is remembered is older than what another process, killed half-way, may have left.
        const bool isNew = before.emplace(notice->name(), *now).second;
        if (!isNew || remember(before, outcome))
            write(*notice, silent, outcome);
    }
    return outcome;
}

DesktopNotices::Outcome DesktopNotices::restore() {
    const Lock lock(memory_);
    Outcome outcome;
    Dictionary before = remembered(outcome);
    if (before.empty())
        return outcome;
    for (const auto& notice : switches_) {
        const auto old = before.find(notice->name());
        const auto now = old == before.end() ? std::nullopt : notice->read();
        if (!now)
            continue;
        const PropertyValue wanted = notice->restored(*now, old->second);
        if (wanted == *now || write(*notice, wanted, outcome))
            before.erase(old);
    }
    remember(before, outcome);
    return outcome;
}

Dictionary DesktopNotices::remembered(Outcome& outcome) const {
    const auto file = readWholeFile(memory_);
    if (file.state == FileText::State::unreadable)
        outcome.errors.push_back(file.error);
    if (file.state != FileText::State::read)
        return {};
    try {
        return decoding::object(json::parse(file.text), "what was remembered");
    } catch (const DecodingError& error) {
        outcome.errors.push_back(memory_ + ": " + error.what());
        return {};
    }
}

bool DesktopNotices::remember(const Dictionary& values, Outcome& outcome) const {
    std::optional<std::string> error;
    if (!values.empty())
        error = replaceWholeFile(memory_, json::write(values) + "\n");
    else if (unlink(memory_.c_str()) != 0 && errno != ENOENT)
        error = memory_ + ": " + std::strerror(errno);
    if (error)
        outcome.errors.push_back(*error);
    return !error;
}

bool DesktopNotices::write(NoticeSwitch& notice, const PropertyValue& value, Outcome& outcome) const {
    if (const auto error = notice.write(value)) {
        outcome.errors.push_back(*error);
        return false;
    }
    outcome.changed.emplace_back(notice.name());
    return true;
}

} // namespace kivo
