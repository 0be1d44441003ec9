// SPDX-License-Identifier: MIT
#pragma once

#include "linux/AtSpiMessage.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kivo {

// A moment of the steady clock up to which something may take.
class Deadline {
public:
    static Deadline in(int milliseconds);
    // Milliseconds that are left, 0 when it has passed.
    int left() const;

private:
    std::int64_t at_ = 0;
};

// A connection of its own to the accessibility bus, for a thread that may wait. Qt's connections share one
// thread, which a bus that does not answer would hold up for all of them. Every call ends by the deadline.
class AtSpiConnection {
public:
    // Unconnected when the bus does not take the connection by the deadline.
    AtSpiConnection(const std::string& address, Deadline deadline);
    ~AtSpiConnection();
    AtSpiConnection(const AtSpiConnection&) = delete;
    AtSpiConnection& operator=(const AtSpiConnection&) = delete;

    // What has no answer by then fails. For whoever starts something new; an action brings a deadline of its
    // own.
    void setDeadline(Deadline deadline) { deadline_ = deadline; }

    // The applications on the bus: each connection's name with its root object, by process.
    struct Application {
        std::int32_t pid = 0;
        std::string name;
        std::string root;
    };
    std::vector<Application> applications();

    // Sends the calls, a few at a time, and gives their replies in order: a null pointer for an error or none.
    // After half a second without any reply nothing more is asked on this connection.
    std::vector<atspi::Message> call(std::vector<atspi::Message> calls);

private:
    struct Batch;
    bool connect(const std::string& address);

    DBusConnection* connection_ = nullptr;
    Deadline deadline_;
    bool isLost_ = false;
};

} // namespace kivo
