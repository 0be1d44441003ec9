// SPDX-License-Identifier: MIT
// kivo-updates: reads a feed of new versions, checks its signature and prints it as one line of JSON:
//   {"feed": …}          it is signed by the key
//   {"refused": why}     it is not, or is no feed
//   {"unreachable": why} nobody answered
// It lives for one feed, with little memory and little time, and is killed with whatever goes wrong in it.
#include "linux/base/UpdateFeed.h"
#include "linux/base/updates/FeedFetch.h"
#include "linux/base/updates/SignedFeed.h"
#include "support/Json.h"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

using namespace kivo;

constexpr std::size_t largestFeed = 1'000'000;
constexpr int usualDeadline = 30;

void limitProcess(int deadlineSeconds) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    const rlimit processorTime{20, 20};
    setrlimit(RLIMIT_CPU, &processorTime);
    alarm(static_cast<unsigned>(deadlineSeconds) + 10);
}

int answer(const char* key, PropertyValue value) {
    std::puts(json::write(Dictionary{{key, std::move(value)}}).c_str());
    return std::strcmp(key, "feed") == 0 ? 0 : 1;
}

int run(const std::string& address, const std::string& key, int deadlineSeconds) {
    const auto fetched = FeedFetch::read(address, largestFeed, deadlineSeconds);
    if (fetched.state == FeedFetch::State::unreachable)
        return answer("unreachable", fetched.error);
    if (fetched.state == FeedFetch::State::refused)
        return answer("refused", fetched.error);
    const auto signedFeed = SignedFeed::open(fetched.content, key);
    if (!signedFeed.text)
        return answer("refused", signedFeed.error);
    try {
        PropertyValue feed = json::parse(*signedFeed.text);
        UpdateFeed::decode(feed);
        return answer("feed", std::move(feed));
    } catch (const DecodingError& error) {
        return answer("refused", error.what());
    }
}

} // namespace

int main(int argc, char** argv) {
    int deadline = usualDeadline;
    if (argc == 5 && std::strcmp(argv[3], "--deadline") == 0)
        deadline = std::atoi(argv[4]);
    else if (argc != 3)
        deadline = 0;
    if (deadline < 1 || deadline > 300) {
        std::fputs("usage: kivo-updates ADDRESS KEY [--deadline SECONDS]\n"
                   "Reads a feed of new versions and prints it if it is signed by that Ed25519 key (base64).\n",
                   stderr);
        return 2;
    }
    limitProcess(deadline);
    return run(argv[1], argv[2], deadline);
}
