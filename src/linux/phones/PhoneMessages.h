// SPDX-License-Identifier: MIT
#pragma once

#include "support/Json.h"
#include "support/PropertyValue.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kivo {

// What Kivo and its helper for phones say to each other: lines of text. The helper works for devices that may
// be hostile, so nothing that it says is believed before it was looked at here.

// What the helper that watches reports.
struct PhoneEvent {
    enum class Kind { connected, disconnected, paired };
    Kind kind = Kind::connected;
    std::string identifier;  // letters, digits and hyphens
    int interfaceType = usb; // as the platform counts them

    static constexpr int usb = 1;
    static constexpr int network = 2;

    bool operator==(const PhoneEvent&) const = default;
};

// The line that says that the watcher hears the multiplexer; those attached already follow as connected.
inline constexpr std::string_view listeningLine = "listening";
// The line that says that there is no library for reading phones, so that watching them makes no sense.
inline constexpr std::string_view noLibraryLine = "no library";

bool isPhoneIdentifier(std::string_view text);
std::string encode(const PhoneEvent& event);
// Nothing for any other line.
std::optional<PhoneEvent> decodePhoneEvent(std::string_view line);

// One call on the library by the name of its entry point, made by the helper that serves one phone.
struct PhoneCall {
    std::string entryPoint;
    Dictionary arguments;

    bool operator==(const PhoneCall&) const = default;
};

struct PhoneReply {
    std::int64_t status = 0;
    std::optional<PropertyValue> value;

    bool operator==(const PhoneReply&) const = default;
};

std::string encode(const PhoneCall& call);
std::string encode(const PhoneReply& reply);
// Both throw DecodingError.
PhoneCall decodePhoneCall(std::string_view line);
PhoneReply decodePhoneReply(std::string_view line);

// Longest lines, their ends included. A longer one is an error of whoever says it.
inline constexpr std::size_t longestPhoneEvent = 128;
inline constexpr std::size_t longestPhoneMessage = 64 * 1024;

// Puts lines together from the pieces in which they arrive, and holds no more than one line's limit of them.
class LineBuffer {
public:
    explicit LineBuffer(std::size_t limit) : limit_(limit) {}

    // Takes from the front of `bytes` up to and including the end of a line, and gives that line without its
    // end; nothing when all was taken and there is none yet. Lines beyond the limit make it `isOverfull` for
    // good.
    std::optional<std::string> takeLine(std::string_view& bytes);
    bool isOverfull() const { return isOverfull_; }

private:
    std::size_t limit_;
    std::string line_;
    bool isOverfull_ = false;
};

} // namespace kivo
