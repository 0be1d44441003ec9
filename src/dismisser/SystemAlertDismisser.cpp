// SPDX-License-Identifier: MIT
#include "dismisser/SystemAlertDismisser.h"

#include "platform/Accessibility.h"
#include "platform/Workspace.h"
#include "support/Text.h"

#include <algorithm>
#include <array>

namespace kivo {
namespace {

constexpr std::int64_t highestLevel = 20;
const Duration scanInterval = seconds(3);
constexpr int deepestElement = 13;
constexpr int deepestText = 5;
constexpr std::string_view notificationProcess = "com.apple.notificationcenterui";
constexpr std::string_view settingsPage =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";

constexpr std::array<std::string_view, 3> textAttributes{"AXValue", "AXTitle", "AXDescription"};
constexpr std::array<std::string_view, 9> lowBatteryPhrases{
    "low battery",        "batería baja",    "bateria baja",      "reserve power", "reserva de energía",
    "reserva de batería", "will sleep soon", "entrará en reposo", "se suspenderá",
};

bool isCloseAction(std::string_view name) {
    const std::string lower = lowercased(name);
    return lower.starts_with("name:close") || lower.starts_with("name:cerrar") || lower == "close" ||
           lower == "cerrar";
}

std::optional<std::string> closeAction(AccessibilityElement& element) {
    const auto names = element.actionNames();
    const auto it = std::find_if(names.begin(), names.end(), isCloseAction);
    return it == names.end() ? std::nullopt : std::optional(*it);
}

// Everything the element and those below it say, separated by spaces.
void collectTexts(AccessibilityElement& element, int level, std::string& texts) {
    if (level > deepestText)
        return;
    for (const auto attribute : textAttributes) {
        const auto value = element.attribute(attribute);
        const auto* text = value ? value->string() : nullptr;
        if (!text)
            continue;
        if (!texts.empty())
            texts += ' ';
        texts += *text;
    }
    for (const auto& child : element.elements("AXChildren"))
        collectTexts(*child, level + 1, texts);
}

bool speaksOfLowBattery(AccessibilityElement& element) {
    std::string texts;
    collectTexts(element, 0, texts);
    texts = lowercased(texts);
    return std::any_of(lowBatteryPhrases.begin(), lowBatteryPhrases.end(),
                       [&](std::string_view phrase) { return texts.find(phrase) != std::string::npos; });
}

} // namespace

SystemAlertDismisser::SystemAlertDismisser(MainLoop& loop, Accessibility& accessibility, Workspace& workspace,
                                           LogSink& log)
    : loop_(loop),
      accessibility_(accessibility),
      workspace_(workspace),
      logger_(log, "dismisser"),
      isTrusted_(accessibility.isProcessTrusted()) {}

void SystemAlertDismisser::update(bool isEnabled, const std::optional<BatterySnapshot>& snapshot) {
    isTrusted_.set(accessibility_.isProcessTrusted());
    const bool isLow = snapshot && snapshot->source == BatterySnapshot::PowerSource::battery &&
                       snapshot->level <= highestLevel;
    const bool shouldWatch = isEnabled && isTrusted_.get() && isLow;
    if (shouldWatch == isWatching_)
        return;
    isWatching_ = shouldWatch;
    ++watchNumber_;
    nextScan_.cancel();
    if (!shouldWatch)
        return;
    loop_.post(lifetime_.guard([this, number = watchNumber_] {
        if (number == watchNumber_)
            watch();
    }));
}

void SystemAlertDismisser::requestTrust() {
    isTrusted_.set(accessibility_.isProcessTrustedWithPrompt());
    if (!isTrusted_.get())
        workspace_.open(settingsPage);
}

void SystemAlertDismisser::watch() {
    const auto number = watchNumber_;
    scan();
    // What the scan told its listeners may have ended this watch.
    if (number == watchNumber_)
        nextScan_ = loop_.after(scanInterval, [this] { watch(); });
}

void SystemAlertDismisser::scan() {
    const auto pid = accessibility_.processWithIdentifier(notificationProcess);
    const auto application = pid ? accessibility_.applicationElement(*pid) : nullptr;
    if (!application)
        return;
    for (const auto& window : application->elements("AXWindows"))
        visit(*window, 0);
}

void SystemAlertDismisser::visit(AccessibilityElement& element, int depth) {
    if (depth > deepestElement || dismiss(element))
        return;
    for (const auto& child : element.elements("AXChildren"))
        visit(*child, depth + 1);
}

bool SystemAlertDismisser::dismiss(AccessibilityElement& element) {
    const auto action = closeAction(element);
    if (!action || !speaksOfLowBattery(element))
        return false;
    if (element.perform(*action)) {
        dismissedCount_.set(dismissedCount_.get() + 1);
        logger_.log("Dismissed a macOS battery alert");
    }
    return true;
}

} // namespace kivo
