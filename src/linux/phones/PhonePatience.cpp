// SPDX-License-Identifier: MIT
#include "linux/phones/PhonePatience.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace kivo {
namespace {

using namespace std::chrono_literals;

// Less than one, two, five and fifteen times the minute between two passes of readings, so that these waits end
// before the passes that they are to let by.
constexpr std::array<Duration, 4> pauses = {50s, 110s, 290s, 890s};

constexpr const char* tapTrust = "unlock it and tap Trust";

struct Hint {
    int status;
    const char* text;
    bool isFinal;
};
constexpr Hint hints[] = {
    {-17, "unlock it once", false},
    {-18, "it was told not to trust this computer: plug it in again and tap Trust", true},
    {-19, tapTrust, false},
    {-20, tapTrust, false},
    {-21, "it no longer trusts this computer: plug it in again and tap Trust", false},
    {-5, "its pairing record is damaged or refused: plug it in again", false},
    {-8, "it does not answer: plug it in again or restart usbmuxd", false},
};

} // namespace

PhoneProblem PhoneProblem::notTrusted() {
    return {tapTrust};
}

PhoneProblem PhoneProblem::noSession(int status) {
    const auto* const hint = std::find_if(std::begin(hints), std::end(hints),
                                          [status](const Hint& one) { return one.status == status; });
    if (hint == std::end(hints))
        return {"error " + std::to_string(status) + " when it began to talk"};
    return {hint->text, hint->isFinal};
}

bool PhonePatience::note(Duration now, const PhoneProblem& problem, bool hasValues) {
    if (hasValues || problem.text.empty()) {
        failures_ = 0;
    } else {
        quietUntil_ = problem.isFinal ? Duration::max() : now + pauses[std::min(failures_, pauses.size() - 1)];
        ++failures_;
    }
    return std::exchange(lastProblem_, problem.text) != problem.text && !problem.text.empty();
}

} // namespace kivo
