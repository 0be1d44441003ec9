// SPDX-License-Identifier: MIT
// kivo-notices: Kivo's helper for the desktop's own low-battery notice, a process of its own because the
// library that reads a desktop's settings would stay in Kivo for ever.
#include "linux/base/DesktopNotices.h"

#include <cstdio>
#include <optional>
#include <string_view>
#include <unistd.h>

namespace {

constexpr const char* usage =
    "The desktop's own low-battery notice, while Kivo gives one\n"
    "\n"
    "usage: kivo-notices silence   turn it off, where this desktop has a switch for it\n"
    "       kivo-notices restore   put back what was there before\n"
    "       kivo-notices --help    print this and end\n"
    "\n"
    "Prints the name of each setting that it changed.\n";

} // namespace

int main(int argc, char** argv) {
    using namespace kivo;
    const std::string_view order = argc == 2 ? argv[1] : "";
    if (order == "--help" || order == "-h") {
        std::fputs(usage, stdout);
        return 0;
    }
    if (order != "silence" && order != "restore") {
        std::fputs(usage, stderr);
        return 2;
    }
    DesktopNotices notices(noticeSwitches(), DesktopNotices::memoryPath(Folders::find()));
    // In a sandbox the settings are its own, and mean nothing to the desktop.
    const bool isSandboxed = access("/.flatpak-info", F_OK) == 0 || environmentVariable("SNAP");
    const auto desktop = isSandboxed ? std::nullopt : environmentVariable("XDG_CURRENT_DESKTOP");
    const auto outcome = order == "silence" ? notices.silence(desktop.value_or("")) : notices.restore();
    for (const auto& name : outcome.changed)
        std::puts(name.c_str());
    for (const auto& error : outcome.errors)
        std::fprintf(stderr, "kivo-notices: %s\n", error.c_str());
    return outcome.errors.empty() ? 0 : 1;
}
