// SPDX-License-Identifier: MIT
// Whatever the helper for phones, usbmuxd and phones themselves say: it is refused, or it is taken and can be
// said again. The first byte chooses who speaks.

#include "Input.h"
#include "linux/phones/MuxListener.h"
#include "linux/phones/PhoneMessages.h"
#include "linux/phones/PropertyListText.h"

#include <string>

namespace {

using namespace kivo;
using fuzz::require;

void checkReply(std::string_view line) {
    try {
        const auto reply = decodePhoneReply(line);
        require(decodePhoneReply(encode(reply)).status == reply.status);
    } catch (const DecodingError&) {
    }
}

// The same lines come out of the same bytes, however they are cut.
void checkLines(std::string_view text) {
    LineBuffer whole(longestPhoneEvent);
    LineBuffer pieces(longestPhoneEvent);
    std::string atOnce;
    std::string byByte;
    for (auto bytes = text; !bytes.empty();) {
        const auto line = whole.takeLine(bytes);
        if (!line)
            continue;
        require(line->size() < longestPhoneEvent);
        atOnce += *line + '\n';
        if (const auto event = decodePhoneEvent(*line))
            require(encode(*event) == *line + '\n');
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        auto byte = text.substr(i, 1);
        if (const auto line = pieces.takeLine(byte))
            byByte += *line + '\n';
    }
    require(atOnce == byByte && whole.isOverfull() == pieces.isOverfull());
}

void checkPropertyList(std::string_view text) {
    try {
        const auto value = propertylist::parse(text);
        if (value.dictionary())
            require(propertylist::parse(propertylist::write(*value.dictionary())).dictionary()->size() ==
                    value.dictionary()->size());
    } catch (const DecodingError&) {
    }
}

void checkMultiplexer(std::string_view bytes) {
    MuxListener listener;
    for (const auto& line : listener.take(bytes)) {
        require(line.back() == '\n' && line.size() <= longestPhoneEvent);
        const auto text = std::string_view(line).substr(0, line.size() - 1);
        require(text == listeningLine || decodePhoneEvent(text).has_value());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (data[0]) {
    case 'r':
        checkReply(text);
        break;
    case 'e':
        checkLines(text);
        break;
    case 'p':
        checkPropertyList(text);
        break;
    case 'm':
        checkMultiplexer(text);
        break;
    default:
        break;
    }
    return 0;
}
