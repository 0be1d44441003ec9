// SPDX-License-Identifier: MIT
#include "linux/base/DesktopNotices.h"

#include "linux/base/NotifyrcSwitch.h"
#include "linux_base/TestFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

namespace kivo {
namespace {

using Names = std::vector<std::string>;

constexpr const char* defaults = "[Global]\nName=Power\n\n[Event/lowbattery]\nName=Low\nAction=Popup|Sound\n\n"
                                 "[Event/criticalbattery]\nAction=Popup\n";

// A home whose Plasma has that event.
struct Home {
    Home() {
        for (const auto* name : {"config", "data", "system", "system/knotifications5", "etc"})
            std::filesystem::create_directory(folder / name);
        put(folder / "system/knotifications5/powerdevil.notifyrc", defaults);
    }
    EnvironmentLookup environment() const {
        return [this](std::string_view name) -> std::optional<std::string> {
            if (name == "XDG_CONFIG_HOME")
                return folder / "config";
            if (name == "XDG_DATA_HOME")
                return folder / "data";
            if (name == "XDG_DATA_DIRS")
                return folder / "nowhere:" + folder / "system";
            if (name == "XDG_CONFIG_DIRS")
                return folder / "etc";
            return std::nullopt;
        };
    }
    std::string file() const { return folder / "config/powerdevil.notifyrc"; }
    std::optional<std::string> text() const {
        return std::filesystem::exists(file()) ? std::optional(textOf(file())) : std::nullopt;
    }
    std::string memory() const { return folder / "data/kivo/desktop-notices.json"; }
    bool hasMemory() const { return std::filesystem::exists(memory()); }

    TestFolder folder;
};

// Stands in for a switch to say how its writing ends; otherwise it is the real one.
class Unsteady final : public NoticeSwitch {
public:
    enum class End { asUsual, error, killedBefore, killedAfter };
    Unsteady(std::unique_ptr<NoticeSwitch> real, End end) : real_(std::move(real)), end_(end) {}

    std::string_view name() const override { return real_->name(); }
    std::optional<PropertyValue> read() override { return real_->read(); }
    PropertyValue silenced(const PropertyValue& value) override { return real_->silenced(value); }
    PropertyValue restored(const PropertyValue& now, const PropertyValue& before) override {
        return real_->restored(now, before);
    }
    std::optional<std::string> write(const PropertyValue& value) override {
        if (end_ == End::killedBefore)
            _exit(9);
        if (end_ == End::error)
            return "the disk is full";
        const auto error = real_->write(value);
        if (end_ == End::killedAfter)
            _exit(9);
        return error;
    }

private:
    std::unique_ptr<NoticeSwitch> real_;
    End end_;
};

DesktopNotices notices(const Home& home, Unsteady::End end = Unsteady::End::asUsual) {
    NoticeSwitches switches;
    switches.push_back(std::make_unique<Unsteady>(std::make_unique<NotifyrcSwitch>(home.environment()), end));
    return DesktopNotices(std::move(switches), home.memory());
}

// In a process of its own, which the switch may end.
void inProcess(const std::function<void()>& work) {
    const pid_t process = fork();
    if (process == 0) {
        work();
        _exit(0);
    }
    waitpid(process, nullptr, 0);
}

std::string firstLine(const std::string& text, std::string_view start) {
    const auto at = text.find(start);
    return at == std::string::npos ? "(none)" : text.substr(at, text.find('\n', at) - at);
}

TEST(DesktopNotices, ComeBackByteByByteWhateverWasThere) {
    struct Row {
        const char* label;
        std::optional<std::string> before;
        const char* silent; // the line that counts then
    };
    const Row rows[] = {
        {"no file", std::nullopt, "Action=Sound"},
        {"an empty file", "", "Action=Sound"},
        {"other events only", "[Event/fullbattery]\nAction=Popup\n", "Action=Sound"},
        {"no newline at the end", "[Event/fullbattery]\nSound=x", "Action=Sound"},
        {"the group without the key", "# mine\n[Event/lowbattery]\nSound=x\n\n[Other]\nAction=Popup\n",
         "Action=Sound"},
        {"the key", "[Event/lowbattery]\nAction = Popup|Sound|Taskbar \nSound=x\n", "Action=Sound|Taskbar"},
        {"only the pop-up", "[Event/lowbattery]\r\nAction=Popup\r\n", "Action=None"},
    };
    for (const auto& row : rows) {
        const Home home;
        if (row.before)
            put(home.file(), *row.before);
        EXPECT_EQ(notices(home).silence("KDE").changed, Names{"powerdevil"}) << row.label;
        EXPECT_EQ(firstLine(home.text().value_or("").substr(home.text()->find("lowbattery")), "Action"),
                  row.silent)
            << row.label;
        EXPECT_TRUE(notices(home).silence("KDE").changed.empty()) << row.label << ": once is enough";
        EXPECT_EQ(notices(home).restore().changed, Names{"powerdevil"}) << row.label;
        EXPECT_EQ(home.text(), row.before) << row.label;
        EXPECT_FALSE(home.hasMemory()) << row.label;
    }
}

TEST(DesktopNotices, AreLeftAloneWhereThereIsNothingToSwitch) {
    struct Row {
        const char* label;
        const char* desktop;
        const char* own;
        const char* administrators;
        const char* system;
    };
    const Row rows[] = {
        {"another desktop", "XFCE", "", "", defaults},
        {"a name that only begins so", "KDE5", "", "", defaults},
        {"no such event", "KDE", "", "", "[Event/fullbattery]\nAction=Popup\n"},
        {"silent by the user", "KDE", "[Event/lowbattery]\nAction=Sound\n", "", defaults},
        {"silent by the administrator", "KDE", "", "[Event/lowbattery]\nAction=\n", defaults},
        {"fixed by the administrator", "KDE", "", "[Event/lowbattery][$i]\nAction=Popup\n", defaults},
        {"fixed for good", "KDE", "[$i]\n[Event/lowbattery]\nAction=Popup\n", "", defaults},
        {"a key that is fixed", "KDE", "[Event/lowbattery]\nAction[$i]=Popup\n", "", defaults},
        {"no text", "KDE", "\xff\n[Event/lowbattery]\nAction=Popup\n", "", defaults},
    };
    for (const auto& row : rows) {
        const Home home;
        put(home.file(), row.own);
        put(home.folder / "etc/powerdevil.notifyrc", row.administrators);
        put(home.folder / "system/knotifications5/powerdevil.notifyrc", row.system);
        const auto outcome = notices(home).silence(row.desktop);
        EXPECT_TRUE(outcome.changed.empty() && outcome.errors.empty()) << row.label;
        EXPECT_EQ(home.text(), row.own) << row.label;
        EXPECT_FALSE(home.hasMemory()) << row.label;
        EXPECT_TRUE(notices(home).restore().changed.empty()) << row.label;
    }
}

TEST(DesktopNotices, LoseNothingWhoeverIsKilledInBetween) {
    using End = Unsteady::End;
    const std::string before = "[Event/lowbattery]\nSound=mine\n";
    for (const auto silencing : {End::asUsual, End::killedBefore, End::killedAfter, End::error}) {
        for (const auto restoring : {End::asUsual, End::killedBefore, End::killedAfter, End::error}) {
            const std::string label =
                std::to_string(static_cast<int>(silencing)) + " " + std::to_string(static_cast<int>(restoring));
            const Home home;
            put(home.file(), before);
            inProcess([&] { notices(home, silencing).silence("ubuntu:KDE"); });
            EXPECT_TRUE(home.hasMemory()) << label;
            // The next start with the feature on.
            notices(home).silence("KDE");
            EXPECT_EQ(home.text(), "[Event/lowbattery]\nAction=Sound\nSound=mine\n") << label;
            inProcess([&] { notices(home, restoring).restore(); });
            // The next start with the feature off.
            notices(home).restore();
            EXPECT_EQ(home.text(), before) << label;
            EXPECT_FALSE(home.hasMemory()) << label;
        }
    }
}

TEST(DesktopNotices, KeepWhatTheUserChangedMeanwhile) {
    struct Row {
        const char* label;
        const char* before;
        const char* meanwhile;
        const char* after;
    };
    const Row rows[] = {
        {"another event", "", "[Event/fullbattery]\nAction=Popup\n\n[Event/lowbattery]\nAction=Sound\n",
         "[Event/fullbattery]\nAction=Popup\n\n"},
        {"another key", "[Event/lowbattery]\nAction=Popup\n", "[Event/lowbattery]\nAction=None\nSound=new\n",
         "[Event/lowbattery]\nAction=Popup\nSound=new\n"},
        {"this very choice", "[Event/lowbattery]\nAction=Popup\n", "[Event/lowbattery]\nAction=Taskbar\n",
         "[Event/lowbattery]\nAction=Taskbar\n"},
        {"everything is gone", "[Event/lowbattery]\nAction=Popup\n", "", ""},
    };
    for (const auto& row : rows) {
        const Home home;
        put(home.file(), row.before);
        notices(home).silence("KDE");
        put(home.file(), row.meanwhile);
        EXPECT_TRUE(notices(home).restore().errors.empty()) << row.label;
        EXPECT_EQ(home.text(), row.after) << row.label;
        EXPECT_FALSE(home.hasMemory()) << row.label;
    }
}

TEST(DesktopNotices, ChangeNothingThatCannotBeRemembered) {
    const Home home;
    put(home.file(), "[Event/lowbattery]\nAction=Popup\n");
    std::filesystem::create_directories(home.memory());
    EXPECT_FALSE(notices(home).silence("KDE").errors.empty()) << "a folder in the memory's place";
    EXPECT_EQ(home.text(), "[Event/lowbattery]\nAction=Popup\n");
    std::filesystem::remove(home.memory());
    put(home.memory(), "half a te");
    EXPECT_FALSE(notices(home).silence("KDE").errors.empty());
    EXPECT_FALSE(notices(home).restore().errors.empty());
    EXPECT_EQ(home.text(), "[Event/lowbattery]\nAction=Popup\n");
    EXPECT_EQ(textOf(home.memory()), "half a te") << "somebody may still want to read it";
}

} // namespace
} // namespace kivo
