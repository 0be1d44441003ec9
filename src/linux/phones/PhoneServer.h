// SPDX-License-Identifier: MIT
#pragma once

#include "linux/phones/PhoneMessages.h"

#include <string>

namespace kivo {

class PhoneSession;

// Answers calls on one phone. What a phone says is made harmless: texts are short and of one line, a battery's
// level is a percentage, replies stay below their limit.
class PhoneServer {
public:
    explicit PhoneServer(PhoneSession& session) : session_(session) {}

    PhoneReply answer(const PhoneCall& call);
    // A complete line for a complete line; an error for one that is no call.
    std::string answerLine(std::string_view line);

private:
    PhoneSession& session_;
};

// Texts of at most 200 characters without control characters, everywhere inside.
PropertyValue withShortTexts(PropertyValue value);

} // namespace kivo
