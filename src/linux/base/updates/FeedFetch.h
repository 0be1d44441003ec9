// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kivo {

// Reads a whole feed from where it lies: "https://…" (and http on this computer alone) by the program curl,
// without cookies, configuration files or anything that tells who asks; "file:///…" from the disk. Blocks.
struct FeedFetch {
    enum class State {
        read,
        unreachable, // it may be there later
        refused,     // it must not be read at all
    };
    State state = State::unreachable;
    std::string content; // when read
    std::string error;   // else

    static FeedFetch read(const std::string& address, std::size_t largest, int deadlineSeconds);
};

// Which way an address is read; nothing for one that must not be.
enum class FeedWay { file, https, loopback };
std::optional<FeedWay> feedWay(std::string_view address);

} // namespace kivo
