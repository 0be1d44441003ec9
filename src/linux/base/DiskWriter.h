// SPDX-License-Identifier: MIT
#pragma once

#include "platform/SupportFiles.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace kivo {

// Replaces whole files without holding the caller: a thread of its own writes them one after the other, in
// the order in which they were handed over, and ends when nothing is left. A newer text for a file that still
// waits takes the older one's place. Destroying the writer finishes everything first.
class DiskWriter {
public:
    // Gets the error's description, nothing on success. Runs on the writer's thread, for a replaced text too.
    using Done = std::function<void(const std::optional<std::string>& error)>;

    DiskWriter() = default;
    DiskWriter(const DiskWriter&) = delete;
    DiskWriter& operator=(const DiskWriter&) = delete;
    ~DiskWriter();

    // A flag that is set when a file must be moved aside before it is replaced; cleared once that is done.
    using KeepsOld = std::shared_ptr<std::atomic<bool>>;

    // Nothing is written when the old file could not be kept.
    void write(std::string path, std::string text, Done done = {}, KeepsOld keepsOld = nullptr);
    // The same with a text that is made on the writer's thread.
    void write(std::string path, std::function<TextPieces()> text, Done done);
    // The same, and waits for the outcome.
    std::optional<std::string> writeAndWait(std::string path, std::string text);
    // Runs `task` on the writer's thread once everything handed over so far is written (or has failed).
    void afterWrites(std::function<void()> task);
    // Waits until everything handed over so far is written.
    void flush();

private:
    struct Job {
        std::string path; // empty: nothing to write
        std::string text;
        std::function<TextPieces()> pieces; // makes the text in place of the one above
        KeepsOld keepsOld;
        std::vector<Done> done;
    };
    void startThread();
    void add(std::string path, std::string text, std::function<TextPieces()> pieces, Done done,
             KeepsOld keepsOld);
    void run();
    void perform(const Job& job);
    std::optional<std::string> replace(const Job& job);

    std::mutex mutex_;
    std::condition_variable finished_;
    std::deque<Job> jobs_;
    bool isRunning_ = false;
    std::thread thread_;
    std::set<std::string> cleaned_; // the writer's thread only
};

} // namespace kivo
