// SPDX-License-Identifier: MIT
#include "linux/phones/MuxAddress.h"
#include "linux/phones/MuxListener.h"
#include "linux/phones/PropertyListText.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

using Lines = std::vector<std::string>;

std::string message(const std::string& body, std::size_t claimed = 0) {
    const auto size = claimed ? claimed : 16 + body.size();
    std::string result;
    for (const std::size_t word : {size, std::size_t{1}, std::size_t{8}, std::size_t{0}}) {
        for (int shift = 0; shift < 32; shift += 8)
            result += static_cast<char>(word >> shift & 0xFF);
    }
    return result + body;
}

std::string told(Dictionary fields) {
    return message(propertylist::write(fields));
}

std::string result(int number) {
    return told({{"MessageType", "Result"}, {"Number", number}});
}

std::string attached(int number, const char* identifier, const char* way = "USB") {
    return told({{"MessageType", "Attached"},
                 {"DeviceID", number},
                 {"Properties", Dictionary{{"SerialNumber", identifier}, {"ConnectionType", way}}}});
}

TEST(MuxListener, NamesPhonesThatUsbmuxdOnlyNumbers) {
    const auto everything = result(0) + attached(1, "A-1") + attached(2, "A-1", "Network") +
                            told({{"MessageType", "Paired"}, {"DeviceID", 1}}) +
                            told({{"MessageType", "Detached"}, {"DeviceID", 1}}) +
                            told({{"MessageType", "Detached"}, {"DeviceID", 1}}) +
                            told({{"MessageType", "Paired"}, {"DeviceID", 2}}) + attached(1, "B");
    const Lines lines{"listening\n",          "connected A-1 1\n", "connected A-1 2\n", "paired A-1 1\n",
                      "disconnected A-1 1\n", "paired A-1 2\n",    "connected B 1\n"};
    for (const std::size_t piece : {std::size_t{1}, std::size_t{7}, everything.size()}) {
        MuxListener listener;
        Lines heard;
        for (std::size_t at = 0; at < everything.size(); at += piece) {
            for (auto& line : listener.take(std::string_view(everything).substr(at, piece)))
                heard.push_back(std::move(line));
        }
        EXPECT_EQ(heard, lines) << "in pieces of " << piece;
        EXPECT_FALSE(listener.isBroken());
    }
}

TEST(MuxListener, StopsAtWhatIsNoMessage) {
    const std::pair<const char*, std::string> cases[] = {
        {"refused", result(3)},
        {"shorter than its own header", message("", 15)},
        {"endless", message("", 0x7FFFFFFF)},
        {"no property list", message("HTTP/1.1 400 no\r\n\r\n")},
        {"no dictionary", message("<plist><true/></plist>")},
    };
    for (const auto& [label, bytes] : cases) {
        MuxListener listener;
        EXPECT_EQ(listener.take(bytes), Lines{}) << label;
        EXPECT_TRUE(listener.isBroken()) << label;
        EXPECT_EQ(listener.take(attached(1, "A")), Lines{}) << label;
    }
}

TEST(MuxListener, PassesOverWhatItDoesNotKnow) {
    MuxListener listener;
    for (const auto& bytes : {told({{"MessageType", "Logger"}}), told({}), attached(1, "A B"), attached(1, ""),
                              told({{"MessageType", "Attached"}, {"DeviceID", 1}}),
                              told({{"MessageType", "Detached"}, {"DeviceID", "1"}})})
        EXPECT_EQ(listener.take(bytes), Lines{});
    EXPECT_EQ(listener.take(attached(7, "A")), Lines{"connected A 1\n"});
}

TEST(MuxAddress, IsReadAsTheClientLibraryReadsIt) {
    struct Case {
        const char* text;
        const char* path;
        const char* host;
        const char* port;
    };
    const Case cases[] = {
        {"", "/var/run/usbmuxd", "", ""},       {"UNIX:/run/other", "/run/other", "", ""},
        {"UNIX:", "/var/run/usbmuxd", "", ""},  {"127.0.0.1:27015", "", "127.0.0.1", "27015"},
        {"[::1]:27015", "", "::1", "27015"},    {"nonsense", "/var/run/usbmuxd", "", ""},
        {":27015", "/var/run/usbmuxd", "", ""},
    };
    for (const auto& one : cases) {
        const auto address = MuxAddress::parse(one.text);
        EXPECT_EQ(address.path, one.path) << one.text;
        EXPECT_EQ(address.host, one.host) << one.text;
        EXPECT_EQ(address.port, one.port) << one.text;
    }
}

} // namespace
} // namespace kivo
