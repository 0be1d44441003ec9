// SPDX-License-Identifier: MIT
#include "linux/base/AutostartLoginService.h"

#include "linux/base/WholeFile.h"
#include "linux/base/Words.h"
#include "platform/Application.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace kivo {
namespace {

using State = FileText::State;

bool isExecutableFile(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && access(path.c_str(), X_OK) == 0;
}

bool isRunnable(const std::string& program, const std::string& path) {
    if (program.find('/') != program.npos)
        return isExecutableFile(program);
    const auto folders = split(path, ':');
    return std::any_of(folders.begin(), folders.end(), [&](std::string_view folder) {
        return !folder.empty() && isExecutableFile(std::string(folder) + "/" + program);
    });
}

// An AppImage runs from a folder that is gone when it ends; its own path is what lasts. A program that was
// replaced while it runs is at its path again.
std::string ownProgram(const EnvironmentLookup& environment) {
    if (const auto image = environment("APPIMAGE"); image && image->starts_with('/'))
        return *image;
    char path[PATH_MAX];
    const auto length = readlink("/proc/self/exe", path, sizeof path);
    std::string program(path, length > 0 ? static_cast<std::size_t>(length) : 0);
    constexpr std::string_view replaced = " (deleted)";
    if (program.ends_with(replaced) && !isExecutableFile(program))
        program.resize(program.size() - replaced.size());
    return program;
}

} // namespace

AutostartLoginService::Places AutostartLoginService::Places::find(const EnvironmentLookup& environment) {
    Places places;
    const auto folders = Folders::find(environment);
    places.userFolder = folders.userConfiguration + "/autostart";
    for (const auto& folder : folders.systemConfiguration)
        places.systemFolders.push_back(folder + "/autostart");
    places.program = ownProgram(environment);
    places.session.desktops = environment("XDG_CURRENT_DESKTOP").value_or("");
    places.session.isRunnable = [path = environment("PATH").value_or("/usr/local/bin:/usr/bin:/bin")](
                                    const std::string& named) { return isRunnable(named, path); };
    return places;
}

AutostartLoginService::AutostartLoginService(Places places)
    : places_(std::move(places)),
      path_(places_.userFolder + "/" + std::string(applicationIdentifier) + ".desktop") {}

bool AutostartLoginService::isStarted(const std::string& text) const {
    return autostart::isStarted(text, places_.session);
}

std::string AutostartLoginService::systemEntry() const {
    for (const auto& folder : places_.systemFolders) {
        const auto file = readWholeFile(folder + path_.substr(path_.rfind('/')));
        if (file.state == State::read)
            return file.text;
    }
    return {};
}

bool AutostartLoginService::isEnabled() {
    const auto file = readWholeFile(path_);
    return isStarted(file.state == State::missing ? systemEntry() : file.text);
}

std::optional<std::string> AutostartLoginService::registerItem() {
    if (places_.program.empty())
        return "The program's own path is unknown";
    const auto file = readWholeFile(path_);
    if (file.state == State::unreadable)
        return file.error;
    const std::string own = autostart::entry(places_.program);
    if (file.state == State::missing)
        return isStarted(systemEntry()) ? std::nullopt : replaceWholeFile(path_, own);
    if (autostart::isOwn(file.text))
        return file.text == own ? std::nullopt : replaceWholeFile(path_, own);
    const std::string switchedOn = autostart::switchedOn(file.text);
    if (isStarted(switchedOn))
        return switchedOn == file.text ? std::nullopt : replaceWholeFile(path_, switchedOn);
    if (auto error = moveFileAside(path_))
        return error;
    return replaceWholeFile(path_, own);
}

std::optional<std::string> AutostartLoginService::unregisterItem() {
    const auto file = readWholeFile(path_);
    if (file.state == State::unreadable)
        return file.error;
    const bool isMissing = file.state == State::missing;
    const std::string system = systemEntry();
    if (isMissing && !isStarted(system))
        return std::nullopt;
    if (!isMissing && system.empty() && autostart::isOwn(file.text)) {
        const bool isGone = unlink(path_.c_str()) == 0 || errno == ENOENT;
        return isGone ? std::nullopt : std::optional(path_ + ": " + std::strerror(errno));
    }
    const std::string off = autostart::switchedOff(isMissing ? system : file.text);
    return off == file.text ? std::nullopt : replaceWholeFile(path_, off);
}

} // namespace kivo
