// SPDX-License-Identifier: MIT
#include "linux/base/updates/FeedFetch.h"

#include "linux/base/Descriptor.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace kivo {
namespace {

using State = FeedFetch::State;

constexpr std::string_view filePrefix = "file://";

FeedFetch tooLarge(std::size_t largest) {
    return {State::refused, {}, "it is larger than " + std::to_string(largest) + " bytes"};
}

FeedFetch tooSlow(int seconds) {
    return {State::unreachable, {}, "it took longer than " + std::to_string(seconds) + " s"};
}

long long milliseconds() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * 1000LL + time.tv_nsec / 1'000'000;
}

// Reads to the end, or until there is more than may be, or until the time is over.
FeedFetch drain(int source, std::size_t largest, int deadlineSeconds) {
    const long long deadline = milliseconds() + deadlineSeconds * 1000LL;
    FeedFetch result{State::read, {}, {}};
    char buffer[16384];
    while (true) {
        pollfd wanted{source, POLLIN, 0};
        const long long left = std::max(0LL, deadline - milliseconds());
        const int ready = poll(&wanted, 1, static_cast<int>(left));
        if (ready == 0)
            return tooSlow(deadlineSeconds);
        const ssize_t count = ready < 0 ? -1 : ::read(source, buffer, sizeof buffer);
        if (count == 0)
            return result;
        if (count < 0 && errno != EINTR)
            return {State::unreachable, {}, std::strerror(errno)};
        result.content.append(buffer, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        if (result.content.size() > largest)
            return tooLarge(largest);
    }
}

FeedFetch readFile(const std::string& path, std::size_t largest, int deadlineSeconds) {
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (!file || fstat(file.get(), &status) != 0)
        return {State::unreachable, {}, path + ": " + std::strerror(errno)};
    return S_ISREG(status.st_mode) ? drain(file.get(), largest, deadlineSeconds)
                                   : FeedFetch{State::refused, {}, path + " is not a file"};
}

std::vector<std::string> curl(const std::string& address, FeedWay way, int deadlineSeconds) {
    // "-q" first: whatever a configuration file says is not meant for this.
    std::vector<std::string> command{
        "curl",      "-q",           "--silent", "--show-error", "--fail",
        "--globoff", "--user-agent", "Kivo",     "--max-time",   std::to_string(deadlineSeconds)};
    const auto add = [&](std::initializer_list<const char*> more) {
        command.insert(command.end(), more.begin(), more.end());
    };
    if (way == FeedWay::https)
        add({"--proto", "=https", "--proto-redir", "=https", "--tlsv1.2", "--location", "--max-redirs", "5"});
    else
        add({"--proto", "=http", "--noproxy", "*"});
    add({"--url"});
    command.push_back(address);
    return command;
}

pid_t start(std::vector<std::string> command, int output, int errors) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (auto& word : command)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, output, 1);
    posix_spawn_file_actions_adddup2(&actions, errors, 2);
    pid_t child = -1;
    const int error = posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    errno = error;
    return error == 0 ? child : -1;
}

// What curl had to say, on one line.
std::string complaint(int errors, int status) {
    char text[200];
    const ssize_t count = pread(errors, text, sizeof text, 0);
    std::string line(text, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    line.resize(std::min(line.size(), line.find('\n')));
    return line.empty() ? "curl ended with status " + std::to_string(status) : line;
}

FeedFetch download(const std::string& address, FeedWay way, std::size_t largest, int deadlineSeconds) {
    int ends[2];
    const Descriptor errors(memfd_create("curl", MFD_CLOEXEC));
    if (!errors || pipe2(ends, O_CLOEXEC) != 0)
        return {State::unreachable, {}, std::strerror(errno)};
    Descriptor output(ends[0]);
    Descriptor input(ends[1]);
    const pid_t child = start(curl(address, way, deadlineSeconds), input.get(), errors.get());
    if (child < 0)
        return {State::unreachable, {}, std::string("curl cannot be run: ") + std::strerror(errno)};
    input.reset();
    // curl keeps the time itself; a second more, for it to say so.
    FeedFetch result = drain(output.get(), largest, deadlineSeconds + 1);
    output.reset();
    if (result.state != State::read)
        kill(child, SIGKILL);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    constexpr int timedOut = 28; // of curl
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    if (result.state == State::read && code != 0)
        result = code == timedOut ? tooSlow(deadlineSeconds)
                                  : FeedFetch{State::unreachable, {}, complaint(errors.get(), code)};
    return result;
}

} // namespace

std::optional<FeedWay> feedWay(std::string_view address) {
    if (std::any_of(address.begin(), address.end(), [](char c) { return c <= ' ' || c >= '\x7f'; }))
        return std::nullopt;
    if (address.starts_with("file:///"))
        return FeedWay::file;
    if (address.starts_with("https://"))
        return FeedWay::https;
    for (const std::string_view host : {"http://127.0.0.1", "http://localhost", "http://[::1]"}) {
        // What follows the host must not make it a part of another one.
        if (address.starts_with(host) && address.size() > host.size() &&
            (address[host.size()] == ':' || address[host.size()] == '/') && address.find('@') == address.npos)
            return FeedWay::loopback;
    }
    return std::nullopt;
}

FeedFetch FeedFetch::read(const std::string& address, std::size_t largest, int deadlineSeconds) {
    const auto way = feedWay(address);
    if (!way)
        return {State::refused, {}, "\"" + address + "\" is neither an https nor a file address"};
    if (*way == FeedWay::file)
        return readFile(address.substr(filePrefix.size()), largest, deadlineSeconds);
    return download(address, *way, largest, deadlineSeconds);
}

} // namespace kivo
