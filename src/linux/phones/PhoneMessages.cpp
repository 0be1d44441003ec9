// SPDX-License-Identifier: MIT
#include "linux/phones/PhoneMessages.h"

#include "support/EnumTable.h"

#include <algorithm>
#include <utility>

namespace kivo {
namespace {

constexpr std::size_t longestIdentifier = 64;

constexpr EnumTable<PhoneEvent::Kind, 3> kinds{{{
    {PhoneEvent::Kind::connected, "connected"},
    {PhoneEvent::Kind::disconnected, "disconnected"},
    {PhoneEvent::Kind::paired, "paired"},
}}};

std::string_view takeWord(std::string_view& text) {
    const auto end = std::min(text.find(' '), text.size());
    const auto word = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return word;
}

} // namespace

bool isPhoneIdentifier(std::string_view text) {
    const auto isAllowed = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-';
    };
    return !text.empty() && text.size() <= longestIdentifier &&
           std::all_of(text.begin(), text.end(), isAllowed);
}

std::string encode(const PhoneEvent& event) {
    return std::string(kinds.name(event.kind)) + ' ' + event.identifier + ' ' +
           std::to_string(event.interfaceType) + '\n';
}

std::optional<PhoneEvent> decodePhoneEvent(std::string_view line) {
    const auto kind = kinds.value(takeWord(line));
    const auto identifier = takeWord(line);
    const bool isNetwork = line == "2";
    if (!kind || !isPhoneIdentifier(identifier) || (!isNetwork && line != "1"))
        return std::nullopt;
    return PhoneEvent{*kind, std::string(identifier), isNetwork ? PhoneEvent::network : PhoneEvent::usb};
}

std::string encode(const PhoneCall& call) {
    return json::write(Dictionary{{"call", call.entryPoint}, {"with", call.arguments}}) + '\n';
}

std::string encode(const PhoneReply& reply) {
    Dictionary fields{{"status", reply.status}};
    if (reply.value)
        fields["value"] = *reply.value;
    return json::write(fields) + '\n';
}

PhoneCall decodePhoneCall(std::string_view line) {
    const auto value = json::parse(line);
    const auto& fields = decoding::object(value, "call");
    return {decoding::requireString(fields, "call"), decoding::requireObject(fields, "with")};
}

PhoneReply decodePhoneReply(std::string_view line) {
    const auto value = json::parse(line);
    const auto& fields = decoding::object(value, "reply");
    PhoneReply reply{decoding::requireInteger(fields, "status"), std::nullopt};
    if (const auto* found = decoding::optional(fields, "value"))
        reply.value = *found;
    return reply;
}

std::optional<std::string> LineBuffer::takeLine(std::string_view& bytes) {
    const auto end = bytes.find('\n');
    const auto part = bytes.substr(0, end);
    // The end of the line counts too.
    if (isOverfull_ || line_.size() + part.size() >= limit_) {
        isOverfull_ = true;
        line_ = {};
        bytes = {};
        return std::nullopt;
    }
    line_ += part;
    bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
    if (end == std::string_view::npos)
        return std::nullopt;
    return std::exchange(line_, {});
}

} // namespace kivo
