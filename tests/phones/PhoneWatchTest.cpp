// SPDX-License-Identifier: MIT
#include "linux/phones/PhoneWatch.h"
#include "linux_base/RecordedLog.h"
#include "support/VirtualLoop.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

using namespace std::chrono_literals;

class FakeWatcher final : public PhoneWatcher {
public:
    bool hasSocket() override { return isSocketThere; }
    bool start() override {
        ++starts;
        isRunning = true;
        return true;
    }
    void stop() override { isRunning = false; }

    bool isSocketThere = true;
    bool isRunning = false;
    int starts = 0;
};

class PhoneWatchTest : public testing::Test {
protected:
    PhoneWatchTest() {
        phones.subscribe([this](MobileDeviceReference device, std::uint32_t code) {
            heard += (code == 1 ? '+' : '-') + *phones.copyDeviceIdentifier(device);
        });
    }
    void end() {
        watcher.isRunning = false;
        watch.handleEnd();
    }
    void say(const std::string& lines) { watch.handleOutput(lines); }
    std::string take() { return std::exchange(heard, {}); }

    VirtualLoop loop;
    RecordedLog log;
    LinuxMobileDevices phones{log, {"/nonexistent"}};
    FakeWatcher watcher;
    PhoneWatch watch{loop, log, watcher, phones};
    std::string heard;
};

TEST_F(PhoneWatchTest, WithoutASocketThereIsNoHelperAndNoWait) {
    watcher.isSocketThere = false;
    watch.begin();
    EXPECT_EQ(watcher.starts, 0);
    EXPECT_EQ(loop.pending(), 0U);

    watcher.isSocketThere = true;
    watch.handleSocket();
    watch.handleSocket();
    loop.advance(1s);
    EXPECT_EQ(watcher.starts, 1);

    // usbmuxd leaves with the last phone.
    say("listening\nconnected A 1\ndisconnected A 1\n");
    watcher.isSocketThere = false;
    end();
    loop.advance(3600s);
    EXPECT_EQ(watcher.starts, 1);
    EXPECT_EQ(loop.pending(), 0U);
    EXPECT_EQ(take(), "+A-A");
}

TEST_F(PhoneWatchTest, NobodyAskedNobodyWatches) {
    watch.handleSocket();
    loop.advance(60s);
    EXPECT_EQ(watcher.starts, 0);
}

TEST_F(PhoneWatchTest, AHelperThatKeepsEndingIsStartedLaterEachTime) {
    watch.begin();
    for (const Duration pause : {1s, 5s, 30s, 60s, 300s, 900s, 900s}) {
        const int before = watcher.starts;
        end();
        loop.advance(pause - 1ns);
        EXPECT_EQ(watcher.starts, before) << pause.count();
        loop.advance(1ns);
        EXPECT_EQ(watcher.starts, before + 1) << pause.count();
    }
    // One that listened for a minute was sound, and a new socket is a new chance.
    say("listening\n");
    loop.advance(60s);
    end();
    loop.advance(1s);
    EXPECT_EQ(watcher.starts, 9);
    end();
    watch.handleSocket();
    loop.advance(500ms);
    EXPECT_EQ(watcher.starts, 10);
}

TEST_F(PhoneWatchTest, AReplacedWatcherBringsNoNews) {
    watch.begin();
    say("listening\nconnected A 1\nconnec");
    say("ted B 1\nconnected C 2\n");
    EXPECT_EQ(take(), "+A+B+C");
    end();
    loop.advance(1s);
    say("listening\nconnected A 1\nconnected D 1\n");
    EXPECT_EQ(take(), "+D") << "A was there";
    loop.advance(1999ms);
    say("connected C 2\n");
    loop.advance(1ms);
    EXPECT_EQ(take(), "-B") << "not named within two seconds";
    say("connected A 1\n");
    EXPECT_EQ(take(), "+A") << "said twice by the same watcher it is news";
}

TEST_F(PhoneWatchTest, PhonesAreGoneWhenNoWatcherComes) {
    watch.begin();
    say("listening\nconnected A 1\n");
    watcher.isSocketThere = false;
    end();
    loop.advance(4999ms);
    EXPECT_EQ(take(), "+A");
    loop.advance(1ms);
    EXPECT_EQ(take(), "-A");
}

TEST_F(PhoneWatchTest, WithoutTheLibraryItWaitsForTheNextPhone) {
    watch.begin();
    say("no library\n");
    end();
    loop.advance(3600s);
    EXPECT_EQ(watcher.starts, 1);
    EXPECT_EQ(log.lines(),
              (std::vector<std::string>{
                  "info mobiledevice: libimobiledevice is missing: iPhones and iPads are not read"}));
    watch.handleSocket();
    loop.advance(1s);
    EXPECT_EQ(watcher.starts, 2);
}

TEST_F(PhoneWatchTest, AHelperThatTalksNonsenseIsEnded) {
    for (const std::string& nonsense : {std::string("connected A 9\n"), std::string(1000, 'x')}) {
        watch.begin();
        say("listening\n");
        say(nonsense + "\nconnected A 1\n");
        EXPECT_FALSE(watcher.isRunning);
        EXPECT_EQ(take(), "");
    }
}

} // namespace
} // namespace kivo
