// SPDX-License-Identifier: MIT
#pragma once

#include "core/AlertSettings.h"
#include "support/Color.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kivo {

class AppCoordinator;

// What the alerts tab of the settings shows.
struct AlertsPaneContent {
    struct Range {
        std::int64_t minimum = 0;
        std::int64_t maximum = 0;
        bool operator==(const Range&) const = default;
    };
    struct Editor {
        // Both absent for a trigger without a percentage. The threshold is within the range.
        std::optional<std::int64_t> threshold;
        std::optional<Range> range;
        OverlayPosition position = OverlayPosition::top;
        AlertTint tint = AlertTint::auto_;
        AlertSound sound = AlertSound::none;
        bool glowsScreen = false;
        bool notifies = false;
        bool canDelete = false;
        bool operator==(const Editor&) const = default;
    };
    struct Rule {
        std::size_t index = 0; // place in the settings' rules
        bool isEnabled = false;
        std::string title;
        std::string summary;
        Color tint;                   // the rule's own, else its family's
        std::optional<Editor> editor; // while expanded
        bool operator==(const Rule&) const = default;
    };
    struct Section {
        AlertTrigger::Family family = AlertTrigger::Family::low;
        std::string title;
        std::string detail;
        std::string symbol;
        Color color;
        bool canAdd = false;
        std::vector<Rule> rules;
        bool operator==(const Section&) const = default;
    };

    std::vector<Section> sections;
    bool operator==(const AlertsPaneContent&) const = default;
};

// `expandedRule`: the one rule whose editor shows; absent: none.
AlertsPaneContent alertsPaneContent(const AlertSettings& settings, const std::optional<UUID>& expandedRule);

// The percentages that the editor offers; absent for a trigger without one.
std::optional<AlertsPaneContent::Range> thresholdRange(AlertTrigger::Kind kind);

// One change through the rule editor; what is absent stays.
struct RuleEdit {
    std::optional<std::int64_t> threshold; // clamped to the editor's range; ignored where there is none
    std::optional<OverlayPosition> position;
    std::optional<AlertTint> tint;
    std::optional<AlertSound> sound; // is also played once, as a preview
    std::optional<bool> glowsScreen;
    std::optional<bool> notifies;
    std::optional<bool> isEnabled;
};

// The alerts tab's actions and the one thing it remembers: which rule is expanded. Every change is stored at
// once. Indices are places in the settings' rules; an index without a rule does nothing.
class AlertsPane {
public:
    explicit AlertsPane(AppCoordinator& coordinator) : coordinator_(coordinator) {}

    AlertsPaneContent content() const;

    void addRule(AlertTrigger::Family family);
    void deleteRule(std::size_t index);
    void toggleExpanded(std::size_t index);
    void edit(std::size_t index, const RuleEdit& edit);
    void test(std::size_t index);

private:
    // Null pointer when there is no such rule.
    const AlertRule* rule(std::size_t index) const;
    void change(const std::function<void(std::vector<AlertRule>&)>& change);

    AppCoordinator& coordinator_;
    std::optional<UUID> expandedRule_;
};

} // namespace kivo
