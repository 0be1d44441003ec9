// SPDX-License-Identifier: MIT
#include "linux/base/AccessibleNodes.h"

#include "support/Text.h"

#include <algorithm>
#include <array>
#include <deque>
#include <map>
#include <set>
#include <string_view>

namespace kivo::accessible {
namespace {

constexpr int farthestButton = 5;
constexpr std::size_t elementsAtOnce = 64;
constexpr std::array<std::string_view, 4> pressActions{"press", "click", "clicked", "activate"};

bool isPopUpRole(std::uint32_t role) {
    return isOneOf(role, {alertRole, dialogRole, notificationRole, infoBarRole});
}
// What only arranges others.
bool isLayout(std::uint32_t role) {
    return isOneOf(role, {fillerRole, panelRole, scrollPaneRole, viewportRole, groupingRole});
}
// What never has an action is not asked for one.
bool mayAct(std::uint32_t role) {
    return !isPictureRole(role) && !isOneOf(role, {invalidRole, fillerRole, labelRole, panelRole, separatorRole,
                                                   staticRole, paragraphRole});
}

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
        questions.reserve(parents.size());
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
        questions.reserve(elements.size());
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

} // namespace

bool isOneOf(std::uint32_t role, std::initializer_list<Role> roles) {
    return std::find(roles.begin(), roles.end(), role) != roles.end();
}
bool isPictureRole(std::uint32_t role) {
    return isOneOf(role, {iconRole, imageRole});
}

void readNodes(Tree& tree, const std::string& root, const PopUpForm& form, const AccessibleLimits& limits) {
    TreeReader reader(tree, limits);
    reader.read(root);
    reader.giveButtonsToPopUps(form);
}

} // namespace kivo::accessible
