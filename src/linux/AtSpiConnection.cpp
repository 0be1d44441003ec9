// SPDX-License-Identifier: MIT
#include "linux/AtSpiConnection.h"

#include "linux/AtSpiMessage.h"

#include <algorithm>
#include <ctime>
#include <set>
#include <utility>

namespace kivo {
namespace {

using namespace atspi;

// So many calls are on their way at once: enough that neither side waits for the other, few enough that an
// application which hangs finds few when it goes on.
constexpr std::size_t callsAtOnce = 32;
constexpr int longestSilence = 500; // milliseconds
constexpr long largestMessage = 4L << 20;

std::int64_t steadyMilliseconds() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<std::int64_t>(time.tv_sec) * 1000 + time.tv_nsec / 1'000'000;
}

} // namespace

Deadline Deadline::in(int milliseconds) {
    Deadline deadline;
    deadline.at_ = steadyMilliseconds() + milliseconds;
    return deadline;
}

int Deadline::left() const {
    return static_cast<int>(std::max<std::int64_t>(0, at_ - steadyMilliseconds()));
}

AtSpiConnection::AtSpiConnection(const std::string& address, Deadline deadline) : deadline_(deadline) {
    isLost_ = !connect(address);
}

AtSpiConnection::~AtSpiConnection() {
    if (!connection_)
        return;
    dbus_connection_close(connection_);
    dbus_connection_unref(connection_);
}

bool AtSpiConnection::connect(const std::string& address) {
    connection_ = dbus_connection_open_private(address.c_str(), nullptr);
    if (!connection_)
        return false;
    dbus_connection_set_exit_on_disconnect(connection_, FALSE);
    dbus_connection_set_max_message_size(connection_, largestMessage);
    // The library's own greeting would wait for as long as it likes.
    std::vector<Message> greeting;
    greeting.push_back(newCall(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS, DBUS_INTERFACE_DBUS, "Hello"));
    return call(std::move(greeting)).front() != nullptr;
}

// The calls on their way and the replies that came.
struct AtSpiConnection::Batch {
    struct Slot {
        Batch* batch;
        std::size_t index;
    };

    static void arrived(DBusPendingCall* pending, void* data) {
        const Slot& slot = *static_cast<Slot*>(data);
        Message reply(dbus_pending_call_steal_reply(pending));
        --slot.batch->onTheWay;
        if (reply && dbus_message_get_type(reply.get()) == DBUS_MESSAGE_TYPE_METHOD_RETURN)
            slot.batch->replies[slot.index] = std::move(reply);
    }

    explicit Batch(std::size_t size) : replies(size), slots_(size), pending_(size) {}
    ~Batch() {
        for (auto* pending : pending_) {
            if (!pending)
                continue;
            dbus_pending_call_cancel(pending);
            dbus_pending_call_unref(pending);
        }
    }
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;

    bool send(DBusConnection* connection, std::size_t index, const Message& message) {
        slots_[index] = {this, index};
        return dbus_connection_send_with_reply(connection, message.get(), &pending_[index],
                                               DBUS_TIMEOUT_INFINITE) &&
               pending_[index] && ++onTheWay &&
               dbus_pending_call_set_notify(pending_[index], arrived, &slots_[index], nullptr);
    }

    std::vector<Message> replies;
    std::size_t onTheWay = 0;

private:
    std::vector<Slot> slots_;
    std::vector<DBusPendingCall*> pending_;
};

std::vector<Message> AtSpiConnection::call(std::vector<Message> calls) {
    Batch batch(calls.size());
    std::size_t next = 0;
    Deadline silence = Deadline::in(longestSilence);
    while (!isLost_ && deadline_.left() > 0 && (next < calls.size() || batch.onTheWay > 0)) {
        for (; next < calls.size() && batch.onTheWay < callsAtOnce; ++next)
            if (calls[next] && !batch.send(connection_, next, calls[next]))
                isLost_ = true;
        const std::size_t waitedFor = batch.onTheWay;
        if (waitedFor == 0)
            continue;
        if (!dbus_connection_read_write(connection_, std::min(deadline_.left(), silence.left())))
            isLost_ = true;
        while (dbus_connection_dispatch(connection_) == DBUS_DISPATCH_DATA_REMAINS) {
        }
        if (batch.onTheWay < waitedFor)
            silence = Deadline::in(longestSilence);
        else if (silence.left() == 0)
            isLost_ = true;
    }
    return std::move(batch.replies);
}

std::vector<AtSpiConnection::Application> AtSpiConnection::applications() {
    std::vector<Message> question;
    question.push_back(newCall("org.a11y.atspi.Registry", rootPath, accessible, "GetChildren"));
    std::vector<Application> result;
    std::vector<Message> calls;
    for (auto& [name, root] : references(call(std::move(question)).front())) {
        Message call =
            newCall(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS, DBUS_INTERFACE_DBUS, "GetConnectionUnixProcessID");
        const char* argument = name.c_str();
        dbus_message_append_args(call.get(), DBUS_TYPE_STRING, &argument, DBUS_TYPE_INVALID);
        calls.push_back(std::move(call));
        result.push_back({0, std::move(name), std::move(root)});
    }
    const auto replies = call(std::move(calls));
    for (std::size_t i = 0; i < replies.size(); ++i)
        if (has(replies[i], "u"))
            result[i].pid = static_cast<std::int32_t>(Values(replies[i].get()).number());
    std::erase_if(result, [](const Application& application) { return application.pid == 0; });
    return result;
}

} // namespace kivo
