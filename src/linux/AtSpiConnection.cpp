// SPDX-License-Identifier: MIT
#include "linux/AtSpiConnection.h"

#include <dbus/dbus.h>

#include <algorithm>
#include <ctime>
#include <set>
#include <utility>

namespace kivo {
namespace {

constexpr const char* accessible = "org.a11y.atspi.Accessible";
constexpr const char* actionInterface = "org.a11y.atspi.Action";
constexpr const char* textInterface = "org.a11y.atspi.Text";
constexpr const char* imageInterface = "org.a11y.atspi.Image";

// So many calls are on their way at once: enough that neither side waits for the other, few enough that an
// application which hangs finds few when it goes on.
constexpr std::size_t callsAtOnce = 32;
constexpr int longestSilence = 500; // milliseconds
constexpr int longestAction = 1000;
constexpr long largestMessage = 4L << 20;
constexpr std::size_t longestText = 4096;
constexpr std::uint32_t showingState = 25;

std::int64_t steadyMilliseconds() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<std::int64_t>(time.tv_sec) * 1000 + time.tv_nsec / 1'000'000;
}

using Message = AtSpiConnection::Message;

Message newCall(const char* destination, const char* path, const char* interface, const char* method) {
    // A path or name that an application made up wrongly would end the process.
    if (!dbus_validate_path(path, nullptr) || !dbus_validate_bus_name(destination, nullptr))
        return nullptr;
    Message message(dbus_message_new_method_call(destination, path, interface, method));
    if (message)
        dbus_message_set_auto_start(message.get(), FALSE);
    return message;
}

// Walks the values of a message; `dive` goes into arrays, structures and variants.
class Values {
public:
    explicit Values(DBusMessage* message) { dbus_message_iter_init(message, &iterator_); }

    int type() { return dbus_message_iter_get_arg_type(&iterator_); }
    void next() { dbus_message_iter_next(&iterator_); }
    Values dive() {
        Values inner;
        dbus_message_iter_recurse(&iterator_, &inner.iterator_);
        return inner;
    }
    std::string text() {
        const char* value = "";
        if (type() == DBUS_TYPE_STRING || type() == DBUS_TYPE_OBJECT_PATH)
            dbus_message_iter_get_basic(&iterator_, &value);
        return value;
    }
    std::uint32_t number() {
        std::uint32_t value = 0;
        if (type() == DBUS_TYPE_UINT32 || type() == DBUS_TYPE_INT32)
            dbus_message_iter_get_basic(&iterator_, &value);
        return value;
    }
    bool boolean() {
        dbus_bool_t value = FALSE;
        if (type() == DBUS_TYPE_BOOLEAN)
            dbus_message_iter_get_basic(&iterator_, &value);
        return value != FALSE;
    }

private:
    Values() = default;
    DBusMessageIter iterator_{};
};

bool has(const Message& reply, const char* signature) {
    return reply && dbus_message_has_signature(reply.get(), signature);
}

std::vector<std::pair<std::string, std::string>> references(const Message& reply) {
    std::vector<std::pair<std::string, std::string>> result;
    if (!has(reply, "a(so)"))
        return result;
    auto list = Values(reply.get()).dive();
    for (; list.type() == DBUS_TYPE_STRUCT; list.next()) {
        auto fields = list.dive();
        std::string name = fields.text();
        fields.next();
        result.emplace_back(std::move(name), fields.text());
    }
    return result;
}

Message propertyCall(const std::string& application, const std::string& path, const char* interface,
                     const char* property) {
    Message call = newCall(application.c_str(), path.c_str(), DBUS_INTERFACE_PROPERTIES, "Get");
    if (call)
        dbus_message_append_args(call.get(), DBUS_TYPE_STRING, &interface, DBUS_TYPE_STRING, &property,
                                 DBUS_TYPE_INVALID);
    return call;
}

Message textCall(const std::string& application, const std::string& path) {
    Message call = newCall(application.c_str(), path.c_str(), textInterface, "GetText");
    const dbus_int32_t start = 0;
    const dbus_int32_t end = static_cast<dbus_int32_t>(longestText);
    if (call)
        dbus_message_append_args(call.get(), DBUS_TYPE_INT32, &start, DBUS_TYPE_INT32, &end, DBUS_TYPE_INVALID);
    return call;
}

Message callFor(const std::string& application, const AccessibleQuestion& question) {
    using enum AccessibleQuestion::Kind;
    const auto method = [&](const char* interface, const char* name) {
        return newCall(application.c_str(), question.path.c_str(), interface, name);
    };
    switch (question.kind) {
    case isShowing:
        return method(accessible, "GetState");
    case role:
        return method(accessible, "GetRole");
    case children:
        return method(accessible, "GetChildren");
    case actions:
        return method(actionInterface, "GetActions");
    case name:
        return propertyCall(application, question.path, accessible, "Name");
    case description:
        return propertyCall(application, question.path, accessible, "Description");
    case text:
        return textCall(application, question.path);
    case imageDescription:
        return propertyCall(application, question.path, imageInterface, "ImageDescription");
    case attributes:
        return method(accessible, "GetAttributes");
    }
    return nullptr;
}

std::optional<AccessibleAnswer> states(const Message& reply) {
    if (!has(reply, "au"))
        return std::nullopt;
    const bool isShowing = (Values(reply.get()).dive().number() >> showingState & 1U) != 0;
    return AccessibleAnswer{isShowing ? 1U : 0U, {}};
}

// The first text of each entry, or both.
std::optional<AccessibleAnswer> entries(const Message& reply, const char* signature, bool takesBoth) {
    if (!has(reply, signature))
        return std::nullopt;
    AccessibleAnswer answer;
    auto list = Values(reply.get()).dive();
    for (; list.type() != DBUS_TYPE_INVALID; list.next()) {
        auto fields = list.dive();
        answer.texts.push_back(fields.text());
        if (!takesBoth)
            continue;
        fields.next();
        answer.texts.push_back(fields.text());
    }
    return answer;
}

std::optional<AccessibleAnswer> singleText(const Message& reply) {
    if (!has(reply, "v") && !has(reply, "s"))
        return std::nullopt;
    Values value(reply.get());
    if (value.type() == DBUS_TYPE_VARIANT)
        value = value.dive();
    return AccessibleAnswer{0, {value.text().substr(0, longestText)}};
}

std::optional<AccessibleAnswer> answerFrom(const std::string& application, AccessibleQuestion::Kind kind,
                                           const Message& reply) {
    using enum AccessibleQuestion::Kind;
    switch (kind) {
    case isShowing:
        return states(reply);
    case role:
        return has(reply, "u") ? std::optional(AccessibleAnswer{Values(reply.get()).number(), {}})
                               : std::nullopt;
    case actions:
        return entries(reply, "a(sss)", false);
    case attributes:
        return entries(reply, "a{ss}", true);
    case children:
        break;
    default:
        return singleText(reply);
    }
    if (!has(reply, "a(so)"))
        return std::nullopt;
    AccessibleAnswer answer;
    for (auto& [name, path] : references(reply))
        if (name == application)
            answer.texts.push_back(std::move(path));
    return answer;
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

void AtSpiConnection::MessageRelease::operator()(DBusMessage* message) const {
    dbus_message_unref(message);
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
    question.push_back(
        newCall("org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root", accessible, "GetChildren"));
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

std::vector<std::optional<AccessibleAnswer>>
AtSpiSource::ask(const std::vector<AccessibleQuestion>& questions) {
    std::vector<Message> calls;
    for (const auto& question : questions)
        calls.push_back(callFor(application_, question));
    const auto replies = connection_->call(std::move(calls));
    std::vector<std::optional<AccessibleAnswer>> answers;
    for (std::size_t i = 0; i < replies.size(); ++i)
        answers.push_back(answerFrom(application_, questions[i].kind, replies[i]));
    return answers;
}

bool AtSpiSource::perform(const std::string& path, std::int32_t action) {
    connection_->setDeadline(Deadline::in(longestAction));
    std::vector<Message> calls;
    calls.push_back(newCall(application_.c_str(), path.c_str(), actionInterface, "DoAction"));
    if (calls.front())
        dbus_message_append_args(calls.front().get(), DBUS_TYPE_INT32, &action, DBUS_TYPE_INVALID);
    const auto replies = connection_->call(std::move(calls));
    return has(replies.front(), "b") && Values(replies.front().get()).boolean();
}

} // namespace kivo
