// SPDX-License-Identifier: MIT
#pragma once

#include "support/Duration.h"

#include <cstddef>
#include <string>

namespace kivo {

// Why a reading of a phone gave nothing, in words that tell a person what to do. Empty when there is no reason.
struct PhoneProblem {
    std::string text;
    bool isFinal = false; // until the phone is attached or paired again

    // The phone has never trusted this computer.
    static PhoneProblem notTrusted();
    // The library could not begin a session, by its error.
    static PhoneProblem noSession(int status);
};

// How long a phone is left alone after readings that failed.
class PhonePatience {
public:
    // A reading has ended; one that gave values is a good one even with a problem. Returns whether the problem
    // is one that the last reading did not have.
    bool note(Duration now, const PhoneProblem& problem, bool hasValues);

    bool allows(Duration now) const { return now >= quietUntil_; }
    bool hasFailed() const { return failures_ > 0; }

private:
    std::size_t failures_ = 0; // readings in a row
    Duration quietUntil_ = Duration::min();
    std::string lastProblem_;
};

} // namespace kivo
