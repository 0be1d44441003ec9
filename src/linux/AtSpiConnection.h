// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/AccessibleSource.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct DBusConnection;
struct DBusMessage;

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

    struct MessageRelease {
        void operator()(DBusMessage* message) const;
    };
    using Message = std::unique_ptr<DBusMessage, MessageRelease>;
    // Sends the calls, a few at a time, and gives their replies in order: a null pointer for an error or none.
    // After half a second without any reply nothing more is asked on this connection.
    std::vector<Message> call(std::vector<Message> calls);

private:
    struct Batch;
    bool connect(const std::string& address);

    DBusConnection* connection_ = nullptr;
    Deadline deadline_;
    bool isLost_ = false;
};

// The objects of one application on the bus.
class AtSpiSource final : public AccessibleSource {
public:
    AtSpiSource(std::shared_ptr<AtSpiConnection> connection, std::string application)
        : connection_(std::move(connection)), application_(std::move(application)) {}

    std::vector<std::optional<AccessibleAnswer>> ask(const std::vector<AccessibleQuestion>& questions) override;
    bool perform(const std::string& path, std::int32_t action) override;

private:
    std::shared_ptr<AtSpiConnection> connection_;
    std::string application_;
};

} // namespace kivo
