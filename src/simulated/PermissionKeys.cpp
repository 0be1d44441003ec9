// SPDX-License-Identifier: MIT
#include "simulated/MachineKeyTable.h"

#include "support/EnumTable.h"

namespace kivo {
namespace {

constexpr EnumTable<NotificationStatus, 5> statusNames{{{
    {NotificationStatus::notDetermined, "notDetermined"},
    {NotificationStatus::denied, "denied"},
    {NotificationStatus::authorized, "authorized"},
    {NotificationStatus::provisional, "provisional"},
    {NotificationStatus::ephemeral, "ephemeral"},
}}};

NotificationCenter::Authorization readAuthorization(const PropertyValue& value) {
    if (value.dictionary()) {
        RecordReader record(value, "notifications.authorization");
        auto error = record.requireString("error");
        record.finish();
        return {false, std::move(error)};
    }
    const std::string& answer = reading::string(value, "notifications.authorization");
    if (answer != "granted" && answer != "denied")
        throw DecodingError("notifications.authorization must be \"granted\", \"denied\" or {\"error\": …}");
    return {answer == "granted", std::nullopt};
}

NotificationState readNotifications(const PropertyValue& value) {
    RecordReader record(value, "notifications");
    NotificationState state;
    if (const auto* authorization = record.find("authorization"))
        state.authorization = readAuthorization(*authorization);
    if (const auto* status = record.find("status")) {
        const std::string& name = reading::string(*status, record.path("status"));
        const auto known = statusNames.value(name);
        if (!known)
            throw DecodingError("notifications.status cannot be \"" + name + "\"");
        state.status = *known;
    }
    state.addError = record.optionalString("addError");
    record.finish();
    return state;
}

std::optional<std::vector<AccessibilityElementState>> readElements(const PropertyValue* value,
                                                                   const std::string& what);

AccessibilityElementState readElement(const PropertyValue& value, const std::string& what) {
    RecordReader record(value, what);
    AccessibilityElementState element;
    for (const std::string_view attribute : {"AXValue", "AXTitle", "AXDescription"}) {
        if (const auto* content = record.find(attribute); content && !content->isNull())
            element.attributes.emplace(attribute, *content);
    }
    if (const auto* actions = record.find("actions")) {
        if (!actions->isNull())
            element.actions = reading::strings(*actions, record.path("actions"));
    } else {
        element.actions.emplace();
    }
    element.children = readElements(record.find("children"), record.path("children"));
    element.performError = record.optionalBool("performError").value_or(false);
    record.finish();
    return element;
}

// Left out: an empty list; null: reading it fails.
std::optional<std::vector<AccessibilityElementState>> readElements(const PropertyValue* value,
                                                                   const std::string& what) {
    std::vector<AccessibilityElementState> elements;
    if (!value)
        return elements;
    if (value->isNull())
        return std::nullopt;
    for (const auto& element : reading::list(*value, what))
        elements.push_back(readElement(element, what + "[" + std::to_string(elements.size()) + "]"));
    return elements;
}

AccessibilityState readAccessibility(const PropertyValue& value) {
    RecordReader record(value, "accessibility");
    AccessibilityState state;
    state.isTrusted = record.optionalBool("trusted").value_or(false);
    state.grantsOnPrompt = record.optionalBool("grantsOnPrompt").value_or(false);
    if (const auto* applications = record.find("applications")) {
        for (const auto& element : reading::list(*applications, record.path("applications"))) {
            const std::string what =
                "accessibility.applications[" + std::to_string(state.applications.size()) + "]";
            RecordReader application(element, what);
            AccessibilityApplicationState read;
            read.bundleIdentifier = application.requireString("bundleIdentifier");
            read.pid = application.requireInt32("pid");
            read.windows = readElements(application.find("windows"), application.path("windows"));
            application.finish();
            state.applications.push_back(std::move(read));
        }
    }
    record.finish();
    return state;
}

LoginState readLogin(const PropertyValue& value) {
    RecordReader record(value, "login");
    LoginState state{record.optionalBool("enabled").value_or(false), record.optionalString("error")};
    record.finish();
    return state;
}

UpdateState readUpdates(const PropertyValue& value) {
    RecordReader record(value, "updates");
    UpdateState state{record.optionalBool("canCheck").value_or(true),
                      record.optionalBool("automatic").value_or(true)};
    record.finish();
    return state;
}

} // namespace

void addPermissionKeys(MachineKeyTable& table) {
    table["notifications"] = [](const PropertyValue& value) {
        return replacing(&MachineState::notifications, readNotifications(value));
    };
    table["accessibility"] = [](const PropertyValue& value) {
        return replacing(&MachineState::accessibility, readAccessibility(value));
    };
    table["login"] = [](const PropertyValue& value) {
        return replacing(&MachineState::login, readLogin(value));
    };
    table["updates"] = [](const PropertyValue& value) {
        return replacing(&MachineState::updates, readUpdates(value));
    };
}

} // namespace kivo
