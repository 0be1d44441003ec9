// SPDX-License-Identifier: MIT
#include "linux/NoticeSilencer.h"

#include "linux/PrivateBus.h"
#include "linux/QtLoop.h"
#include "linux_base/RecordedLog.h"
#include "linux_base/TestFolder.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

#include <filesystem>
#include <optional>

namespace kivo {
namespace {

// A helper that writes down its orders and remembers as the real one does.
struct NoticeSilencerTest : testing::Test {
    NoticeSilencerTest() {
        std::filesystem::create_directory(folder / "kivo");
        behave("true");
        start();
    }
    void start() {
        const auto places = Folders::find([this](std::string_view) { return std::optional(folder / ""); });
        silencer.emplace(loop, QDBusConnection(QStringLiteral("none")), places, log, folder / "helper");
    }
    // `first` is what the script does before it does as it was told.
    void behave(const std::string& first) {
        put(folder / "helper.new", "#!/bin/sh\necho $1 >> " + folder / "orders" + "\n" + first +
                                       "\ncase $1 in silence) touch " + memory + ";; restore) rm " + memory +
                                       ";; esac\necho done >> " + folder / "orders" + "\n");
        std::filesystem::permissions(folder / "helper.new", std::filesystem::perms::owner_all);
        std::filesystem::rename(folder / "helper.new", folder / "helper");
    }
    std::string orders() const { return textOf(folder / "orders"); }
    bool comesTo(const std::string& expected) {
        return eventually([&] { return orders() == expected; }, 20000);
    }

    TestFolder folder;
    const std::string memory = folder / "kivo/desktop-notices.json";
    RecordedLog log;
    QtLoop loop;
    std::optional<NoticeSilencer> silencer;
};

TEST_F(NoticeSilencerTest, theLatestWishIsFulfilledLast) {
    behave("sleep 0.3");
    silencer->silence(true);
    EXPECT_TRUE(comesTo("silence\n"));
    silencer->silence(false);
    silencer->silence(true);
    silencer->silence(false);
    EXPECT_TRUE(comesTo("silence\ndone\nrestore\ndone\n")) << "one at a time: " << orders();
    silencer->silence(false);
    silencer.reset();
    EXPECT_EQ(orders(), "silence\ndone\nrestore\ndone\n") << "nothing is left to be put back";
}

TEST_F(NoticeSilencerTest, nothingRunsWhereNothingWasChanged) {
    silencer->silence(false);
    silencer.reset();
    EXPECT_EQ(orders(), "");
}

TEST_F(NoticeSilencerTest, whatACrashLeftIsPutBack) {
    put(memory, "{}");
    silencer->silence(false);
    EXPECT_TRUE(comesTo("restore\ndone\n"));
}

TEST_F(NoticeSilencerTest, theEndPutsBackAndWaitsForNoHelperThatHangs) {
    silencer->silence(true);
    EXPECT_TRUE(comesTo("silence\ndone\n"));
    silencer.reset();
    EXPECT_EQ(orders(), "silence\ndone\nrestore\ndone\n");

    behave("exec sleep 60");
    put(memory, "{}");
    start();
    silencer->silence(true);
    EXPECT_TRUE(comesTo("silence\ndone\nrestore\ndone\nsilence\n"));
    QElapsedTimer timer;
    timer.start();
    silencer.reset();
    EXPECT_LT(timer.elapsed(), 15000);
    EXPECT_TRUE(std::filesystem::exists(memory)) << "for the next start";
}

TEST_F(NoticeSilencerTest, aFailureIsToldAndTriedAgainWithTheNextWish) {
    behave("echo 'kivo-notices: the disk is full' >&2; exit 1");
    silencer->silence(true);
    EXPECT_TRUE(eventually([&] { return !log.lines().empty(); }, 20000));
    EXPECT_EQ(log.lines().front(),
              "error notices: Changing the desktop's own notice failed: kivo-notices: the disk is full");
    silencer->silence(true);
    behave("true");
    put(memory, "{}");
    silencer->silence(false);
    EXPECT_TRUE(comesTo("silence\nrestore\ndone\n"));

    std::filesystem::remove(folder / "helper");
    silencer->silence(true);
    EXPECT_TRUE(eventually([&] { return log.lines().size() == 2; }, 20000)) << "a helper that does not start";
    silencer->silence(false);
}

} // namespace
} // namespace kivo
