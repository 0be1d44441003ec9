// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivo {

using EnvironmentLookup = std::function<std::optional<std::string>(std::string_view name)>;

// This process's environment; an empty variable counts as absent.
std::optional<std::string> environmentVariable(std::string_view name);

// Where files are by the XDG base directory rules: a path that is not absolute is ignored. Without a home
// folder in the environment the user database names it.
struct Folders {
    // Kivo's own
    std::string configuration; // $XDG_CONFIG_HOME/kivo
    std::string data;          // $XDG_DATA_HOME/kivo
    // Everybody's
    std::string userConfiguration;                // $XDG_CONFIG_HOME
    std::string userData;                         // $XDG_DATA_HOME
    std::vector<std::string> systemConfiguration; // $XDG_CONFIG_DIRS, the most important first
    std::vector<std::string> systemData;          // $XDG_DATA_DIRS

    static Folders find(const EnvironmentLookup& environment = environmentVariable);
};

} // namespace kivo
