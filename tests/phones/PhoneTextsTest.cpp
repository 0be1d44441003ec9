// SPDX-License-Identifier: MIT
#include "linux/phones/PhoneMessages.h"
#include "linux/phones/PropertyListText.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

std::string plist(const std::string& value) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\">\n" +
           value + "\n</plist>\n";
}

struct Reading {
    const char* label;
    const char* text;
    PropertyValue value;
};

TEST(PropertyListText, ReadsWhatDevicesSay) {
    const Reading readings[] = {
        {"booleans", "<array><true/><false /></array>", Array{true, false}},
        {"integers", "<array><integer>-386</integer><integer>18446744073709551615</integer></array>",
         Array{-386, UINT64_MAX}},
        {"real", "<real>0.5</real>", 0.5},
        {"entities", "<string>a &lt;b&gt; &amp; &#8217;&#x2019;</string>", "a <b> & \u2019\u2019"},
        {"broken UTF-8", "<string>a\xFF</string>", "a\uFFFD"},
        {"empty ones", "<dict><key>a</key><string/><key>b</key><dict/><key>c</key><array/><key/><true/></dict>",
         Dictionary{{"a", ""}, {"b", Dictionary{}}, {"c", Array{}}, {"", true}}},
        {"the last of a key", "<dict><key>a</key><true/><key>a</key><false/></dict>", Dictionary{{"a", false}}},
        {"data and dates are left out",
         "<dict><key>a</key><data>AAAA</data><key>b</key><date>2024-01-01T00:00:00Z</date></dict>",
         Dictionary{}},
        {"comments", "<!-- <true/> --><dict><!-- a --></dict>", Dictionary{}},
    };
    for (const auto& reading : readings) {
        SCOPED_TRACE(reading.label);
        EXPECT_EQ(propertylist::parse(plist(reading.text)), reading.value);
    }
}

TEST(PropertyListText, RefusesEverythingElse) {
    std::string deep;
    for (int i = 0; i < 200'000; ++i)
        deep += "<array>";
    std::string wide = "<array>";
    for (int i = 0; i < 20'001; ++i)
        wide += "<true/>";
    const std::pair<const char*, std::string> texts[] = {
        {"nothing", ""},
        {"no list", "HTTP/1.1 400 no\r\n\r\n"},
        {"binary", "bplist00\xD1\x01\x02"},
        {"no value", plist("")},
        {"two values", plist("<true/><true/>")},
        {"something after it", plist("<true/>") + "<true/>"},
        {"cut short", plist("<dict><key>a</key><string>b</string></dict>").substr(0, 190)},
        {"value without key", plist("<dict><true/></dict>")},
        {"key without value", plist("<dict><key>a</key></dict>")},
        {"wrong end", plist("<string>a<xstring>")},
        {"element in a text", plist("<string>a<b/></string>")},
        {"unknown element", plist("<set/>")},
        {"no number", plist("<integer>1x</integer>")},
        {"empty number", plist("<integer/>")},
        {"unknown entity", plist("<string>&lol;</string>")},
        {"no character", plist("<string>&#xD800;</string>")},
        {"too deep", plist(deep)},
        {"too many", plist(wide + "</array>")},
    };
    for (const auto& [label, text] : texts) {
        SCOPED_TRACE(label);
        EXPECT_THROW(propertylist::parse(text), DecodingError);
    }
}

TEST(PropertyListText, ReadsBackWhatItWrites) {
    const Dictionary message{{"Request", "<IORegistry> & more"},
                             {"a", Array{true, -1, UINT64_MAX, 0.25}},
                             {"d", Dictionary{{"e", ""}}}};
    EXPECT_EQ(propertylist::parse(propertylist::write(message)), message);
    EXPECT_EQ(propertylist::parse(propertylist::write({{"a", nullptr}, {"b", PropertyValue::Data{"x"}}})),
              Dictionary{});
}

TEST(PhoneMessages, OnlyWholeEventsAreEvents) {
    const std::string longest(64, 'A');
    for (const auto kind :
         {PhoneEvent::Kind::connected, PhoneEvent::Kind::disconnected, PhoneEvent::Kind::paired}) {
        const PhoneEvent event{kind, longest, PhoneEvent::network};
        const auto line = encode(event);
        EXPECT_LE(line.size(), longestPhoneEvent);
        EXPECT_EQ(decodePhoneEvent(line.substr(0, line.size() - 1)), event);
    }
    for (const auto* line :
         {"", "connected", "connected A", "connected A 0", "connected A 3", "connected A 11", "connected  1",
          "connected A/B 1", "connected A\tB 1", "joined A 1", "connected A 1 ", " connected A 1"})
        EXPECT_EQ(decodePhoneEvent(line), std::nullopt) << line;
    EXPECT_EQ(decodePhoneEvent("connected " + longest + "A 1"), std::nullopt);
}

TEST(PhoneMessages, RepliesAreCheckedFieldByField) {
    const PhoneReply reply{-21, Dictionary{{"Level", 3}, {"Name", "a\nb"}}};
    const auto line = encode(reply);
    EXPECT_EQ(line.find('\n'), line.size() - 1) << "one line";
    EXPECT_EQ(decodePhoneReply(line), reply);
    EXPECT_EQ(decodePhoneReply("{\"status\":0}"), PhoneReply{});
    for (const auto* text : {"", "0", "[]", "{}", "{\"status\":\"0\"}", "{\"status\":0.5}", "{\"status\":0}x",
                             "{\"status\":0,\"value\":"})
        EXPECT_THROW(decodePhoneReply(text), DecodingError) << text;
    const PhoneCall call{"AMDeviceCopyValue", {{"domain", "com.apple.mobile.battery"}}};
    EXPECT_EQ(decodePhoneCall(encode(call)), call);
}

TEST(LineBuffer, PutsLinesTogetherAndHoldsNoMoreThanItsLimit) {
    LineBuffer lines(4);
    std::vector<std::string> taken;
    const auto add = [&](std::string_view bytes) {
        while (!bytes.empty()) {
            if (auto line = lines.takeLine(bytes))
                taken.push_back(*line);
        }
    };
    for (const auto* piece : {"a", "b", "\nc", "\n\nabc\n"})
        add(piece);
    EXPECT_EQ(taken, (std::vector<std::string>{"ab", "c", "", "abc"}));
    EXPECT_FALSE(lines.isOverfull());
    add("ab");
    add("cd\n");
    add("a\n");
    EXPECT_TRUE(lines.isOverfull()) << "four characters and an end";
    EXPECT_EQ(taken.size(), 4U);
}

} // namespace
} // namespace kivo
