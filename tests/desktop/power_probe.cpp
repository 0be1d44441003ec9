// SPDX-License-Identifier: MIT
// The power half of the Linux machine alone: prints what it knows, as one JSON line, at the start and after
// each change that it is told.
#include "linux/KernelPower.h"
#include "linux/LinuxPowerSources.h"
#include "linux/PowerProfiles.h"
#include "linux/QtLoop.h"
#include "linux/UPower.h"
#include "support/Json.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <string>

namespace {

struct StandardError final : kivo::LogSink {
    void log(kivo::LogLevel, std::string_view category, std::string_view message) override {
        std::fprintf(stderr, "%s: %s\n", std::string(category).c_str(), std::string(message).c_str());
    }
};

// Tells how long the main thread was ever held up.
class Pulse {
public:
    explicit Pulse(kivo::MainLoop& loop) : loop_(loop), last_(loop.now()) { beat(); }
    double longest() const { return kivo::inSeconds(longest_); }

private:
    void beat() {
        longest_ = std::max(longest_, loop_.now() - last_);
        last_ = loop_.now();
        next_ = loop_.after(kivo::seconds(0.01), [this] { beat(); });
    }

    kivo::MainLoop& loop_;
    kivo::Duration last_;
    kivo::Duration longest_{0};
    kivo::Subscription next_;
};

} // namespace

int main(int argc, char** argv) {
    using namespace kivo;
    const QCoreApplication application(argc, argv);
    // The emulated hardware sends its events to descriptor numbers: ours must be nobody else's.
    for (int i = 0; i < 50; ++i)
        [[maybe_unused]] const int unused = open("/dev/null", O_RDONLY | O_CLOEXEC);
    QtLoop loop;
    // An argument asks for the pulse, which keeps the process awake.
    std::optional<Pulse> pulse;
    if (argc > 1)
        pulse.emplace(loop);
    StandardError log;
    UPower upower(loop, log, QDBusConnection::systemBus());
    KernelPower kernel(loop);
    LinuxPowerSources sources(loop, upower, kernel);
    PowerProfiles profiles(loop, QDBusConnection::systemBus());

    const auto print = [&] {
        Dictionary line{{"isSaving", profiles.isLowPowerModeEnabled()}};
        if (const auto list = sources.copyPowerSources())
            line["battery"] = list->empty() ? PropertyValue(false) : PropertyValue(*list->front());
        if (sources.smartBattery())
            line["health"] = *sources.smartBattery();
        if (pulse)
            line["heldUp"] = pulse->longest();
        std::printf("%s\n", json::write(line).c_str());
        std::fflush(stdout);
    };
    const auto power = sources.notifyPowerSourceChanges(print);
    const auto mode = profiles.onPowerStateChange(print);
    print();
    return QCoreApplication::exec();
}
