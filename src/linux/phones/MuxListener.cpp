// SPDX-License-Identifier: MIT
#include "linux/phones/MuxListener.h"

#include "linux/phones/PropertyListText.h"

#include <array>

namespace kivo {
namespace {

constexpr std::size_t headerSize = 16;
constexpr std::size_t longestMessage = 64 * 1024;
constexpr std::size_t mostPhones = 64;
constexpr std::uint32_t protocolVersion = 1;
constexpr std::uint32_t plistMessage = 8;

std::uint32_t wordAt(std::string_view bytes, std::size_t index) {
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < 4; ++i)
        word |= std::uint32_t{static_cast<unsigned char>(bytes[index * 4 + i])} << (8 * i);
    return word;
}

std::string framed(const std::string& body) {
    std::string result;
    for (const std::uint32_t word :
         std::array{static_cast<std::uint32_t>(headerSize + body.size()), protocolVersion, plistMessage, 1U}) {
        for (int shift = 0; shift < 32; shift += 8)
            result += static_cast<char>(word >> shift & 0xFF);
    }
    return result + body;
}

std::string_view textAt(const Dictionary& dictionary, std::string_view key) {
    const auto* text = stringAt(dictionary, key);
    return text ? std::string_view(*text) : std::string_view();
}

} // namespace

std::string MuxListener::greeting() {
    return framed(propertylist::write({{"MessageType", "Listen"},
                                       {"ProgName", "kivo"},
                                       {"ClientVersionString", "kivo"},
                                       {"kLibUSBMuxVersion", 3}}));
}

std::vector<std::string> MuxListener::take(std::string_view bytes) {
    std::vector<std::string> lines;
    buffer_ += bytes;
    while (!isBroken_ && buffer_.size() >= headerSize) {
        const std::size_t length = wordAt(buffer_, 0);
        if (length < headerSize || length > longestMessage) {
            isBroken_ = true;
        } else if (buffer_.size() < length) {
            break;
        } else {
            const auto body = buffer_.substr(headerSize, length - headerSize);
            buffer_.erase(0, length);
            try {
                takeMessage(body, lines);
            } catch (const DecodingError&) {
                isBroken_ = true;
            }
        }
    }
    return lines;
}

void MuxListener::takeMessage(std::string_view body, std::vector<std::string>& lines) {
    const auto value = propertylist::parse(body);
    const auto& message = decoding::object(value, "message");
    const auto type = textAt(message, "MessageType");
    const auto number = integerAt(message, "DeviceID");
    if (type == "Result") {
        isBroken_ = integerAt(message, "Number") != 0;
        if (!isBroken_)
            lines.push_back(std::string(listeningLine) + '\n');
    } else if (type == "Attached" && number && phones_.size() < mostPhones) {
        if (const auto phone = attached(message)) {
            phones_[*number] = *phone;
            lines.push_back(encode({PhoneEvent::Kind::connected, phone->identifier, phone->interfaceType}));
        }
    } else if ((type == "Detached" || type == "Paired") && number && phones_.contains(*number)) {
        const auto phone = phones_[*number];
        const bool isGone = type == "Detached";
        if (isGone)
            phones_.erase(*number);
        lines.push_back(encode({isGone ? PhoneEvent::Kind::disconnected : PhoneEvent::Kind::paired,
                                phone.identifier, phone.interfaceType}));
    }
}

std::optional<MuxListener::Phone> MuxListener::attached(const Dictionary& message) {
    const auto* properties = dictionaryAt(message, "Properties");
    if (!properties)
        return std::nullopt;
    const auto identifier = textAt(*properties, "SerialNumber");
    if (!isPhoneIdentifier(identifier))
        return std::nullopt;
    const bool isNetwork = textAt(*properties, "ConnectionType") == "Network";
    return Phone{std::string(identifier), isNetwork ? PhoneEvent::network : PhoneEvent::usb};
}

} // namespace kivo
