// SPDX-License-Identifier: MIT
#include "linux/base/Folders.h"

#include "linux/base/Words.h"

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
    const auto own = [&](std::string_view variable, std::string_view inHome) {
        const auto folder = environment(variable);
        return isAbsolute(folder) ? *folder : homeFolder(environment) + std::string(inHome);
    };
    const auto shared = [&](std::string_view variable, const char* usual) {
        const auto path = environment(variable).value_or(usual);
        std::vector<std::string> folders;
        for (const auto folder : split(path, ':')) {
            if (folder.starts_with('/'))
                folders.emplace_back(folder);
        }
        return folders;
    };
    Folders result;
    result.userConfiguration = own("XDG_CONFIG_HOME", "/.config");
    result.userData = own("XDG_DATA_HOME", "/.local/share");
    result.systemConfiguration = shared("XDG_CONFIG_DIRS", "/etc/xdg");
    result.systemData = shared("XDG_DATA_DIRS", "/usr/local/share:/usr/share");
    result.configuration = result.userConfiguration + "/kivo";
    result.data = result.userData + "/kivo";
    return result;
}

} // namespace kivo
