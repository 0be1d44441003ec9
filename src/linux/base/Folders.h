// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kivo {

using EnvironmentLookup = std::function<std::optional<std::string>(std::string_view name)>;

// This process's environment; an empty variable counts as absent.
std::optional<std::string> environmentVariable(std::string_view name);

// Where the user's files go by the XDG base directory rules: a variable that holds no absolute path is
// ignored. Without a home folder in the environment the user database names it.
struct Folders {
    std::string configuration; // $XDG_CONFIG_HOME/kivo
    std::string data;          // $XDG_DATA_HOME/kivo

    static Folders find(const EnvironmentLookup& environment = environmentVariable);
};

} // namespace kivo
