// SPDX-License-Identifier: MIT
#include "linux/base/LinuxSounds.h"

#include "linux/base/SoundSketch.h"
#include "linux_base/Child.h"
#include "linux_base/RecordedLog.h"
#include "linux_base/TestFolder.h"

#include <chrono>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <thread>

namespace kivo {
namespace {

using namespace std::chrono_literals;

bool eventually(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + 10s;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(20ms);
    }
    return true;
}

bool holdsLibrary() {
    return textOf("/proc/self/maps").find("libpulse.so") != std::string::npos;
}

std::ptrdiff_t threadCount() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

// A real sound server with nothing but a sink that drops what it plays, and a recorder on it.
struct LinuxSoundsTest : testing::Test {
    void SetUp() override {
        if (std::system("command -v pulseaudio parec >/dev/null") != 0)
            GTEST_SKIP() << "needs pulseaudio and pulseaudio-utils";
        setenv("XDG_RUNTIME_DIR", folder.path.c_str(), 1);
        setenv("HOME", folder.path.c_str(), 1);
        setenv("PULSE_SERVER", ("unix:" + socket).c_str(), 1);
    }
    bool isBusy() const { return threadCount() > threadsAtStart; }
    std::unique_ptr<Child> startServer() const {
        auto server = std::make_unique<Child>(
            std::vector<std::string>{"pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1",
                                     "--use-pid-file=no", "-L", "module-null-sink sink_name=test rate=48000",
                                     "-L", "module-native-protocol-unix auth-anonymous=1 socket=" + socket});
        EXPECT_TRUE(eventually([this] { return access(socket.c_str(), F_OK) == 0; }));
        return server;
    }
    std::unique_ptr<Child> record() const {
        auto recorder = std::make_unique<Child>(
            std::vector<std::string>{"parec", "--latency-msec=20", "--device=test.monitor",
                                     "--format=float32le", "--rate=48000", "--channels=1", "--raw"},
            folder / "record");
        EXPECT_TRUE(eventually([this] { return !textOf(folder / "record").empty(); })) << "nothing is recorded";
        return recorder;
    }
    std::vector<float> samples() const {
        const std::string bytes = textOf(folder / "record");
        std::vector<float> result(bytes.size() / sizeof(float));
        std::memcpy(result.data(), bytes.data(), result.size() * sizeof(float));
        return result;
    }
    // The loudest sample of each hundredth of a second.
    std::vector<float> heard() const {
        std::vector<float> peaks;
        std::size_t count = 0;
        for (const float sample : samples()) {
            if (count++ % (SoundSketch::rate / 100) == 0)
                peaks.push_back(0);
            peaks.back() = std::max(peaks.back(), std::abs(sample));
        }
        return peaks;
    }
    // The loudest of what is deeper than about 100 Hz.
    float loudestDeep() const {
        float low = 0;
        float result = 0;
        for (const float sample : samples()) {
            low += 0.013F * (sample - low);
            result = std::max(result, std::abs(low));
        }
        return result;
    }
    double secondsHeard() const {
        const auto peaks = heard();
        return static_cast<double>(
                   std::count_if(peaks.begin(), peaks.end(), [](float it) { return it > 0.003F; })) /
               100;
    }
    float loudest() const {
        const auto peaks = heard();
        return peaks.empty() ? 0 : *std::max_element(peaks.begin(), peaks.end());
    }

    const std::ptrdiff_t threadsAtStart = threadCount();
    TestFolder folder;
    std::string socket = folder / "pulse.sock";
    RecordedLog log;
};

TEST_F(LinuxSoundsTest, PlaysBeginsAnewAndLetsGoOfTheServer) {
    const auto server = startServer();
    const auto recorder = record();
    LinuxSounds sounds(log);
    EXPECT_EQ(sounds.named("glass"), nullptr);
    NamedSound* const morse = sounds.named("Morse");
    ASSERT_NE(morse, nullptr);
    EXPECT_EQ(morse, sounds.named("Morse"));
    morse->stop();
    EXPECT_FALSE(isBusy() || holdsLibrary()) << "a program that was never heard carries nothing";
    morse->play();
    ASSERT_TRUE(eventually([&] { return loudest() > 0.1F; }));
    std::this_thread::sleep_for(1500ms);
    const double once = secondsHeard();
    EXPECT_NEAR(once, 0.46, 0.1) << "seven of its nine units sound";
    const float peakOnce = loudest();

    // Long, then the whole letter again: had it not begun anew, it would sound twice over itself.
    morse->stop();
    morse->play();
    ASSERT_TRUE(eventually([&] { return secondsHeard() > once + 0.12; }));
    morse->stop();
    morse->play();
    std::this_thread::sleep_for(1500ms);
    EXPECT_GT(secondsHeard(), 2 * once + 0.1);
    EXPECT_LT(secondsHeard(), 2 * once + 0.5);
    EXPECT_LT(loudest(), peakOnce * 1.3F);

    EXPECT_TRUE(eventually([&] { return !isBusy(); })) << "the idle program keeps its connection";
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(LinuxSoundsTest, DifferentSoundsOverlap) {
    const auto server = startServer();
    const auto recorder = record();
    LinuxSounds sounds(log);
    sounds.named("Glass")->play();
    ASSERT_TRUE(eventually([&] { return loudest() > 0.1F; }));
    EXPECT_LT(loudestDeep(), 0.06F);
    sounds.named("Basso")->play();
    std::this_thread::sleep_for(2000ms);
    EXPECT_GT(loudestDeep(), 0.1F);
    EXPECT_GT(secondsHeard(), 0.9) << "the first one was cut off";
    EXPECT_LT(secondsHeard(), 1.7) << "one waited for the other";
}

TEST_F(LinuxSoundsTest, WithoutAServerThereIsSilenceAndOneLine) {
    LinuxSounds sounds(log);
    const auto pop = sounds.named("Pop");
    for (int i = 0; i < 3; ++i) {
        pop->play();
        EXPECT_TRUE(eventually([&] { return !isBusy(); }));
    }
    EXPECT_TRUE(eventually([&] { return log.lines().size() == 1; }));
    EXPECT_EQ(log.lines(), std::vector<std::string>{"error sounds: Playing sounds failed: Connection refused"});

    // The server comes, goes in the middle of a sound, and comes again.
    auto server = startServer();
    auto recorder = record();
    sounds.named("Hero")->play();
    ASSERT_TRUE(eventually([&] { return loudest() > 0.1F; }));
    recorder.reset();
    server.reset();
    EXPECT_TRUE(eventually([&] { return log.lines().size() == 2; }));
    unlink(socket.c_str());
    server = startServer();
    recorder = record();
    pop->play();
    EXPECT_TRUE(eventually([&] { return loudest() > 0.1F; }));
}

// A server that accepts and never answers must not hold up the end of the program.
TEST_F(LinuxSoundsTest, AServerThatHangsHoldsNobody) {
    const std::string script = "import socket,time; s=socket.socket(socket.AF_UNIX); s.bind('" + socket +
                               "'); s.listen(9); time.sleep(60)";
    const Child server({"/usr/bin/python3", "-c", script});
    ASSERT_TRUE(eventually([this] { return access(socket.c_str(), F_OK) == 0; }));
    auto sounds = std::make_unique<LinuxSounds>(log);
    const auto start = std::chrono::steady_clock::now();
    sounds->named("Pop")->play();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 50ms);
    ASSERT_TRUE(eventually([this] { return isBusy(); }));
    std::this_thread::sleep_for(100ms);
    const auto end = std::chrono::steady_clock::now();
    sounds.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - end, 500ms);
    EXPECT_TRUE(log.lines().empty()) << "quitting is no failure";
}

} // namespace
} // namespace kivo
