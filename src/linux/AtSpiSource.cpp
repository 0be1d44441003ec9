// SPDX-License-Identifier: MIT
#include "linux/AtSpiSource.h"

#include "linux/AtSpiMessage.h"

namespace kivo {
namespace {

using namespace atspi;

constexpr const char* actionInterface = "org.a11y.atspi.Action";
constexpr const char* textInterface = "org.a11y.atspi.Text";
constexpr const char* imageInterface = "org.a11y.atspi.Image";

constexpr int longestAction = 1000; // milliseconds
constexpr std::size_t longestText = 4096;
constexpr std::uint32_t showingState = 25;

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

std::vector<std::optional<AccessibleAnswer>>
AtSpiSource::ask(const std::vector<AccessibleQuestion>& questions) {
    std::vector<Message> calls;
    calls.reserve(questions.size());
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
