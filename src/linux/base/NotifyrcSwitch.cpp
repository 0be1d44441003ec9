// SPDX-License-Identifier: MIT
#include "linux/base/NotifyrcSwitch.h"

#include "linux/base/NotifyrcText.h"
#include "linux/base/WholeFile.h"
#include "support/UTF8.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace kivo {
namespace {

constexpr std::string_view file = "powerdevil.notifyrc";
constexpr notifyrc::Key actions{"Event/lowbattery", "Action"};
constexpr std::string_view popUp = "Popup";
// What the desktop's own settings write where nothing is to happen.
constexpr std::string_view nothing = "None";

std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    while (true) {
        const auto end = text.find(separator);
        parts.emplace_back(text.substr(0, end));
        if (end == std::string_view::npos)
            return parts;
        text.remove_prefix(end + 1);
    }
}

// The folders of a search path; its default where it is not set.
std::vector<std::string> folders(const EnvironmentLookup& environment, std::string_view variable,
                                 std::string_view usual) {
    return split(environment(variable).value_or(std::string(usual)), ':');
}

std::string textOf(const PropertyValue& value) {
    const std::string* text = value.string();
    return text ? *text : std::string();
}

} // namespace

NotifyrcSwitch::NotifyrcSwitch(const EnvironmentLookup& environment) {
    const auto parent = [](const std::string& folder) { return folder.substr(0, folder.rfind('/') + 1); };
    const Folders own = Folders::find(environment);
    path_ = parent(own.configuration) + std::string(file);
    for (const auto& folder : folders(environment, "XDG_CONFIG_DIRS", "/etc/xdg"))
        systemFiles_.push_back(folder + "/" + std::string(file));
    administratorFiles_ = systemFiles_.size();
    std::vector<std::string> data{parent(own.data)};
    for (const auto& folder : folders(environment, "XDG_DATA_DIRS", "/usr/local/share:/usr/share"))
        data.push_back(folder + "/");
    for (const auto& folder : data)
        for (const auto* generation : {"knotifications6/", "knotifications5/"})
            systemFiles_.push_back(folder + generation + std::string(file));
}

std::optional<std::string> NotifyrcSwitch::defaultActions() const {
    for (const auto& path : systemFiles_)
        if (auto found = notifyrc::value(readWholeFile(path).text, actions))
            return found;
    return std::nullopt;
}

std::optional<PropertyValue> NotifyrcSwitch::read() {
    bool isEventKnown = false;
    for (std::size_t i = 0; i < systemFiles_.size(); ++i) {
        const std::string text = readWholeFile(systemFiles_[i]).text;
        if (i < administratorFiles_ && notifyrc::isImmutable(text, actions))
            return std::nullopt;
        isEventKnown = isEventKnown || (i >= administratorFiles_ && notifyrc::hasGroup(text, actions.group));
    }
    const auto own = readWholeFile(path_);
    if (!isEventKnown || own.state == FileText::State::unreadable)
        return std::nullopt;
    if (own.state == FileText::State::missing)
        return PropertyValue(nullptr);
    // What is no UTF-8 could not be remembered as it is.
    if (notifyrc::isImmutable(own.text, actions) || utf8::validPrefix(own.text) != own.text.size())
        return std::nullopt;
    return PropertyValue(own.text);
}

PropertyValue NotifyrcSwitch::silenced(const PropertyValue& value) {
    const std::string text = textOf(value);
    auto named = notifyrc::value(text, actions);
    if (!named)
        named = defaultActions();
    std::string rest;
    bool hasPopUp = false;
    for (const auto& action : split(named.value_or(""), '|')) {
        hasPopUp = hasPopUp || action == popUp;
        if (action != popUp && !action.empty())
            rest += (rest.empty() ? "" : "|") + action;
    }
    if (!hasPopUp)
        return value;
    return notifyrc::with(text, actions, rest.empty() ? nothing : std::string_view(rest));
}

PropertyValue NotifyrcSwitch::restored(const PropertyValue& now, const PropertyValue& before) {
    const PropertyValue ours = silenced(before);
    if (now == ours)
        return before;
    const std::string text = textOf(now);
    if (notifyrc::value(text, actions) != notifyrc::value(textOf(ours), actions))
        return now;
    const auto old = notifyrc::value(textOf(before), actions);
    return old ? notifyrc::with(text, actions, *old) : notifyrc::without(text, actions);
}

std::optional<std::string> NotifyrcSwitch::write(const PropertyValue& value) {
    if (const std::string* text = value.string())
        return replaceWholeFile(path_, *text);
    if (unlink(path_.c_str()) != 0 && errno != ENOENT)
        return path_ + ": " + std::strerror(errno);
    return std::nullopt;
}

} // namespace kivo
