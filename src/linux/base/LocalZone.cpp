// SPDX-License-Identifier: MIT
#include "linux/base/LocalZone.h"

#include "linux/base/WholeFile.h"

#include <algorithm>
#include <climits>
#include <string_view>
#include <unistd.h>

namespace kivo {
namespace {

constexpr std::string_view database = "zoneinfo/";

// What follows the database's folder in the path; the whole path when it is relative to that folder.
std::string inDatabase(std::string_view path) {
    const auto place = path.find(database);
    if (place != path.npos)
        path.remove_prefix(place + database.size());
    for (const std::string_view variant : {"posix/", "right/"}) {
        if (path.starts_with(variant))
            path.remove_prefix(variant.size());
    }
    return path.starts_with('/') ? std::string() : std::string(path);
}

} // namespace

std::string localZone(const EnvironmentLookup& environment, const std::string& etc) {
    if (auto variable = environment("TZ")) {
        if (variable->starts_with(':'))
            variable->erase(0, 1);
        if (auto name = inDatabase(*variable); !name.empty())
            return name;
    }
    char target[PATH_MAX];
    const auto length = readlink((etc + "/localtime").c_str(), target, sizeof target);
    const std::string_view link(target, length > 0 ? static_cast<std::size_t>(length) : 0);
    if (link.find(database) != link.npos)
        return inDatabase(link);
    std::string name = readWholeFile(etc + "/timezone").text;
    name.erase(std::min(name.find('\n'), name.size()));
    return name.empty() ? "UTC" : name;
}

} // namespace kivo
