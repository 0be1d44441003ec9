// SPDX-License-Identifier: MIT
#include "linux/base/Folders.h"

#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

namespace kivo {
namespace {

bool isAbsolute(const std::optional<std::string>& path) {
    return path && path->starts_with('/');
}

std::string homeFolder(const EnvironmentLookup& environment) {
    if (const auto home = environment("HOME"); isAbsolute(home))
        return *home;
    if (const auto* user = getpwuid(getuid()); user && user->pw_dir && user->pw_dir[0] == '/')
        return user->pw_dir;
    return "/";
}

} // namespace

std::optional<std::string> environmentVariable(std::string_view name) {
    const char* value = std::getenv(std::string(name).c_str());
    return value && *value ? std::optional<std::string>(value) : std::nullopt;
}

Folders Folders::find(const EnvironmentLookup& environment) {
    const auto folder = [&](std::string_view variable, std::string_view inHome) {
        const auto base = environment(variable);
        return (isAbsolute(base) ? *base : homeFolder(environment) + std::string(inHome)) + "/kivo";
    };
    return {folder("XDG_CONFIG_HOME", "/.config"), folder("XDG_DATA_HOME", "/.local/share")};
}

} // namespace kivo
