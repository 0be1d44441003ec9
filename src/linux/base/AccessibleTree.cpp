// SPDX-License-Identifier: MIT
#include "linux/base/AccessibleTree.h"

#include "support/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <deque>
#include <initializer_list>
#include <map>
#include <set>
#include <tuple>
#include <utility>

namespace kivo {
namespace {

using Kind = AccessibleQuestion::Kind;

// As AT-SPI numbers them.
enum Role : std::uint32_t {
    invalidRole = 0,
    alertRole = 2,
    dialogRole = 16,
    fillerRole = 20,
    iconRole = 26,
    imageRole = 27,
    labelRole = 29,
    panelRole = 39,
    pushButtonRole = 43,
    scrollPaneRole = 49,
    separatorRole = 50,
    textRole = 61,
    viewportRole = 68,
    paragraphRole = 73,
    entryRole = 79,
    groupingRole = 99,
    notificationRole = 101,
    infoBarRole = 102,
    staticRole = 116,
};

bool isOneOf(std::uint32_t role, std::initializer_list<Role> roles) {
    return std::find(roles.begin(), roles.end(), role) != roles.end();
}
bool isPopUpRole(std::uint32_t role) {
    return isOneOf(role, {alertRole, dialogRole, notificationRole, infoBarRole});
}
bool isPicture(std::uint32_t role) {
    return isOneOf(role, {iconRole, imageRole});
}
// What only arranges others.
bool isLayout(std::uint32_t role) {
    return isOneOf(role, {fillerRole, panelRole, scrollPaneRole, viewportRole, groupingRole});
}
// What never has an action is not asked for one.
bool mayAct(std::uint32_t role) {
    return !isPicture(role) && !isOneOf(role, {invalidRole, fillerRole, labelRole, panelRole, separatorRole,
                                               staticRole, paragraphRole});
}
bool holdsText(std::uint32_t role) {
    return isOneOf(role, {textRole, paragraphRole, entryRole, staticRole});
}

constexpr int farthestButton = 5;
constexpr std::size_t elementsAtOnce = 64;
constexpr std::array<std::string_view, 4> pressActions{"press", "click", "clicked", "activate"};
// Object attributes that name an icon or a category.
constexpr std::array<std::string_view, 4> tellingAttributes{"category", "icon", "icon-name", "image"};

struct Action {
    std::string name;
    std::string path; // of the object that does it
    std::int32_t number = 0;
};

struct Node {
    std::string path;
    std::size_t parent = 0;
    int level = 0; // 0: the application
    std::uint32_t role = invalidRole;
    bool isInPopUp = false; // by the roles of itself and those above it
    bool isPopUp = false;   // its buttons' names are its actions
    std::vector<std::size_t> children;
    std::vector<Action> actions; // its own, then its buttons'
};

// Everything that was read before anybody looks at it; texts are read when they are asked for.
struct Tree {
    std::shared_ptr<AccessibleSource> source;
    std::vector<Node> nodes;

    std::optional<AccessibleAnswer> ask(const std::string& path, Kind kind) const {
        auto answers = source->ask({{path, kind}});
        return answers.empty() ? std::nullopt : std::move(answers.front());
    }
    std::string textOf(const std::string& path, Kind kind) const {
        const auto answer = ask(path, kind);
        return answer && !answer->texts.empty() ? answer->texts.front() : std::string();
    }
};

class TreeReader {
public:
    TreeReader(Tree& tree, const AccessibleLimits& limits) : tree_(tree), limits_(limits) {}

    void read(const std::string& root) {
        tree_.nodes.push_back({.path = root});
        known_.insert(root);
        std::deque<std::size_t> inPopUps;
        std::deque<std::size_t> others{0};
        while (!inPopUps.empty() || !others.empty()) {
            auto& queue = inPopUps.empty() ? others : inPopUps;
            const auto count = static_cast<std::ptrdiff_t>(std::min(queue.size(), elementsAtOnce));
            const std::vector<std::size_t> parents(queue.begin(), queue.begin() + count);
            queue.erase(queue.begin(), queue.begin() + count);
            for (const auto index : readChildren(parents)) {
                const Node& node = tree_.nodes[index];
                if (node.level < limits_.levels)
                    (node.isInPopUp ? inPopUps : others).push_back(index);
            }
        }
    }

    void giveButtonsToPopUps(const PopUpForm& form) {
        markPopUps(form);
        bringLayoutsContentsUp(0);
        std::set<std::pair<std::size_t, std::string>> given;
        std::set<std::pair<std::size_t, std::string>> doubtful;
        // A button's own actions come first, then its name.
        for (std::size_t index = 0; index < tree_.nodes.size(); ++index) {
            const auto press = pressOf(index, form);
            if (!press)
                continue;
            tree_.nodes[index].actions.push_back(*press);
            const auto popUp = popUpOf(index);
            if (!popUp)
                continue;
            if (given.emplace(*popUp, press->name).second)
                tree_.nodes[*popUp].actions.push_back(*press);
            else if (form.closeButton || !isPopUpRole(tree_.nodes[*popUp].role))
                doubtful.emplace(*popUp, press->name);
        }
        for (const auto& [popUp, name] : doubtful) {
            Node& node = tree_.nodes[popUp];
            std::erase_if(node.actions, [&node, &name = name](const Action& action) {
                return action.name == name && action.path != node.path;
            });
        }
    }

private:
    struct Found {
        std::size_t parent;
        std::string path;
    };

    // The children that show, a few at a time, so that what time allows is known as a whole.
    std::vector<std::size_t> readChildren(const std::vector<std::size_t>& parents) {
        std::vector<AccessibleQuestion> questions;
        for (const auto index : parents)
            questions.push_back({tree_.nodes[index].path, Kind::children});
        const auto answers = tree_.source->ask(questions);
        std::vector<Found> found;
        for (std::size_t i = 0; i < answers.size(); ++i) {
            if (!answers[i])
                continue;
            const auto& paths = answers[i]->texts;
            for (std::size_t child = 0; child < std::min(paths.size(), limits_.children); ++child)
                if (known_.size() < limits_.elements && known_.insert(paths[child]).second)
                    found.push_back({parents[i], paths[child]});
        }
        std::vector<std::size_t> children;
        for (std::size_t start = 0; start < found.size(); start += elementsAtOnce) {
            const auto showing = keepShowing(found, start, std::min(start + elementsAtOnce, found.size()));
            readFacts(showing);
            children.insert(children.end(), showing.begin(), showing.end());
        }
        return children;
    }

    std::vector<std::size_t> keepShowing(const std::vector<Found>& found, std::size_t start, std::size_t end) {
        std::vector<AccessibleQuestion> questions;
        for (std::size_t i = start; i < end; ++i)
            questions.push_back({found[i].path, Kind::isShowing});
        const auto answers = tree_.source->ask(questions);
        std::vector<std::size_t> showing;
        for (std::size_t i = 0; i < answers.size(); ++i) {
            if (!answers[i] || answers[i]->number == 0)
                continue;
            const auto& [parent, path] = found[start + i];
            showing.push_back(tree_.nodes.size());
            tree_.nodes[parent].children.push_back(tree_.nodes.size());
            Node node;
            node.path = path;
            node.parent = parent;
            node.level = tree_.nodes[parent].level + 1;
            tree_.nodes.push_back(std::move(node));
        }
        return showing;
    }

    // Roles and actions; names of buttons.
    void readFacts(const std::vector<std::size_t>& elements) {
        std::vector<AccessibleQuestion> questions;
        for (const auto index : elements)
            questions.push_back({tree_.nodes[index].path, Kind::role});
        const auto roles = tree_.source->ask(questions);
        questions.clear();
        std::vector<std::size_t> asked;
        for (std::size_t i = 0; i < roles.size(); ++i) {
            Node& node = tree_.nodes[elements[i]];
            node.role = roles[i] ? roles[i]->number : static_cast<std::uint32_t>(invalidRole);
            node.isInPopUp = isPopUpRole(node.role) || tree_.nodes[node.parent].isInPopUp;
            if (!mayAct(node.role))
                continue;
            questions.push_back({node.path, Kind::actions});
            asked.push_back(elements[i]);
            if (node.role != pushButtonRole)
                continue;
            questions.push_back({node.path, Kind::name});
            asked.push_back(elements[i]);
        }
        const auto answers = tree_.source->ask(questions);
        for (std::size_t i = 0; i < answers.size(); ++i)
            if (answers[i])
                take(tree_.nodes[asked[i]], asked[i], questions[i].kind, *answers[i]);
    }

    void take(Node& node, std::size_t index, Kind kind, const AccessibleAnswer& answer) {
        if (kind == Kind::name) {
            if (!answer.texts.empty())
                buttonNames_.emplace(index, answer.texts.front());
            return;
        }
        std::int32_t number = 0;
        for (const auto& name : answer.texts)
            node.actions.push_back({name, node.path, number++});
    }

    void markPopUps(const PopUpForm& form) {
        for (std::size_t index = 1; index < tree_.nodes.size(); ++index) {
            Node& node = tree_.nodes[index];
            const bool isWindow = form.place == PopUpForm::Place::windows && node.level == 1;
            node.isPopUp = node.isPopUp || isPopUpRole(node.role) || isWindow;
            if (form.place == PopUpForm::Place::aroundCloseButton && isCloseButton(index, form))
                tree_.nodes[node.parent].isPopUp = true;
        }
    }

    // Toolkits put boxes into boxes; what these hold stands beside them instead of below.
    void bringLayoutsContentsUp(std::size_t index) {
        std::deque<std::size_t> rest;
        for (const auto child : std::exchange(tree_.nodes[index].children, {}))
            rest.push_back(child);
        while (!rest.empty()) {
            const std::size_t child = rest.front();
            rest.pop_front();
            Node& node = tree_.nodes[child];
            node.parent = index;
            tree_.nodes[index].children.push_back(child);
            if (isLayout(node.role) && !node.isPopUp && node.level > 1) {
                const auto inside = std::exchange(node.children, {});
                rest.insert(rest.begin(), inside.begin(), inside.end());
            } else {
                bringLayoutsContentsUp(child);
            }
        }
    }

    bool isCloseButton(std::size_t index, const PopUpForm& form) const {
        const auto name = buttonNames_.find(index);
        return form.closeButton && name != buttonNames_.end() && name->second == *form.closeButton;
    }

    // The action that presses a button, under the button's name.
    std::optional<Action> pressOf(std::size_t index, const PopUpForm& form) const {
        const auto name = buttonNames_.find(index);
        if (name == buttonNames_.end())
            return std::nullopt;
        const std::string label = isCloseButton(index, form) ? "Close" : name->second;
        for (const auto& action : tree_.nodes[index].actions) {
            const std::string lower = lowercased(action.name);
            if (!label.empty() &&
                std::find(pressActions.begin(), pressActions.end(), lower) != pressActions.end())
                return Action{label, action.path, action.number};
        }
        return std::nullopt;
    }

    std::optional<std::size_t> popUpOf(std::size_t button) const {
        std::size_t index = button;
        for (int steps = 0; steps < farthestButton && tree_.nodes[index].level > 1; ++steps) {
            index = tree_.nodes[index].parent;
            if (tree_.nodes[index].isPopUp)
                return index;
        }
        return std::nullopt;
    }

    Tree& tree_;
    const AccessibleLimits& limits_;
    std::set<std::string> known_;
    std::map<std::size_t, std::string> buttonNames_;
};

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
        const bool isPicture = kivo::isPicture(node_.role);
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
    TreeReader reader(*tree, limits);
    reader.read(root);
    reader.giveButtonsToPopUps(form);
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
