// SPDX-License-Identifier: MIT
// kivo-ios: Kivo's helper for phones and tablets, a process of its own because the library that reads them can
// hang, take all memory or crash on a device that misbehaves. Kivo talks to it over its standard input and
// output; its end is its answer to anything that goes wrong.
#include "linux/phones/MuxAddress.h"
#include "linux/phones/MuxListener.h"
#include "linux/phones/PhoneLibrary.h"
#include "linux/phones/PhoneServer.h"
#include "linux/phones/PhoneSession.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <poll.h>
#include <string_view>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using namespace kivo;

constexpr const char* usage =
    "Kivo's helper for iPhones and iPads; Kivo starts it\n"
    "\n"
    "usage: kivo-ios watch                       print a line whenever one comes, goes or is paired\n"
    "       kivo-ios serve IDENTIFIER usb|network  answer calls on one, a line of JSON each\n"
    "       kivo-ios --help                      print this and end\n";

constexpr unsigned longestLife = 60; // seconds; Kivo ends a reader much earlier
[[maybe_unused]] constexpr rlim_t mostMemory = rlim_t{256} << 20;

bool say(std::string_view text) {
    while (!text.empty()) {
        const auto written = write(STDOUT_FILENO, text.data(), text.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

// What arrives next; empty at the end.
std::string_view hear(int descriptor, char* buffer, std::size_t size) {
    ssize_t count = 0;
    do
        count = read(descriptor, buffer, size);
    while (count < 0 && errno == EINTR);
    return {buffer, count > 0 ? static_cast<std::size_t>(count) : 0};
}

// Until Kivo ends, which closes our standard input, or usbmuxd does.
int watch() {
    if (!PhoneLibrary::isThere()) {
        say(std::string(noLibraryLine) + '\n');
        return 3;
    }
    const int mux = MuxAddress::find().connect();
    const auto greeting = MuxListener::greeting();
    if (mux < 0 || send(mux, greeting.data(), greeting.size(), MSG_NOSIGNAL) != ssize_t(greeting.size()))
        return 4;
    MuxListener listener;
    char buffer[4096];
    while (!listener.isBroken()) {
        pollfd ears[] = {{mux, POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
        if (poll(ears, 2, -1) < 0 && errno != EINTR)
            return 1;
        if (ears[1].revents != 0)
            return 0;
        if (ears[0].revents == 0)
            continue;
        const auto bytes = hear(mux, buffer, sizeof buffer);
        if (bytes.empty())
            return 4;
        for (const auto& line : listener.take(bytes)) {
            if (!say(line))
                return 0;
        }
    }
    return 5;
}

void limitMemory() {
    // A sanitizer reserves far more than it uses.
#ifndef KIVO_SANITIZED
    const rlimit memory{mostMemory, mostMemory};
    setrlimit(RLIMIT_AS, &memory);
#endif
}

int serve(const char* identifier, bool isNetwork) {
    limitMemory();
    alarm(longestLife);
    PhoneLibrary library{};
    if (!isPhoneIdentifier(identifier) || !library.load())
        return 3;
    PhoneSession session(library, identifier, isNetwork);
    PhoneServer server(session);
    LineBuffer lines(longestPhoneMessage);
    char buffer[4096];
    for (;;) {
        auto bytes = hear(STDIN_FILENO, buffer, sizeof buffer);
        // No farewell to a phone that may no longer answer: closing the connections is one.
        if (bytes.empty())
            _exit(0);
        while (!bytes.empty()) {
            const auto line = lines.takeLine(bytes);
            if (line && !say(server.answerLine(*line)))
                _exit(0);
        }
        if (lines.isOverfull())
            _exit(5);
    }
}

} // namespace

int main(int argc, char** argv) {
    const std::string_view mode = argc > 1 ? argv[1] : "";
    if (mode == "--help" || mode == "-h")
        return std::fputs(usage, stdout) < 0 ? 1 : 0;
    // A phone that hangs up in the middle of a word must not end us.
    std::signal(SIGPIPE, SIG_IGN);
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    if (mode == "watch" && argc == 2)
        return watch();
    const std::string_view way = argc == 4 ? argv[3] : "";
    if (mode == "serve" && (way == "usb" || way == "network"))
        return serve(argv[2], way == "network");
    std::fputs(usage, stderr);
    return 2;
}
