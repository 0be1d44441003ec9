// SPDX-License-Identifier: MIT
#include "linux/base/NotifyrcSwitch.h"

#include "linux/base/NotifyrcText.h"
#include "linux/base/WholeFile.h"
#include "linux/base/Words.h"
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

std::string textOf(const PropertyValue& value) {
    const std::string* text = value.string();
    return text ? *text : std::string();
}

} // namespace

NotifyrcSwitch::NotifyrcSwitch(const EnvironmentLookup& environment) {
    const Folders places = Folders::find(environment);
    path_ = places.userConfiguration + "/" + std::string(file);
    for (const auto& folder : places.systemConfiguration)
        systemFiles_.push_back(folder + "/" + std::string(file));
    administratorFiles_ = systemFiles_.size();
    std::vector<std::string> data{places.userData};
    data.insert(data.end(), places.systemData.begin(), places.systemData.end());
    for (const auto& folder : data)
        for (const auto* generation : {"/knotifications6/", "/knotifications5/"})
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
    const std::string list = named.value_or("");
    for (const auto action : split(list, '|')) {
        hasPopUp = hasPopUp || action == popUp;
        if (action != popUp && !action.empty())
            rest.append(rest.empty() ? "" : "|").append(action);
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
