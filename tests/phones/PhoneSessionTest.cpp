// SPDX-License-Identifier: MIT
#include "linux/phones/PhoneSession.h"
#include "linux/phones/PhoneServer.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

namespace kivo {
namespace {

// A library in which every object is a string that names it, and every call on one is noted.
struct Library {
    inline static std::string calls;
    inline static bool isPaired;
    inline static std::string value; // XML

    static int note(const char* call) {
        calls += std::string(call) + ' ';
        return 0;
    }
    static void* made(const char* name) { return const_cast<char*>(name); }

    static PhoneLibrary table() {
        calls.clear();
        isPaired = true;
        value = "<plist><true/></plist>";
        PhoneLibrary table{};
        table.deviceNew = [](void** device, const char*, int lookUp) {
            *device = made("device");
            return note(lookUp == PhoneLibrary::lookUpUsb ? "usb" : "network");
        };
        table.deviceFree = [](void*) { return note("-device"); };
        table.readPairRecord = [](const char*, char** data, std::uint32_t* size) {
            if (!isPaired)
                return -2;
            *data = static_cast<char*>(std::malloc(1));
            *size = 1;
            return 0;
        };
        table.clientNewWithHandshake = [](void*, void** client, const char*) {
            *client = made("client");
            return note("handshake");
        };
        table.clientFree = [](void*) { return note("-client"); };
        table.getValue = [](void*, const char*, const char*, void** found) {
            *found = value.empty() ? nullptr : made("value");
            return note("value");
        };
        table.startService = [](void*, const char*, void** descriptor) {
            *descriptor = made("descriptor");
            return note("descriptor");
        };
        table.descriptorFree = [](void*) { return note("-descriptor"); };
        table.serviceNew = [](void*, void*, void** service) {
            *service = made("service");
            return note("service");
        };
        table.serviceFree = [](void*) { return note("-service"); };
        table.serviceSend = [](void*, void*) { return note("send"); };
        table.serviceReceive = [](void*, void** found, unsigned) {
            *found = value.empty() ? nullptr : made("value");
            return note("receive");
        };
        table.valueFromXml = [](const char*, std::uint32_t, void** found) { *found = made("value"); };
        table.valueToXml = [](void*, char** text, std::uint32_t* size) {
            *text = strdup(value.c_str());
            *size = static_cast<std::uint32_t>(value.size());
        };
        table.valueFree = [](void*) { note("-value"); };
        return table;
    }
};

TEST(PhoneSession, FreesWhatItTookInTheirOrder) {
    const auto library = Library::table();
    {
        PhoneSession session(library, "A", true);
        session.connect();
        session.startSession();
        session.startService("relay");
        session.copyValue(nullptr, nullptr);
        std::optional<PropertyValue> reply;
        session.receiveMessage(reply);
        EXPECT_EQ(reply, true);
    }
    EXPECT_EQ(Library::calls, "network handshake descriptor service -descriptor value -value receive -value "
                              "-service -client -device ");
}

TEST(PhoneSession, NeverAsksForTrustOnThePhone) {
    const auto library = Library::table();
    Library::isPaired = false;
    PhoneSession session(library, "A", false);
    session.connect();
    EXPECT_EQ(session.isPaired(), 0);
    EXPECT_NE(session.validatePairing(), 0);
    EXPECT_NE(session.startSession(), 0);
    EXPECT_EQ(Library::calls, "usb ") << "a handshake without a record begins to pair";
}

TEST(PhoneSession, CallsOutOfTurnFail) {
    const auto library = Library::table();
    PhoneSession session(library, "A", false);
    std::optional<PropertyValue> reply;
    EXPECT_NE(session.startSession(), 0);
    EXPECT_EQ(session.copyValue(nullptr, nullptr), std::nullopt);
    EXPECT_NE(session.startService("relay"), 0);
    EXPECT_NE(session.sendMessage({}), 0);
    EXPECT_NE(session.receiveMessage(reply), 0);
    session.disconnect();
    EXPECT_EQ(Library::calls, "");
}

TEST(PhoneServer, MakesWhatAPhoneSaysHarmless) {
    const auto library = Library::table();
    PhoneSession session(library, "A", false);
    session.connect();
    session.startSession();
    PhoneServer server(session);
    const std::string call = encode(PhoneCall{"AMDeviceCopyValue", {}});
    struct Case {
        const char* label;
        std::string value;
        const char* answer;
    };
    const auto level = [](const char* value) {
        return "<dict><key>BatteryCurrentCapacity</key>" + std::string(value) + "</dict>";
    };
    const Case cases[] = {
        {"text", "<string>a\n&#27;[1m&#127;\u2019</string>", R"({"status":0,"value":"a  [1m ’"})"},
        {"long text", "<string>" + std::string(1000, 'x') + "</string>", nullptr},
        {"100 %", level("<integer>100</integer>"), R"({"status":0,"value":{"BatteryCurrentCapacity":100}})"},
        {"101 %", level("<integer>101</integer>"), R"({"status":0,"value":{}})"},
        {"-1 %", level("<integer>-1</integer>"), R"({"status":0,"value":{}})"},
        {"no number", level("<string>50</string>"), R"({"status":0,"value":{}})"},
        {"too much",
         "<array>" +
             [] {
                 std::string many;
                 for (int i = 0; i < 10'000; ++i)
                     many += "<string>abcdefghij</string>";
                 return many;
             }() +
             "</array>",
         R"({"status":0})"},
        {"no list", "", R"({"status":0})"},
    };
    for (const auto& one : cases) {
        Library::value = "<plist>" + one.value + "</plist>";
        const auto answer = server.answerLine(call);
        if (one.answer)
            EXPECT_EQ(answer, std::string(one.answer) + '\n') << one.label;
        else
            EXPECT_LT(answer.size(), 300U) << one.label;
    }
    Library::value.clear();
    EXPECT_EQ(server.answerLine(call), "{\"status\":0}\n") << "success without a value";
    EXPECT_EQ(server.answerLine("{\"call\":\"AMDeviceExplode\",\"with\":{}}"), "{\"status\":-1}\n");
    EXPECT_EQ(server.answerLine("nonsense"), "{\"status\":-1}\n");
}

} // namespace
} // namespace kivo
