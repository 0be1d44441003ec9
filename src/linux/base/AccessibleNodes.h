// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/AccessibleTree.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// What is read of an application before anybody looks at its elements.
namespace kivo::accessible {

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

bool isOneOf(std::uint32_t role, std::initializer_list<Role> roles);
bool isPictureRole(std::uint32_t role);

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

// Reads everything but texts. To be called once, on an empty tree that has its source.
void readNodes(Tree& tree, const std::string& root, const PopUpForm& form, const AccessibleLimits& limits);

} // namespace kivo::accessible
