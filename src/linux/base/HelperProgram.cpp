// SPDX-License-Identifier: MIT
#include "linux/base/HelperProgram.h"

#include <filesystem>
#include <unistd.h>

namespace kivo {

std::string helperProgram(std::string_view name) {
    std::error_code error;
    const auto folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    if (error)
        return {};
    for (const auto& place : {folder / name, folder.parent_path() / "libexec/kivo" / name}) {
        if (access(place.c_str(), X_OK) == 0)
            return place;
    }
    return {};
}

} // namespace kivo
