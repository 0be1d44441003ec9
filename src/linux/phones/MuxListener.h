// SPDX-License-Identifier: MIT
#pragma once

#include "linux/phones/PhoneMessages.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivo {

// usbmuxd's side of the conversation after Listen: which phones come, go and begin to trust this computer. The
// client library could tell the same, but it leaks a descriptor with each restart of usbmuxd, wakes up every
// second while there is none, and ends the process when it is hung up on too often.
class MuxListener {
public:
    // The message that begins the conversation.
    static std::string greeting();

    // Takes what usbmuxd says, in any pieces, and gives the lines to report. What is no message makes it
    // `isBroken`, for good.
    std::vector<std::string> take(std::string_view bytes);
    bool isBroken() const { return isBroken_; }

private:
    struct Phone {
        std::string identifier;
        int interfaceType = PhoneEvent::usb;
    };

    void takeMessage(std::string_view body, std::vector<std::string>& lines);
    static std::optional<Phone> attached(const Dictionary& message);

    std::string buffer_;
    std::map<std::int64_t, Phone> phones_; // by usbmuxd's numbers
    bool isBroken_ = false;
};

} // namespace kivo
