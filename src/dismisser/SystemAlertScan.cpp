// SPDX-License-Identifier: MIT
#include "dismisser/SystemAlertScan.h"

#include "platform/Accessibility.h"
#include "support/Text.h"

#include <algorithm>
#include <array>

namespace kivo {
namespace {

constexpr int deepestElement = 13;
constexpr int deepestText = 5;
constexpr std::string_view notificationProcess = "com.apple.notificationcenterui";

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

// Whether the element was a pop-up to close; it was then acted on.
bool dismiss(AccessibilityElement& element, const std::function<void()>& dismissed) {
    const auto action = closeAction(element);
    if (!action || !speaksOfLowBattery(element))
        return false;
    if (element.perform(*action))
        dismissed();
    return true;
}

void visit(AccessibilityElement& element, int depth, const std::function<void()>& dismissed) {
    if (depth > deepestElement || dismiss(element, dismissed))
        return;
    for (const auto& child : element.elements("AXChildren"))
        visit(*child, depth + 1, dismissed);
}

} // namespace

void dismissSystemAlerts(AccessibleProcesses& processes, const std::function<void()>& dismissed) {
    const auto pid = processes.processWithIdentifier(notificationProcess);
    const auto application = pid ? processes.applicationElement(*pid) : nullptr;
    if (!application)
        return;
    for (const auto& window : application->elements("AXWindows"))
        visit(*window, 0, dismissed);
}

} // namespace kivo
