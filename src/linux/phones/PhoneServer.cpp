// SPDX-License-Identifier: MIT
#include "linux/phones/PhoneServer.h"

#include "linux/phones/PhoneSession.h"
#include "support/UTF8.h"

#include <utility>

namespace kivo {
namespace {

constexpr std::int64_t failure = -1;
constexpr std::size_t longestText = 200; // characters
constexpr std::string_view levelKey = "BatteryCurrentCapacity";

const char* textOrNull(const Dictionary& arguments, std::string_view key) {
    const auto* text = stringAt(arguments, key);
    return text ? text->c_str() : nullptr;
}

// A percentage that is none would be shown and alerted about as it stands.
void dropWrongLevel(Dictionary& values) {
    const auto found = values.find(levelKey);
    if (found == values.end())
        return;
    const auto level = found->second.integer();
    if (!level || *level < 0 || *level > 100)
        values.erase(found);
}

} // namespace

PropertyValue withShortTexts(PropertyValue value) {
    if (const auto* text = value.string())
        return utf8::plainLine(*text, longestText);
    if (auto* array = value.array()) {
        for (auto& one : *array)
            one = withShortTexts(std::move(one));
    }
    if (auto* dictionary = value.dictionary()) {
        for (auto& [key, one] : *dictionary)
            one = withShortTexts(std::move(one));
    }
    return value;
}

PhoneReply PhoneServer::answer(const PhoneCall& call) {
    const auto& name = call.entryPoint;
    PhoneReply reply;
    if (name == "AMDeviceConnect") {
        reply.status = session_.connect();
    } else if (name == "AMDeviceDisconnect") {
        session_.disconnect();
    } else if (name == "AMDeviceIsPaired") {
        reply.status = session_.isPaired();
    } else if (name == "AMDeviceValidatePairing") {
        reply.status = session_.validatePairing();
    } else if (name == "AMDeviceStartSession") {
        reply.status = session_.startSession();
    } else if (name == "AMDeviceStopSession") {
        session_.stopSession();
    } else if (name == "AMDeviceCopyValue") {
        reply.value =
            session_.copyValue(textOrNull(call.arguments, "domain"), textOrNull(call.arguments, "key"));
        if (auto* values = reply.value ? reply.value->dictionary() : nullptr)
            dropWrongLevel(*values);
    } else if (name == "AMDeviceSecureStartService") {
        const char* service = textOrNull(call.arguments, "service");
        reply.status = service ? session_.startService(service) : failure;
    } else if (name == "AMDServiceConnectionSendMessage") {
        const auto* message = dictionaryAt(call.arguments, "message");
        reply.status = message ? session_.sendMessage(*message) : failure;
    } else if (name == "AMDServiceConnectionReceiveMessage") {
        reply.status = session_.receiveMessage(reply.value);
    } else if (name == "AMDServiceConnectionInvalidate") {
        session_.invalidate();
    } else {
        reply.status = failure;
    }
    if (reply.value)
        reply.value = withShortTexts(std::move(*reply.value));
    return reply;
}

std::string PhoneServer::answerLine(std::string_view line) {
    PhoneReply reply{failure, std::nullopt};
    try {
        reply = answer(decodePhoneCall(line));
    } catch (const DecodingError&) {
        // The failure above is the answer.
    }
    auto text = encode(reply);
    if (text.size() > longestPhoneMessage)
        text = encode(PhoneReply{reply.status, std::nullopt});
    return text;
}

} // namespace kivo
