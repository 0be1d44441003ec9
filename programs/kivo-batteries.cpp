// SPDX-License-Identifier: MIT
// kivo-batteries: the list of batteries that the running Kivo keeps, for terminals and status bars.
#include "devices/PowerDevice.h"
#include "linux/base/Descriptor.h"
#include "linux/base/Folders.h"
#include "linux/base/WholeFile.h"
#include "support/Json.h"
#include "ui/BatteryBar.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

using namespace kivo;

constexpr const char* usage = "Kivo's list of batteries, the computer first, then the emptiest\n"
                              "\n"
                              "usage: kivo-batteries [options]\n"
                              "  --follow   print again after each change, until the output is closed\n"
                              "  --waybar   one line of JSON for a custom module of Waybar\n"
                              "  --help     print this and end\n";

struct Options {
    bool follows = false;
    bool isForWaybar = false;
};

// Throws std::runtime_error for a file that cannot be read or understood; no file is an empty list.
std::vector<PowerDevice> readList(const std::string& path) {
    const auto file = readWholeFile(path);
    if (file.state == FileText::State::missing)
        return {};
    if (file.state == FileText::State::unreadable)
        throw std::runtime_error(file.error);
    const auto suite = json::parse(file.text);
    const auto* list = decoding::optional(decoding::object(suite, "the list"), "devices.v1");
    return list ? decodePowerDevices(*list) : std::vector<PowerDevice>{};
}

// False when nobody reads the output any more.
bool print(const std::string& text) {
    const bool isWritten = text.empty() || std::puts(text.c_str()) >= 0;
    return std::fflush(stdout) == 0 && isWritten;
}

// Waits for the next change of the list: of its folder, which may be taken away and come back, and of the one
// that the file itself is in where it is a link.
class ListWatch {
public:
    explicit ListWatch(std::filesystem::path file) : file_(std::move(file)) { begin(); }

    // What changes from then on is not missed.
    bool wait() {
        alignas(inotify_event) char events[4096];
        if (read(events_.get(), events, sizeof events) <= 0)
            return false;
        begin();
        return true;
    }

private:
    void begin() {
        events_ = Descriptor(inotify_init1(IN_CLOEXEC));
        std::error_code ignored;
        std::filesystem::create_directories(file_.parent_path(), ignored);
        if (!follow(file_.parent_path()))
            throw std::runtime_error(file_.parent_path().string() + " cannot be watched");
        if (std::filesystem::is_symlink(file_, ignored))
            follow(std::filesystem::weakly_canonical(file_, ignored).parent_path());
    }
    bool follow(const std::filesystem::path& folder) {
        return events_ && inotify_add_watch(events_.get(), folder.c_str(),
                                            IN_MOVED_TO | IN_CLOSE_WRITE | IN_DELETE_SELF | IN_MOVE_SELF) >= 0;
    }

    std::filesystem::path file_;
    Descriptor events_;
};

int run(const Options& options) {
    const auto path = Folders::find().data + "/widgets.json";
    const auto text = [&] {
        const auto devices = readList(path);
        return options.isForWaybar ? waybarLine(devices) : batteryLines(devices);
    };
    if (!options.follows)
        return print(text()) ? 0 : 1;
    ListWatch watch(path);
    std::optional<std::string> printed;
    do {
        auto now = text();
        if (now != printed && !print(now))
            return 0;
        printed = std::move(now);
    } while (watch.wait());
    return 1;
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--help" || argument == "-h") {
            std::fputs(usage, stdout);
            return 0;
        }
        if (argument == "--follow") {
            options.follows = true;
        } else if (argument == "--waybar") {
            options.isForWaybar = true;
        } else {
            std::fprintf(stderr, "kivo-batteries: unknown option %s\n%s", argv[i], usage);
            return 2;
        }
    }
    try {
        return run(options);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "kivo-batteries: %s\n", error.what());
        return 1;
    }
}
