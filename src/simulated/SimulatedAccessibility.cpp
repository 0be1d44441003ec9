// SPDX-License-Identifier: MIT
#include "simulated/SimulatedAccessibility.h"

#include "support/Text.h"

#include <algorithm>
#include <utility>

namespace kivo {

struct SimulatedAccessibility::Node {
    AccessibilityElementState state;             // without its children
    std::vector<std::shared_ptr<Node>> children; // an application's: its windows
    bool areChildrenReadable = true;
    Node* parent = nullptr;
    std::int32_t pid = 0;
    bool isApplication = false;
    std::string bundleIdentifier;
};

namespace {

using Node = SimulatedAccessibility::Node;

void addChildren(Node& parent, const std::optional<std::vector<AccessibilityElementState>>& elements) {
    parent.areChildrenReadable = elements.has_value();
    if (!elements)
        return;
    for (const AccessibilityElementState& element : *elements) {
        auto node = std::make_shared<Node>();
        node->state = {element.attributes, element.actions, std::nullopt, element.performError};
        node->parent = &parent;
        node->pid = parent.pid;
        addChildren(*node, element.children);
        parent.children.push_back(std::move(node));
    }
}

// "Close" or "Name:Close" with whatever follows, in English or Spanish, in any letter case.
bool isCloseAction(std::string_view action) {
    const std::string name = lowercased(action);
    return name == "close" || name == "cerrar" || name.starts_with("name:close") ||
           name.starts_with("name:cerrar");
}

class Element final : public AccessibilityElement {
public:
    Element(SimulatedCore& core, std::weak_ptr<Node> node, std::int32_t pid)
        : core_(core), node_(std::move(node)), pid_(pid) {}

    std::optional<PropertyValue> attribute(std::string_view name) override {
        const auto node = readable();
        const auto* value = node ? find(node->state.attributes, name) : nullptr;
        return value ? std::optional(*value) : std::nullopt;
    }

    std::vector<std::shared_ptr<AccessibilityElement>> elements(std::string_view name) override {
        std::vector<std::shared_ptr<AccessibilityElement>> result;
        const auto node = readable();
        if (!node || !node->areChildrenReadable || name != (node->isApplication ? "AXWindows" : "AXChildren"))
            return result;
        for (const auto& child : node->children)
            result.push_back(std::make_shared<Element>(core_, child, child->pid));
        return result;
    }

    std::vector<std::string> actionNames() override {
        const auto node = readable();
        return node && node->state.actions ? *node->state.actions : std::vector<std::string>();
    }

    bool perform(std::string_view action) override {
        const bool isDone = tryPerform(action);
        core_.events.record("accessibility.perform", {{"pid", pid_}, {"action", action}, {"ok", isDone}});
        return isDone;
    }

private:
    std::shared_ptr<Node> readable() const {
        return core_.state.accessibility.isTrusted ? node_.lock() : nullptr;
    }

    bool tryPerform(std::string_view action) const {
        const auto node = readable();
        if (!node || node->state.performError || !node->state.actions)
            return false;
        const auto& actions = *node->state.actions;
        if (std::find(actions.begin(), actions.end(), action) == actions.end())
            return false;
        if (node->parent && isCloseAction(action))
            std::erase(node->parent->children, node);
        return true;
    }

    SimulatedCore& core_;
    std::weak_ptr<Node> node_;
    std::int32_t pid_;
};

} // namespace

SimulatedAccessibility::SimulatedAccessibility(SimulatedCore& core) : core_(core) {
    stateChanged();
}

SimulatedAccessibility::~SimulatedAccessibility() = default;

void SimulatedAccessibility::isProcessTrustedWithPrompt(std::function<void(bool isTrusted)> answer) {
    auto& accessibility = core_.state.accessibility;
    core_.events.record("accessibility.prompt");
    accessibility.isTrusted = accessibility.isTrusted || accessibility.grantsOnPrompt;
    answer(accessibility.isTrusted);
}

void SimulatedAccessibility::read(Reading reading) {
    reading(*this, [](const std::function<void()>& task) { task(); });
}

std::shared_ptr<AccessibilityElement> SimulatedAccessibility::applicationElement(std::int32_t pid) {
    for (const auto& application : applications_) {
        if (application->pid == pid)
            return std::make_shared<Element>(core_, application, pid);
    }
    return std::make_shared<Element>(core_, std::weak_ptr<Node>(), pid);
}

std::optional<std::int32_t> SimulatedAccessibility::processWithIdentifier(std::string_view bundleIdentifier) {
    for (const auto& application : applications_) {
        if (application->bundleIdentifier == bundleIdentifier)
            return application->pid;
    }
    return std::nullopt;
}

void SimulatedAccessibility::stateChanged() {
    applications_.clear();
    for (const AccessibilityApplicationState& state : core_.state.accessibility.applications) {
        auto application = std::make_shared<Node>();
        application->isApplication = true;
        application->pid = state.pid;
        application->bundleIdentifier = state.bundleIdentifier;
        addChildren(*application, state.windows);
        applications_.push_back(std::move(application));
    }
}

} // namespace kivo
