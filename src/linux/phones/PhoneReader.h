// SPDX-License-Identifier: MIT
#pragma once

#include "linux/phones/HelperProcess.h"
#include "linux/phones/PhoneMessages.h"
#include "support/Duration.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace kivo {

// One reading of a phone: a helper of its own that is asked call by call, has so much time for all of it, and
// is killed when that is over, when it says something that is no reply, and at the end. Calls belong to one
// thread.
class PhoneReader {
public:
    PhoneReader(const std::string& program, const std::vector<std::string>& arguments, Duration limit);

    // Nothing when the helper is lost; then it stays so. `limit` is this call's own, within that of all.
    std::optional<PhoneReply> ask(const PhoneCall& call, Duration limit = Duration::max());
    // From any thread: loses the helper, also in the middle of a call.
    void cancel();

    // Why the helper was lost, for the log; empty while it is not.
    const std::string& failure() const { return failure_; }

    // The waiting clock.
    static Duration now();

private:
    bool send(std::string_view text);
    std::optional<std::string> receiveLine();
    // Waits until the socket is ready for that; false when time is over.
    bool await(short events);
    void lose(std::string reason);

    Duration limit_;
    Duration deadline_;
    LineBuffer lines_{longestPhoneMessage};
    std::string failure_;
    std::mutex mutex_; // guards process_
    std::unique_ptr<HelperProcess> process_;
};

} // namespace kivo
