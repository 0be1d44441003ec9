// SPDX-License-Identifier: MIT
#pragma once

#include "energy/EnergyMonitor.h"
#include "platform/Processes.h"
#include "platform/SupportFiles.h"
#include "platform/Workspace.h"
#include "support/VirtualLoop.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kivo::test {

struct Process {
    std::int32_t pid = 0;
    std::optional<std::uint64_t> energy; // absent: may not be read
    std::int32_t responsible = 0;
    std::optional<std::string> name;
};

class FakeProcesses final : public Processes {
public:
    std::int64_t listAndRead(std::size_t capacity, std::vector<Usage>& readings) override {
        if (fails)
            return -1;
        for (std::size_t i = 0; i < std::min(capacity, list.size()); ++i) {
            if (list[i].energy)
                readings.push_back({list[i].pid, *list[i].energy});
        }
        return static_cast<std::int64_t>(list.size());
    }
    bool resolveResponsible() override {
        ++resolutions;
        return hasResponsible;
    }
    std::int32_t responsible(std::int32_t pid) override {
        const auto* process = find(pid);
        return process ? process->responsible : 0;
    }
    std::optional<std::string> kernelName(std::int32_t pid) override {
        const auto* process = find(pid);
        return process ? process->name : std::nullopt;
    }
    const Process* find(std::int32_t pid) const {
        const auto found = std::ranges::find(list, pid, &Process::pid);
        return found == list.end() ? nullptr : &*found;
    }
    Process& operator[](std::int32_t pid) { return *std::ranges::find(list, pid, &Process::pid); }

    std::vector<Process> list;
    bool fails = false;
    bool hasResponsible = true;
    int resolutions = 0;
};

class FakeApplications final : public RunningApplications {
public:
    std::optional<RunningApplication> withPid(std::int32_t pid) override {
        const auto found = list.find(pid);
        return found == list.end() ? std::nullopt : std::optional(found->second);
    }
    std::vector<RunningApplication> withBundleIdentifier(const std::string&) override { return {}; }

    std::map<std::int32_t, RunningApplication> list;
};

class FakeFiles final : public SupportFiles {
public:
    explicit FakeFiles(VirtualLoop& loop) : loop_(loop) {}

    std::optional<std::string> read(std::string_view) override { return file; }
    bool keepAside(std::string_view) override {
        if (!file || !keeps)
            return false;
        aside.push_back(*file);
        return true;
    }
    std::optional<std::string> write(std::string_view path, const std::string& text) override {
        ++attempts;
        if (error)
            return error;
        paths.emplace_back(path);
        file = text;
        return std::nullopt;
    }
    void writeInBackground(std::string_view path, std::string text,
                           std::function<void(std::optional<std::string>)> done) override {
        loop_.background([this, path = std::string(path), text = std::move(text), done = std::move(done)] {
            loop_.spend(seconds(secondsToWrite));
            return [done, error = write(path, text)] { done(error); };
        });
    }

    std::optional<std::string> file;
    std::optional<std::string> error;
    bool keeps = true;
    double secondsToWrite = 0;
    int attempts = 0;
    std::vector<std::string> paths, aside;

private:
    VirtualLoop& loop_;
};

class FakeWorkspace final : public Workspace {
public:
    void open(std::string_view) override {}
    std::optional<std::string> computerName() override { return std::nullopt; }
    std::optional<std::string> environment(std::string_view) override { return std::nullopt; }
    bool reduceMotion() override { return false; }
    std::string timeZone() override { return zone; }

    std::string zone = "UTC";
};

class FakeLog final : public LogSink {
public:
    void log(LogLevel level, std::string_view category, std::string_view message) override {
        lines.push_back(std::string(name(level)) + " " + std::string(category) + ": " + std::string(message));
    }
    std::vector<std::string> lines;
};

// A machine with nothing but processes, and a monitor on it.
struct EnergyHouse {
    VirtualLoop loop{*Date::fromRFC3339("2026-01-05T09:00:00Z")};
    FakeProcesses processes;
    FakeApplications applications;
    FakeFiles files{loop};
    FakeWorkspace workspace;
    FakeLog log;
    std::optional<EnergyMonitor> monitor;

    EnergyMonitor& launch() {
        monitor.reset();
        loop.abandon();
        monitor.emplace(loop, processes, applications, files, workspace, log);
        return *monitor;
    }
    // Until the next look, the first one included.
    void minute() { loop.advance(std::chrono::seconds(60)); }
};

} // namespace kivo::test
