// SPDX-License-Identifier: MIT
#include "linux/base/AccessibleTree.h"

#include "linux/base/AccessibleNodes.h"
#include "support/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <tuple>
#include <utility>

namespace kivo {
namespace {

using namespace accessible;

// Object attributes that name an icon or a category.
constexpr std::array<std::string_view, 4> tellingAttributes{"category", "icon", "icon-name", "image"};

bool holdsText(std::uint32_t role) {
    return isOneOf(role, {textRole, paragraphRole, entryRole, staticRole});
}

class TreeElement final : public AccessibilityElement {
public:
    TreeElement(std::shared_ptr<const Tree> tree, std::size_t index)
        : tree_(std::move(tree)), node_(tree_->nodes[index]) {}

    std::optional<PropertyValue> attribute(std::string_view name) override {
        std::string text;
        if (name == "AXTitle")
            text = tree_->textOf(node_.path, Kind::name);
        else if (name == "AXDescription")
            text = description();
        else if (name == "AXValue" && holdsText(node_.role))
            text = tree_->textOf(node_.path, Kind::text);
        return text.empty() ? std::nullopt : std::optional<PropertyValue>(std::move(text));
    }

    std::vector<std::shared_ptr<AccessibilityElement>> elements(std::string_view attribute) override {
        std::vector<std::shared_ptr<AccessibilityElement>> result;
        if (attribute != (node_.level == 0 ? "AXWindows" : "AXChildren"))
            return result;
        for (const auto child : node_.children)
            result.push_back(std::make_shared<TreeElement>(tree_, child));
        return result;
    }

    std::vector<std::string> actionNames() override {
        std::vector<std::string> names;
        for (const auto& action : node_.actions)
            names.push_back(action.name);
        return names;
    }

    bool perform(std::string_view name) override {
        const auto action = std::find_if(node_.actions.begin(), node_.actions.end(),
                                         [&](const Action& candidate) { return candidate.name == name; });
        return action != node_.actions.end() && tree_->source->perform(action->path, action->number);
    }

private:
    std::string description() const {
        std::string text = tree_->textOf(node_.path, Kind::description);
        if (tellsLowBattery(text))
            text += text.empty() ? "low battery" : " low battery";
        return text;
    }

    bool tellsLowBattery(const std::string& ownDescription) const {
        const bool isPicture = isPictureRole(node_.role);
        if (!isPicture && !node_.isPopUp)
            return false;
        if (isPicture && (namesLowBattery(ownDescription) ||
                          namesLowBattery(tree_->textOf(node_.path, Kind::imageDescription)) ||
                          namesLowBattery(tree_->textOf(node_.path, Kind::name))))
            return true;
        const auto attributes = tree_->ask(node_.path, Kind::attributes);
        for (std::size_t i = 0; attributes && i + 1 < attributes->texts.size(); i += 2) {
            const auto& [key, value] = std::tie(attributes->texts[i], attributes->texts[i + 1]);
            if (std::find(tellingAttributes.begin(), tellingAttributes.end(), key) != tellingAttributes.end() &&
                namesLowBattery(value))
                return true;
        }
        return false;
    }

    std::shared_ptr<const Tree> tree_;
    const Node& node_;
};

} // namespace

std::shared_ptr<AccessibilityElement> readAccessibleTree(std::shared_ptr<AccessibleSource> source,
                                                         const std::string& root, const PopUpForm& form,
                                                         const AccessibleLimits& limits) {
    auto tree = std::make_shared<Tree>();
    tree->source = std::move(source);
    readNodes(*tree, root, form, limits);
    return std::make_shared<TreeElement>(std::move(tree), 0);
}

bool namesLowBattery(std::string_view iconOrCategory) {
    // A sentence that happens to hold the words is no name.
    if (iconOrCategory.find(' ') != std::string_view::npos)
        return false;
    iconOrCategory.remove_prefix(iconOrCategory.rfind('/') + 1);
    bool isBattery = false;
    bool isLow = false;
    std::size_t start = 0;
    while (start <= iconOrCategory.size()) {
        const std::size_t end = std::min(iconOrCategory.find_first_of("-._", start), iconOrCategory.size());
        const std::string word = lowercased(iconOrCategory.substr(start, end - start));
        start = end + 1;
        int level = 0;
        const auto [rest, error] = std::from_chars(word.data(), word.data() + word.size(), level);
        const bool isNumber = error == std::errc() && rest == word.data() + word.size();
        if (word == "charging" || word == "charged")
            return false;
        isBattery = isBattery || word == "battery";
        isLow = isLow || word == "low" || word == "caution" || word == "critical" || word == "empty" ||
                (isNumber && level <= 20);
    }
    return isBattery && isLow;
}

} // namespace kivo
