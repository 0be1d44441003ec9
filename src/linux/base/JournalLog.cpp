// SPDX-License-Identifier: MIT
#include "linux/base/JournalLog.h"

#include <cstdint>
#include <cstring>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace kivo {
namespace {

// The service manager names the device and inode of the stream that it connected to the journal; a stream
// that was redirected since then is another one.
bool isJournalStream(int descriptor, const std::optional<std::string>& stream) {
    struct stat status {};
    return stream && fstat(descriptor, &status) == 0 &&
           *stream == std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
}

Descriptor connectTo(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        return Descriptor();
    std::memcpy(address.sun_path, path.c_str(), path.size());
    Descriptor connection(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (connection &&
        connect(connection.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        connection.reset();
    return connection;
}

// The journal's own form: "NAME=value", or for a value of several lines its length in 64 bits before it.
void addField(std::string& datagram, std::string_view name, std::string_view value) {
    datagram += name;
    if (value.find('\n') == std::string_view::npos) {
        datagram += '=';
    } else {
        datagram += '\n';
        for (std::uint64_t i = 0, length = value.size(); i < 8; ++i)
            datagram += static_cast<char>(length >> (8 * i) & 0xff);
    }
    datagram += value;
    datagram += '\n';
}

std::string_view priority(LogLevel level) {
    switch (level) {
    case LogLevel::debug:
        return "7";
    case LogLevel::info:
        return "6";
    case LogLevel::default_:
        return "5";
    case LogLevel::error:
        return "3";
    }
    return "5";
}

// Names of devices stand in messages: they must not steer a terminal or fake a line.
void addPrintable(std::string& line, std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    for (const char character : text) {
        const auto code = static_cast<unsigned char>(character);
        if (code >= 0x20 && code != 0x7f) {
            line += character;
            continue;
        }
        line += "\\x";
        line += digits[code >> 4];
        line += digits[code & 15];
    }
}

} // namespace

JournalLog::JournalLog(const EnvironmentLookup& environment, const Places& places)
    : standardError_(places.standardError), showsDebug_(environment("KIVO_LOG") == "debug") {
    if (isJournalStream(standardError_, environment("JOURNAL_STREAM")))
        journal_ = connectTo(places.journalSocket);
}

void JournalLog::log(LogLevel level, std::string_view category, std::string_view message) {
    if (level == LogLevel::debug && !showsDebug_)
        return;
    if (journal_ && sendToJournal(level, category, message))
        return;
    std::string line = "kivo ";
    addPrintable(line, category);
    if (level != LogLevel::default_)
        line += " " + std::string(name(level));
    line += ": ";
    addPrintable(line, message);
    line += '\n';
    // One write a line, so that the lines of several threads do not mix.
    [[maybe_unused]] const auto written = ::write(standardError_, line.data(), line.size());
}

bool JournalLog::sendToJournal(LogLevel level, std::string_view category, std::string_view message) const {
    std::string datagram;
    addField(datagram, "MESSAGE", message);
    addField(datagram, "PRIORITY", priority(level));
    addField(datagram, "SYSLOG_IDENTIFIER", "kivo");
    addField(datagram, "KIVO_CATEGORY", category);
    return send(journal_.get(), datagram.data(), datagram.size(), MSG_NOSIGNAL) >= 0;
}

} // namespace kivo
