// SPDX-License-Identifier: MIT
#include "linux/base/FileUserDefaults.h"

#include "linux/base/LinuxSupportFiles.h"
#include "linux/base/WholeFile.h"
#include "linux_base/RecordedLog.h"
#include "linux_base/TestFolder.h"
#include "support/Json.h"
#include "support/VirtualLoop.h"

#include <future>
#include <gtest/gtest.h>

namespace kivo {
namespace {

using Names = std::vector<std::string>;

PropertyValue data(std::string bytes) {
    return PropertyValue::Data{std::move(bytes)};
}

TEST(DefaultsFile, GivesBackExactlyWhatWasStored) {
    struct Case {
        const char* label;
        PropertyValue value;
        std::string inFile;
    };
    const Case cases[] = {
        {"a boolean", true, "true"},
        {"an integer", 20, "20"},
        {"a whole double", 20.0, "20.0"},
        {"the largest unsigned", UINT64_MAX, "18446744073709551615"},
        {"text", "energy \"x\" \n ä", R"("energy \"x\" \n ä")"},
        {"data with an object", data(R"({"a":[1,2.5]})"), R"({"a":[1,2.5]})"},
        {"data with an empty array", data("[]"), "[]"},
        {"data that is JSON in another spelling", data("{ \"a\":1 }"), R"({"$text":"{ \"a\":1 }"})"},
        {"data that is a JSON number", data("5"), R"({"$text":"5"})"},
        {"data that looks like a mark", data(R"({"$text":"x"})"), R"({"$text":"{\"$text\":\"x\"}"})"},
        {"empty data", data(""), R"({"$text":""})"},
        {"bytes", data(std::string("\x00\xff\x7b", 3)), R"({"$bytes":"00ff7b"})"},
        {"a list", Array{1, "a"}, R"({"$value":[1,"a"]})"},
        {"a dictionary", Dictionary{{"$text", "x"}}, R"({"$value":{"$text":"x"}})"},
    };
    for (const auto& it : cases) {
        SCOPED_TRACE(it.label);
        const std::string text = defaults::encode({{"key", it.value}});
        EXPECT_EQ(text, "{\n  \"key\": " + it.inFile + "\n}\n");
        EXPECT_EQ(defaults::decode(text), (Dictionary{{"key", it.value}}));
    }
    EXPECT_EQ(defaults::decode(defaults::encode({})), Dictionary());

    // As deep as a text may be: in the file it would stand one level deeper.
    const Dictionary deep{{"key", data(std::string(256, '[') + std::string(256, ']'))}};
    EXPECT_EQ(defaults::decode(defaults::encode(deep)), deep);
    const Dictionary several{{"key", data("[],[]")}, {"other", data("")}};
    EXPECT_EQ(defaults::decode(defaults::encode(several)), several);
}

TEST(DefaultsFile, RefusesWhatIsNoSuchFile) {
    for (const char* text : {"", "{", "[]", "5", "{} {}", R"({"a":{"$bytes":"0"}})", R"({"a":{"$bytes":"xx"}})",
                             R"({"a":{"$text":1}})"}) {
        SCOPED_TRACE(text);
        EXPECT_THROW(defaults::decode(text), DecodingError);
    }
    // Written by hand: spaces, and a key without a value.
    EXPECT_EQ(defaults::decode(R"( { "a" : { "b" : 1 }, "c" : null } )"),
              (Dictionary{{"a", data(R"({"b":1})")}}));
}

struct FileUserDefaultsTest : testing::Test {
    std::unique_ptr<FileUserDefaults> open() { return std::make_unique<FileUserDefaults>(path, writer, log); }

    TestFolder folder;
    std::string path = folder / "kivo/settings.json";
    RecordedLog log;
    DiskWriter writer;
};

TEST_F(FileUserDefaultsTest, KeepsValuesAcrossLaunchesAndWritesNothingUnasked) {
    auto defaults = open();
    EXPECT_EQ(defaults->value("a"), std::nullopt);
    defaults->remove("a");
    defaults.reset();
    EXPECT_EQ(folder.names(), Names{});

    defaults = open();
    for (int step = 0; step <= 100; ++step)
        defaults->set("threshold", step);
    defaults->set("gone", true);
    defaults->remove("gone");
    defaults->set("alsoGone", 1);
    defaults->set("alsoGone", PropertyValue());
    EXPECT_EQ(defaults->value("threshold"), PropertyValue(100));
    EXPECT_EQ(defaults->value("alsoGone"), std::nullopt);
    defaults.reset();
    EXPECT_EQ(textOf(path), "{\n  \"threshold\": 100\n}\n");
    EXPECT_EQ(open()->value("threshold"), PropertyValue(100));
    EXPECT_EQ(log.lines(), Names{});
}

TEST_F(FileUserDefaultsTest, AnUnreadableFileIsKeptOnceAndNeverLost) {
    std::filesystem::create_directory(folder / "kivo");
    put(path, "{\"half\":");
    auto defaults = open();
    EXPECT_EQ(defaults->value("half"), std::nullopt);
    defaults.reset();
    EXPECT_EQ(folder.names("kivo"), Names{"settings.json"}) << "touched before the first save";
    ASSERT_EQ(log.lines().size(), 1U);
    EXPECT_TRUE(log.lines()[0].starts_with("error defaults: Reading settings failed"));

    defaults = open();
    defaults->set("a", 1);
    writer.flush();
    defaults->set("a", 2);
    defaults.reset();
    EXPECT_EQ(folder.names("kivo"), (Names{"settings.json", "settings.json.unreadable"}));
    EXPECT_EQ(textOf(path + ".unreadable"), "{\"half\":");
    EXPECT_EQ(open()->value("a"), PropertyValue(2));
    EXPECT_EQ(log.lines().size(), 2U);
}

TEST_F(FileUserDefaultsTest, AFailingDiskIsReportedOnceAndSavingGoesOn) {
    put(folder / "kivo", "in the folder's place");
    auto defaults = open();
    for (int step = 0; step < 3; ++step) {
        defaults->set("a", step);
        writer.flush();
    }
    EXPECT_EQ(log.lines(), Names{"error defaults: Saving settings to disk failed: " + (folder / "kivo") +
                                 ": Not a directory"});
    EXPECT_EQ(defaults->value("a"), PropertyValue(2));
    std::filesystem::remove(folder / "kivo");
    defaults.reset();
    EXPECT_EQ(open()->value("a"), PropertyValue(2)) << "tried again in the end";
}

TEST(DiskWriter, TheNewestTextWinsAndEveryoneHearsTheOutcome) {
    const TestFolder folder;
    const std::string path = folder / "x.json";
    std::atomic<int> outcomes = 0;
    {
        DiskWriter writer;
        for (int number = 0; number < 500; ++number)
            writer.write(path, std::to_string(number), [&](const auto& error) { outcomes += !error; });
        EXPECT_EQ(writer.writeAndWait(path, "last"), std::nullopt);
        EXPECT_EQ(textOf(path), "last");
        EXPECT_NE(writer.writeAndWait(path + "/inside", ""), std::nullopt);
        writer.write(path, "at the end");
    }
    EXPECT_EQ(outcomes, 500);
    EXPECT_EQ(textOf(path), "at the end");
}

// The thread that hands texts over must never wait for a slow disk; here one that takes until the end.
TEST(DiskWriter, ASlowDiskHoldsNobody) {
    const TestFolder folder;
    std::promise<void> diskIsReady;
    std::vector<int> order;
    {
        DiskWriter writer;
        std::promise<void> started;
        writer.write(folder / "slow", "", [&](const auto&) {
            started.set_value();
            diskIsReady.get_future().wait();
        });
        started.get_future().wait();
        writer.write(folder / "a", "old", [&](const auto&) { order.push_back(1); });
        writer.afterWrites([&] { order.push_back(textOf(folder / "a") == "new" ? 2 : 0); });
        writer.write(folder / "a", "new");
        writer.write(folder / "b", "", [&](const auto&) { order.push_back(3); });
        EXPECT_EQ(folder.names(), Names{"slow"});
        diskIsReady.set_value();
    }
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TEST(LinuxSupportFiles, StayInsideTheirFolderAndReportOnTheMainLoop) {
    const TestFolder folder;
    VirtualLoop loop;
    DiskWriter writer;
    LinuxSupportFiles files(folder / "kivo", writer, loop);
    std::vector<std::optional<std::string>> outcomes;
    const auto done = [&](const std::optional<std::string>& error) { outcomes.push_back(error); };

    EXPECT_EQ(files.read("Kivo/energy.json"), std::nullopt);
    files.writeInBackground("Kivo/energy.json", "one", done);
    EXPECT_EQ(files.read("Kivo/energy.json"), "one");
    EXPECT_TRUE(outcomes.empty());
    loop.runPosted();
    EXPECT_EQ(outcomes, std::vector<std::optional<std::string>>{std::nullopt});
    EXPECT_EQ(textOf(folder / "kivo/energy.json"), "one");

    EXPECT_TRUE(files.keepAside("Kivo/energy.json"));
    EXPECT_EQ(files.write("Kivo/energy.json", "two"), std::nullopt);
    EXPECT_EQ(folder.names("kivo"), (Names{"energy.json", "energy.json.unreadable"}));

    for (const char* path : {"../x", "Kivo/../../x", "/etc/x", "", "Kivo/"}) {
        SCOPED_TRACE(path);
        EXPECT_NE(files.write(path, "text"), std::nullopt);
        EXPECT_EQ(files.read(path), std::nullopt);
    }
    files.writeInBackground("../x", "text", done);
    loop.runPosted();
    ASSERT_EQ(outcomes.size(), 2U);
    EXPECT_NE(outcomes[1], std::nullopt);
    EXPECT_EQ(folder.names(), Names{"kivo"});
}

} // namespace
} // namespace kivo
